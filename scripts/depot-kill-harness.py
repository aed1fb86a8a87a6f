#!/usr/bin/env python3
"""Kills hbdepot at random points of operations on many files and checks that the depot's record
and the workspace files agree after the next command.

For each operation (add, edit, submit, sync, delete, revert) a workspace of N files is prepared
once; every trial restores it, starts the operation, kills it (SIGKILL) after a random part of the
time an undisturbed run takes, runs the next command ("opened"), and compares every file's
content and write bit with what the depot records (have revision, opened action) and looks for
left-over temporary files and journal rows. Trials where the operation finished before the kill
are counted apart. Prints one line per operation and exits 1 when any disagreement was found.

    python3 scripts/depot-kill-harness.py build/bin/hbdepot --files 1000 --kills 50
"""
import argparse
import hashlib
import os
import random
import shutil
import signal
import sqlite3
import stat
import subprocess
import sys
import tempfile
import time

OPERATIONS = ["add", "edit", "submit", "sync", "delete", "revert"]


class Depot:
    def __init__(self, tool, root):
        self.tool = tool
        self.root = root
        self.db = os.path.join(root, "depot.db")
        self.env = dict(os.environ, HBDEPOT=self.db, HBDEPOT_TICKETS=os.path.join(root, "tickets"))
        for name in ("HBDEPOT_USER", "HBDEPOT_WORKSPACE", "HBDEPOT_PASSWORD", "HBDEPOT_TICKET"):
            self.env.pop(name, None)

    def workspace(self, user):
        return os.path.join(self.root, user)

    def command(self, user, *words):
        account = ["-u", user, "-w", user + "-ws"] if user else []
        return [self.tool] + account + list(words)

    def run(self, user, *words):
        result = subprocess.run(self.command(user, *words), env=self.env, stdin=subprocess.DEVNULL,
                                capture_output=True, text=True)
        if result.returncode != 0:
            raise RuntimeError(" ".join(words[:2]) + " failed: " + result.stderr)
        return result

    def start(self, user, *words):
        return subprocess.Popen(self.command(user, *words), env=self.env, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def write(path, content, writable=True):
    if os.path.exists(path):
        os.chmod(path, 0o644)
    with open(path, "wb") as out:
        out.write(content)
    os.chmod(path, 0o644 if writable else 0o444)


def names(count):
    return ["asset%04d.kel" % i for i in range(count)]


def prepare(depot, operation, count):
    """Sets up the depot and workspaces in which `operation` is then run; returns its arguments."""
    depot.run(None, "init")
    for user in ("alice", "bob"):
        depot.run(None, "user", "add", user)
        depot.run(None, "workspace", "add", "--create", user + "-ws", user, depot.workspace(user))
    alice = [os.path.join(depot.workspace("alice"), n) for n in names(count)]
    bob = [os.path.join(depot.workspace("bob"), n) for n in names(count)]
    for path in alice:
        write(path, b"first revision of " + os.path.basename(path).encode())
    if operation == "add":
        return "alice", ["add"] + alice
    depot.run("alice", "add", *alice)
    if operation == "submit":
        return "alice", ["submit", "-d", "many assets"]
    depot.run("alice", "submit", "-d", "many assets")
    if operation == "edit":
        return "alice", ["edit"] + alice
    if operation == "delete":
        return "alice", ["delete"] + alice
    if operation == "revert":
        depot.run("alice", "edit", *alice)
        for path in alice:
            write(path, b"unsaved work")
        return "alice", ["revert"] + alice
    # sync: bob has the first revisions; alice then changes half of the files and deletes the rest.
    depot.run("bob", "sync")
    half = len(alice) // 2
    depot.run("alice", "edit", *alice[:half])
    for path in alice[:half]:
        write(path, b"second revision")
    depot.run("alice", "delete", *alice[half:])
    depot.run("alice", "submit", "-d", "second")
    return "bob", ["sync"] + bob


def disagreements(depot, user):
    """Every way in which the files of `user`'s workspace differ from what the depot records."""
    workspace = user + "-ws"
    root = depot.workspace(user)
    db = sqlite3.connect("file:%s?mode=ro" % depot.db, uri=True)
    have = dict(db.execute("SELECT path, rev FROM have WHERE workspace = ?", (workspace,)))
    opened = dict(db.execute("SELECT path, action FROM opened WHERE workspace = ?", (workspace,)))
    journal = db.execute("SELECT COUNT(*) FROM journal").fetchone()[0]
    # The depot keeps each content once, compressed, named by its SHA-256 digest.
    digest = dict(((path, rev), data) for path, rev, data in db.execute(
        "SELECT r.path, r.rev, c.digest FROM revisions r JOIN contents c ON c.id = r.content_id"))
    problems = []
    if journal:
        problems.append("%d journal rows left after the next command" % journal)
    on_disk = set()
    for entry in os.listdir(root):
        if entry.startswith(".hbdepot-"):
            problems.append("left-over temporary " + entry)
        else:
            on_disk.add(entry)
    for key in sorted(on_disk | set(have) | set(opened)):
        path = os.path.join(root, key)
        exists = key in on_disk
        writable = exists and bool(os.stat(path).st_mode & stat.S_IWUSR)
        action = opened.get(key)
        if action == "delete":
            ok = not exists
        elif action in ("edit", "add"):
            ok = exists and writable
        elif key in have:
            with open(path, "rb") if exists else open(os.devnull, "rb") as f:
                data = f.read()
            ok = exists and not writable and hashlib.sha256(data).digest() == digest.get((key, have[key]))
        else:
            ok = not exists or writable  # a file of the user's own, unknown to the depot
        if not ok:
            problems.append("%s: opened %s, have %s, on disk %s" % (
                key, action, have.get(key), ("writable" if writable else "read-only") if exists else "missing"))
    db.close()
    return problems


def journal_rows(depot):
    db = sqlite3.connect("file:%s?mode=ro" % depot.db, uri=True)
    try:
        return db.execute("SELECT COUNT(*) FROM journal").fetchone()[0]
    finally:
        db.close()


def trial_series(tool, operation, count, kills, rng, scratch):
    work = os.path.join(scratch, "work")
    template = os.path.join(scratch, "template-" + operation)
    depot = Depot(tool, work)
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    user, words = prepare(depot, operation, count)
    shutil.copytree(work, template, symlinks=True)

    def restore():
        for folder, _, files in os.walk(work):
            os.chmod(folder, 0o755)
        shutil.rmtree(work)
        shutil.copytree(template, work, symlinks=True)

    started = time.monotonic()
    depot.run(user, *words)
    duration = time.monotonic() - started
    figures = {"kills": 0, "finished": 0, "journal_left": 0, "disagreements": 0}
    examples = []
    while figures["kills"] < kills and figures["kills"] + figures["finished"] < kills * 4:
        restore()
        process = depot.start(user, *words)
        time.sleep(rng.uniform(0, duration))
        if process.poll() is None:
            process.send_signal(signal.SIGKILL)
            process.wait()
            figures["kills"] += 1
        else:
            figures["finished"] += 1
        figures["journal_left"] += journal_rows(depot) > 0
        depot.run(user, "opened")  # the next command
        problems = disagreements(depot, user)
        if problems:
            figures["disagreements"] += 1
            examples.extend(problems[:3])
    shutil.rmtree(template)
    return duration, figures, examples


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("hbdepot", help="the hbdepot executable")
    parser.add_argument("--files", type=int, default=1000)
    parser.add_argument("--kills", type=int, default=50, help="kills per operation")
    parser.add_argument("--operations", default=",".join(OPERATIONS))
    parser.add_argument("--seed", type=int, default=None)
    arguments = parser.parse_args()
    seed = arguments.seed if arguments.seed is not None else random.randrange(1 << 30)
    rng = random.Random(seed)
    tool = os.path.abspath(arguments.hbdepot)
    print("seed %d, %d files, %d kills per operation" % (seed, arguments.files, arguments.kills))
    failed = False
    with tempfile.TemporaryDirectory(prefix="hbdepot-kills-") as scratch:
        for operation in arguments.operations.split(","):
            duration, figures, examples = trial_series(tool, operation, arguments.files, arguments.kills, rng,
                                                       scratch)
            print("%-7s run %.2f s: %d killed (%d with file steps left for the next command), %d finished "
                  "before the kill, %d disagreements" % (operation, duration, figures["kills"],
                                                         figures["journal_left"], figures["finished"],
                                                         figures["disagreements"]))
            for example in examples[:5]:
                print("        " + example)
            failed = failed or figures["disagreements"] > 0
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
