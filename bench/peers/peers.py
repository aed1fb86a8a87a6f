#!/usr/bin/env python3
"""Times hbdepot against Subversion (a file:// repository and a working copy) and git on the same
realistic tree, side by side in one run, and prints the ratios.

The tree: N files five folders deep, 1 to 64 KiB (log-uniform, so 10,000 files make about
150 MB), every fifth file binary (random bytes), the others text assets. For each tool and size,
in fresh repositories each run: add every file, submit them, status of the clean tree, open 100
files (Subversion: lock them; git has no such step), status after editing those 100 files, and a
fresh workspace (hbdepot: a second user's sync; svn checkout; git clone over file://). Reports
medians, each tool's growth from the smallest to the largest size, the repository sizes, the
peak memory of the submit and the fresh workspace, and a one-file status with a kept ticket against one that logs in
with a password.

    python3 bench/peers/peers.py --hbdepot build/bin/hbdepot              # 1,000 and 10,000 files
    python3 bench/peers/peers.py --hbdepot build/bin/hbdepot --sizes 200 --runs 1

Missing peers are installed from Debian (apt-get) unless --no-install is given; then they are
left out of the table.
"""
import argparse
import os
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

OPERATIONS = ["add", "submit", "status clean", "open 100 files", "status after 100 edits", "fresh workspace"]
TOOLS = ["hbdepot", "svn", "git"]
PASSWORD = "bench-pw"
WORDS = ("mesh material texture rig bone joint curve layer light camera shader node scene prop actor "
         "pivot scale rotate offset blend weight normal tangent colour roughness metal emission").split()


def log(text):
    print(text, file=sys.stderr, flush=True)


# A process forked from this script counts this script's memory as its own until it runs the
# command, so peak memory is taken by time(1) where it is installed.
TIME = shutil.which("time", path="/usr/bin:/bin")


def run(command, cwd, env, stdin=None, check=True):
    """Runs one command; answers its wall time and CPU time (user and system, its children's too) in
    seconds, and its peak memory in MiB."""
    peak = None
    if TIME:
        peak = tempfile.NamedTemporaryFile(prefix="peak-", delete=False)
        peak.close()
        command = [TIME, "-q", "-f", "%U %S %M", "-o", peak.name] + command
    started = time.perf_counter()
    process = subprocess.Popen(command, cwd=cwd, env=env, stdin=subprocess.PIPE if stdin else subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    if stdin:
        process.stdin.write(stdin.encode())
        process.stdin.close()
    errors = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    elapsed = time.perf_counter() - started
    process.returncode = os.waitstatus_to_exitcode(status)
    if check and process.returncode != 0:
        raise RuntimeError("%s failed (%d): %s" % (" ".join(command[:8]), process.returncode,
                                                   errors.decode(errors="replace")[-2000:]))
    cpu, kib = usage.ru_utime + usage.ru_stime, usage.ru_maxrss
    if peak:
        with open(peak.name) as figures:
            user, system, kib = figures.read().split()[-3:]
        cpu, kib = float(user) + float(system), int(kib)
        os.unlink(peak.name)
    return elapsed, cpu, kib / 1024.0


def folder_size(path):
    total = 0
    for folder, _, files in os.walk(path):
        for name in files:
            total += os.lstat(os.path.join(folder, name)).st_size
    return total


def build_tree(root, count, seed):
    """Writes the tree; answers the relative paths of its files and their total size."""
    rng = random.Random(seed)
    lines = ["field %s_%d = %.4f\n" % (rng.choice(WORDS), rng.randrange(64), rng.uniform(-1000, 1000))
             for _ in range(20000)]
    paths = []
    total = 0
    for i in range(count):
        leaf = i // 10
        folders = ["%s%d" % (name, (leaf >> (2 * level)) & 3)
                   for level, name in enumerate(("set", "group", "part", "kind", "lod"))]
        binary = i % 5 == 4
        relative = os.path.join(*folders, "asset%05d.%s" % (i, "bin" if binary else "kel"))
        size = int(1024 * 64 ** rng.random())
        if binary:
            content = rng.randbytes(size)
        else:
            head = "kel 1\nid %08x\nkind metadata\ntype %s\nname asset %d\nversion %d\n" % (
                rng.getrandbits(32), rng.choice(WORDS).title(), i, rng.randrange(1, 9))
            body = "".join(rng.choices(lines, k=size // 24 + 1))
            content = (head + body).encode()[:size]
        path = os.path.join(root, relative)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as out:
            out.write(content)
        paths.append(relative)
        total += len(content)
    return paths, total


class Scenario:
    """One tool's repositories and workspaces below `base`, set up afresh for each run."""

    def __init__(self, tool, base, hbdepot):
        self.tool = tool
        self.base = base
        self.hbdepot = hbdepot
        self.workspace = os.path.join(base, "workspace")
        self.fresh = os.path.join(base, "fresh")
        self.repository = os.path.join(base, "repository")
        self.env = dict(os.environ, HOME=base, HBDEPOT=os.path.join(base, "depot.db"),
                        HBDEPOT_TICKETS=os.path.join(base, "tickets"), GIT_CONFIG_NOSYSTEM="1",
                        GIT_AUTHOR_NAME="bench", GIT_AUTHOR_EMAIL="bench@localhost",
                        GIT_COMMITTER_NAME="bench", GIT_COMMITTER_EMAIL="bench@localhost", LC_ALL="C")
        for name in ("HBDEPOT_USER", "HBDEPOT_WORKSPACE", "HBDEPOT_PASSWORD", "HBDEPOT_TICKET"):
            self.env.pop(name, None)

    def depot(self, user, *words):
        account = ["-u", user, "-w", user + "-ws"] if user else []
        return [self.hbdepot] + account + list(words)

    def prepare(self):
        """An empty repository and a workspace holding nothing; answers the folder to fill."""
        os.makedirs(self.base)
        if self.tool == "hbdepot":
            self.call(self.depot(None, "init"))
            for user, root in (("bench", self.workspace), ("fresh", self.fresh)):
                self.call(self.depot(None, "--password-stdin", "user", "add", user), stdin=PASSWORD + "\n")
                self.call(self.depot(None, "workspace", "add", "--create", user + "-ws", user, root))
                self.call(self.depot(user, "--password-stdin", "login"), stdin=PASSWORD + "\n")
        elif self.tool == "svn":
            self.call(["svnadmin", "create", self.repository])
            self.call(["svn", "checkout", "-q", "file://" + self.repository, self.workspace])
        else:
            self.call(["git", "init", "-q", self.workspace])
        return self.workspace

    def call(self, command, cwd=None, stdin=None):
        return run(command, cwd or self.base, self.env, stdin)

    def timed(self, operation, files, edited):
        """Runs one operation; answers what run() does."""
        ws = self.workspace
        if self.tool == "hbdepot":
            commands = {
                "add": self.depot("bench", "add", *files),
                "submit": self.depot("bench", "submit", "-d", "the tree"),
                "status clean": self.depot("bench", "status", *files),
                "open 100 files": self.depot("bench", "edit", *edited),
                "status after 100 edits": self.depot("bench", "status", *files),
                "fresh workspace": self.depot("fresh", "sync"),
            }
        elif self.tool == "svn":
            commands = {
                "add": ["svn", "add", "-q", "--force", "."],
                "submit": ["svn", "commit", "-q", "-m", "the tree"],
                "status clean": ["svn", "status"],
                "open 100 files": ["svn", "lock", "-q"] + edited,
                "status after 100 edits": ["svn", "status"],
                "fresh workspace": ["svn", "checkout", "-q", "file://" + self.repository, self.fresh],
            }
        else:
            commands = {
                "add": ["git", "add", "-A"],
                "submit": ["git", "commit", "-q", "-m", "the tree"],
                "status clean": ["git", "status"],
                "status after 100 edits": ["git", "status"],
                "fresh workspace": ["git", "clone", "-q", "file://" + ws, self.fresh],
            }
        if operation not in commands:
            return None
        return self.call(commands[operation], cwd=ws)

    def repository_size(self):
        if self.tool == "hbdepot":
            return sum(folder_size(p) if os.path.isdir(p) else os.path.getsize(p)
                       for p in (self.env["HBDEPOT"], self.env["HBDEPOT"] + "-wal") if os.path.exists(p))
        if self.tool == "svn":
            return folder_size(self.repository)
        return folder_size(os.path.join(self.workspace, ".git"))


def edit_files(root, files):
    for relative in files:
        path = os.path.join(root, relative)
        os.chmod(path, 0o644)
        with open(path, "ab") as out:
            out.write(b"field edited = 1.0\n")


def one_run(tool, base, hbdepot, tree, files, edited):
    scenario = Scenario(tool, base, hbdepot)
    shutil.copytree(tree, scenario.prepare(), dirs_exist_ok=True)
    times, cpu, memory = {}, {}, {}
    for operation in OPERATIONS:
        if operation == "status after 100 edits":
            edit_files(scenario.workspace, edited)
        measured = scenario.timed(operation, files, edited)
        if measured:
            times[operation], cpu[operation], memory[operation] = measured
        if operation == "submit":
            size = scenario.repository_size()
    extra = {}
    if tool == "hbdepot":
        one = [files[0]]
        extra["ticket"] = scenario.call(scenario.depot("bench", "status", *one), cwd=scenario.workspace)
        scenario.env["HBDEPOT_TICKETS"] += "-none"
        extra["password"] = scenario.call(scenario.depot("bench", "--password-stdin", "status", *one),
                                          cwd=scenario.workspace, stdin=PASSWORD + "\n")
    shutil.rmtree(base, ignore_errors=True)
    return {"wall": times, "cpu": cpu}, memory, size, extra


def ensure_peers(install):
    wanted = {"svn": "subversion", "git": "git"}
    missing = [tool for tool in wanted if not shutil.which(tool)]
    if missing and install:
        packages = [wanted[tool] for tool in missing]
        log("installing " + " ".join(packages))
        sudo = [] if os.geteuid() == 0 else ["sudo"]
        subprocess.run(sudo + ["apt-get", "update", "-q"], check=True)
        subprocess.run(sudo + ["apt-get", "install", "-y", "-q", "--no-install-recommends"] + packages, check=True,
                       env=dict(os.environ, DEBIAN_FRONTEND="noninteractive"))
        missing = [tool for tool in wanted if not shutil.which(tool)]
    for tool in missing:
        log("%s is missing: left out" % tool)
    return ["hbdepot"] + [tool for tool in wanted if tool not in missing]


def cell(value, width=10, digits=3):
    return ("%.*f" % (digits, value)).rjust(width) if value is not None else "-".rjust(width)


def ratio(top, bottom):
    return top / bottom if top is not None and bottom else None


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--hbdepot", default=os.path.join(os.path.dirname(__file__), "../../build/bin/hbdepot"))
    parser.add_argument("--sizes", default="1000,10000", help="file counts, comma-separated")
    parser.add_argument("--runs", type=int, default=3, help="runs per tool and size (medians are printed)")
    parser.add_argument("--seed", type=int, default=21)
    parser.add_argument("--no-install", action="store_true", help="leave out peers that are not installed")
    parser.add_argument("--workdir", default=None, help="where the trees and repositories go (default: a temporary folder)")
    arguments = parser.parse_args()
    hbdepot = os.path.abspath(arguments.hbdepot)
    sizes = [int(size) for size in arguments.sizes.split(",")]
    tools = ensure_peers(not arguments.no_install)
    scratch = tempfile.mkdtemp(prefix="hbrc-peers-", dir=arguments.workdir)
    results = {}
    try:
        for count in sizes:
            tree = os.path.join(scratch, "tree")
            files, total = build_tree(tree, count, arguments.seed)
            edited = files[::max(1, len(files) // 100)][:100]
            samples = {tool: [] for tool in tools}
            for attempt in range(arguments.runs):
                for tool in tools:  # interleaved, so that the machine's ups and downs hit every tool alike
                    log("%d files, run %d: %s" % (count, attempt + 1, tool))
                    samples[tool].append(one_run(tool, os.path.join(scratch, tool), hbdepot, tree, files, edited))
            shutil.rmtree(tree)
            results[count] = (total, samples)
            report(count, total, tools, samples)
        if len(sizes) > 1:
            report_growth(sizes, tools, results)
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    return 0


def median_of(samples, pick):
    values = [value for value in (pick(sample) for sample in samples) if value is not None]
    return statistics.median(values) if values else None


def report(count, total, tools, samples):
    peers = [tool for tool in tools if tool != "hbdepot"]
    print("\n%d files, %.1f MB (every fifth binary); medians of %d runs" % (
        count, total / 1e6, len(samples["hbdepot"])))
    # CPU time stays comparable while other processes share the machine; wall time is what a user waits.
    for clock, title in (("wall", "wall seconds"), ("cpu", "CPU seconds")):
        print("%-24s" % title + "".join(tool.rjust(10) for tool in tools) +
              "".join(("hbdepot/" + peer).rjust(13) for peer in peers))
        for operation in OPERATIONS:
            medians = {tool: median_of(samples[tool], lambda s: s[0][clock].get(operation)) for tool in tools}
            print("%-24s" % operation + "".join(cell(medians[tool]) for tool in tools) +
                  "".join(cell(ratio(medians["hbdepot"], medians[peer]), 13, 2) for peer in peers))
    sizes = {tool: median_of(samples[tool], lambda s: s[2]) for tool in tools}
    print("%-24s" % "repository MB" + "".join(cell(sizes[tool] / 1e6, 10, 1) for tool in tools) +
          "".join(cell(ratio(sizes["hbdepot"], sizes[peer]), 13, 2) for peer in peers))
    if not TIME:
        print("(peak memory below includes this script's own, about 18 MiB: install time(1) for exact figures)")
    for operation in ("submit", "fresh workspace"):
        memory = {tool: median_of(samples[tool], lambda s: s[1].get(operation)) for tool in tools}
        print("%-24s" % (operation + " peak MiB") + "".join(cell(memory[tool], 10, 1) for tool in tools))
    for way, text in (("ticket", "with the kept ticket"), ("password", "logging in with a password")):
        wall, cpu, peak = (median_of(samples["hbdepot"], lambda s: s[3][way][i]) for i in range(3))
        print("hbdepot one-file status %s: %.1f ms wall, %.1f ms CPU, %.1f MiB peak" % (
            text, wall * 1000, cpu * 1000, peak))


def report_growth(sizes, tools, results):
    low, high = sizes[0], sizes[-1]
    print("\ngrowth from %d to %d files (time at %d / time at %d)" % (low, high, high, low))
    for clock in ("wall", "cpu"):
        print("%-24s" % (clock + " time") + "".join(tool.rjust(10) for tool in tools))
        for operation in OPERATIONS:
            row = []
            for tool in tools:
                at = [median_of(results[size][1][tool], lambda s: s[0][clock].get(operation)) for size in (low, high)]
                row.append(cell(ratio(at[1], at[0]), 10, 2))
            print("%-24s" % operation + "".join(row))


if __name__ == "__main__":
    sys.exit(main())
