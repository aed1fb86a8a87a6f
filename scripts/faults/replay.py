#!/usr/bin/env python3
"""Replays the hand-made faults of scripts/faults/cases/ against the tree.

For each fault: apply it (a search-and-replace of snippets that occur exactly once in one file),
rebuild only the targets its tests need, run those tests with ctest, record caught / missed /
did-not-compile, and restore the file, whatever happens (also on Ctrl-C or SIGTERM).
See README.md in this folder.
"""

import argparse
import datetime
import fnmatch
import json
import os
import re
import signal
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
CASES = HERE / "cases"

CAUGHT = "caught"
MISSED = "missed"
NO_BUILD = "did-not-compile"
NO_TESTS = "no-tests"
NOT_RUN = "not-run"


@dataclass
class Replacement:
    find: str
    replace: str


@dataclass
class Fault:
    name: str
    path: Path
    what: str = ""
    file: str = ""
    tests: str = ""
    targets: list = field(default_factory=list)
    replacements: list = field(default_factory=list)


@dataclass
class Outcome:
    fault: Fault
    result: str = NOT_RUN
    caught_by: list = field(default_factory=list)
    ran: list = field(default_factory=list)
    seconds: float = 0.0
    note: str = ""


class FaultFormatError(Exception):
    pass


def parse_fault(path):
    """Reads one .fault file: 'key: value' header lines, then @@ find / @@ replace / @@ end blocks."""
    fault = Fault(name=path.stem, path=path)
    lines = path.read_text(encoding="utf-8").split("\n")
    i = 0
    while i < len(lines):
        line = lines[i]
        if line.startswith("@@ find"):
            block = {}
            for part in ("find", "replace"):
                if not lines[i].startswith("@@ " + part):
                    raise FaultFormatError(f"{path.name}:{i + 1}: expected '@@ {part}'")
                i += 1
                start = i
                while i < len(lines) and not lines[i].startswith("@@ "):
                    i += 1
                block[part] = "\n".join(lines[start:i])
            if i >= len(lines) or not lines[i].startswith("@@ end"):
                raise FaultFormatError(f"{path.name}:{i + 1}: expected '@@ end'")
            fault.replacements.append(Replacement(block["find"], block["replace"]))
        elif line.startswith("#") or not line.strip():
            pass
        else:
            key, sep, value = line.partition(":")
            if not sep:
                raise FaultFormatError(f"{path.name}:{i + 1}: expected 'key: value'")
            key, value = key.strip(), value.strip()
            if key == "what":
                fault.what = value
            elif key == "file":
                fault.file = value
            elif key == "tests":
                fault.tests = value
            elif key == "targets":
                fault.targets = value.split()
            else:
                raise FaultFormatError(f"{path.name}:{i + 1}: unknown key '{key}'")
        i += 1
    for key in ("what", "file", "tests"):
        if not getattr(fault, key):
            raise FaultFormatError(f"{path.name}: '{key}:' is missing")
    if not fault.replacements:
        raise FaultFormatError(f"{path.name}: no '@@ find' block")
    return fault


def faulted_text(fault, original):
    """The file's text with the fault applied; raises when a snippet is not there exactly once."""
    text = original
    for number, replacement in enumerate(fault.replacements, 1):
        count = text.count(replacement.find)
        if count != 1:
            raise FaultFormatError(f"{fault.name}: snippet {number} occurs {count} times in {fault.file} (needs 1)")
        if replacement.find == replacement.replace:
            raise FaultFormatError(f"{fault.name}: snippet {number} is replaced by itself")
        text = text.replace(replacement.find, replacement.replace)
    return text


class Interrupted(Exception):
    pass


def raise_interrupted(signum, _frame):
    raise Interrupted(signal.Signals(signum).name)


class AppliedFault:
    """Applies a fault for the duration of a with block; the file is written back on any exit.

    The original text is written anew (not copied with its time stamp), so that the next build
    sees the file as newer than the objects built from the fault and compiles it again."""

    def __init__(self, fault):
        self.path = ROOT / fault.file
        self.original = self.path.read_bytes()
        self.faulted = faulted_text(fault, self.original.decode("utf-8")).encode("utf-8")

    def __enter__(self):
        self.path.write_bytes(self.faulted)
        return self

    def __exit__(self, *_):
        # Signals wait until the file is whole again.
        previous = {s: signal.signal(s, signal.SIG_IGN) for s in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)}
        try:
            self.path.write_bytes(self.original)
        finally:
            for s, handler in previous.items():
                signal.signal(s, handler)
        return False


def stop_group(process):
    """Stops a command's whole process group: first as Ctrl-C would, so that make deletes the
    object it was writing (a truncated object would look up to date to the next build), then for good."""
    try:
        os.killpg(process.pid, signal.SIGINT)
        process.wait(timeout=15)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
    except ProcessLookupError:
        process.wait()


def run_logged(command, log, timeout=None, env=None):
    """Runs command in its own process group with its output in log; returns the exit code, or
    None when it ran out of time (the whole group is stopped then)."""
    with open(log, "w", encoding="utf-8") as out:
        out.write("$ " + " ".join(command) + "\n")
        out.flush()
        process = subprocess.Popen(command, stdout=out, stderr=subprocess.STDOUT, cwd=ROOT, env=env,
                                   start_new_session=True)
        try:
            return process.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            stop_group(process)
            out.write(f"\n*** stopped after {timeout} s\n")
            return None
        except BaseException:
            stop_group(process)
            raise


def build_targets(build_dir):
    output = subprocess.run(["cmake", "--build", str(build_dir), "--target", "help"], cwd=ROOT,
                            capture_output=True, text=True, check=True).stdout
    return {m.group(1) for m in re.finditer(r"^\.\.\. (\S+)", output, re.M)}


def tests_matching(build_dir, regex):
    """The ctest tests whose names match regex (ctest's own regular expressions: no (?:...))."""
    shown = subprocess.run(["ctest", "--test-dir", str(build_dir), "--show-only=json-v1", "-R", regex], cwd=ROOT,
                           capture_output=True, text=True)
    if shown.returncode != 0 or "RegularExpression::compile()" in shown.stdout + shown.stderr:
        raise FaultFormatError(f"ctest cannot list the tests matching {regex!r}: {shown.stderr.strip()}")
    listing = shown.stdout[shown.stdout.index("{"):]
    return [test["name"] for test in json.loads(listing).get("tests", [])]


TEST_LINE = re.compile(r"^\s*\d+/\d+ Test\s+#\d+: (\S+) \.*\s*(?:\*{3})?(.*?)\s+[\d.]+ sec\s*$", re.M)


def test_results(log):
    """{test: "Passed", "Failed", "Timeout", "Exception: ...", "Not Run", ...} from a ctest log."""
    text = Path(log).read_text(encoding="utf-8", errors="replace")
    return {m.group(1): m.group(2) for m in TEST_LINE.finditer(text)}


class Replayer:
    def __init__(self, args):
        self.build_dir = Path(args.build_dir).resolve()
        self.jobs = args.jobs
        self.timeout = args.timeout
        self.logs = self.build_dir / "faults-logs"
        self.logs.mkdir(parents=True, exist_ok=True)
        self.known_targets = build_targets(self.build_dir)
        self.env = dict(os.environ, QT_QPA_PLATFORM="offscreen")

    def targets_of(self, fault, tests):
        if fault.targets:
            return fault.targets
        return [t for t in tests if t in self.known_targets]

    def build(self, name, targets):
        log = self.logs / f"{name}.build.log"
        command = ["cmake", "--build", str(self.build_dir), "-j", str(self.jobs), "--target", *targets]
        return run_logged(command, log, env=self.env) == 0, log

    def run_tests(self, name, regex):
        log = self.logs / f"{name}.test.log"
        command = ["ctest", "--test-dir", str(self.build_dir), "-R", regex, "--output-on-failure"]
        code = run_logged(command, log, timeout=self.timeout, env=self.env)
        return test_results(log), code is None, log

    def replay(self, fault):
        outcome = Outcome(fault)
        started = time.monotonic()
        try:
            tests = tests_matching(self.build_dir, fault.tests)
        except FaultFormatError as error:
            outcome.note = str(error)
            return outcome
        if not tests:
            outcome.result = NO_TESTS
            outcome.note = f"no ctest test matches {fault.tests!r}"
            return outcome
        with AppliedFault(fault):
            built, build_log = self.build(fault.name, self.targets_of(fault, tests))
            if not built:
                outcome.result = NO_BUILD
                outcome.note = str(build_log)
            else:
                results, timed_out, test_log = self.run_tests(fault.name, fault.tests)
                outcome.ran = sorted(results)
                outcome.caught_by = sorted(t for t, state in results.items() if state not in ("Passed", "Not Run"))
                outcome.result = CAUGHT if outcome.caught_by or timed_out else MISSED
                not_run = sorted(t for t, state in results.items() if state == "Not Run")
                if timed_out:
                    outcome.note = f"ctest killed after {self.timeout} s"
                elif not results or (not_run and not outcome.caught_by):
                    outcome.result = NOT_RUN
                    outcome.note = f"tests did not run ({', '.join(not_run) or 'no result'}): see {test_log}"
                if outcome.caught_by:
                    kinds = {results[t] for t in outcome.caught_by} - {"Failed"}
                    if kinds:
                        outcome.note = "also " + ", ".join(sorted(kinds))
        outcome.seconds = time.monotonic() - started
        return outcome

    def check_clean(self, faults):
        """Builds and runs every test the faults name on the tree as it is; returns those that fail."""
        tests = sorted({t for f in faults for t in tests_matching(self.build_dir, f.tests)})
        targets = sorted({t for f in faults for t in self.targets_of(f, tests_matching(self.build_dir, f.tests))})
        built, log = self.build("clean-tree", targets)
        if not built:
            sys.exit(f"The tree does not build as it is: see {log}")
        results, _, _ = self.run_tests("clean-tree", "^(" + "|".join(tests) + ")$")
        return sorted(t for t in tests if results.get(t) != "Passed")


def dirty_files(files):
    output = subprocess.run(["git", "status", "--porcelain", "--", *sorted(files)], cwd=ROOT, capture_output=True,
                            text=True, check=True).stdout
    return [line[3:] for line in output.splitlines() if line.strip()]


def select_faults(patterns):
    paths = sorted(CASES.glob("*.fault"))
    if not patterns:
        return paths
    chosen = []
    for pattern in patterns:
        matched = [p for p in paths if fnmatch.fnmatch(p.stem, pattern) or fnmatch.fnmatch(p.stem, pattern + "-*")]
        if not matched:
            sys.exit(f"No fault matches '{pattern}' (see {CASES})")
        chosen += [p for p in matched if p not in chosen]
    return chosen


def format_table(outcomes):
    rows = [("fault", "result", "caught by", "seconds")]
    for o in outcomes:
        detail = ", ".join(o.caught_by) if o.caught_by else (o.note or "-")
        rows.append((o.fault.name, o.result, detail, f"{o.seconds:.0f}"))
    widths = [max(len(row[i]) for row in rows) for i in range(3)]
    return "\n".join(f"{r[0]:<{widths[0]}}  {r[1]:<{widths[1]}}  {r[2]:<{widths[2]}}  {r[3]:>5}".rstrip()
                     for r in rows)


def catch_rate(outcomes):
    caught = sum(o.result == CAUGHT for o in outcomes)
    return f"Catch rate: {caught}/{len(outcomes)} caught" + (
        f" ({100 * caught / len(outcomes):.0f}%)" if outcomes else "")


def earlier_results(path):
    """{fault: result} from an earlier results file (e.g. baseline.txt)."""
    results = {}
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        parts = line.split()
        if len(parts) >= 2 and parts[1] in (CAUGHT, MISSED, NO_BUILD, NO_TESTS, NOT_RUN):
            results[parts[0]] = parts[1]
    return results


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("faults", nargs="*", help="fault names or glob patterns (default: all of cases/)")
    parser.add_argument("-B", "--build-dir", default="build", help="configured build folder (default: build)")
    parser.add_argument("-j", "--jobs", type=int, default=2, help="parallel build jobs (default: 2)")
    parser.add_argument("-o", "--results", help="results file (default: <build-dir>/faults-results.txt)")
    parser.add_argument("--timeout", type=int, default=1200,
                        help="seconds one fault's ctest run may take before it is killed and counted caught "
                             "(default: 1200; each test also has its own ctest TIMEOUT)")
    parser.add_argument("--clean-check", action="store_true",
                        help="first build and run the named tests on the unfaulted tree; stop if any fails")
    parser.add_argument("--compare", metavar="FILE",
                        help="an earlier results file: list the faults caught there and not caught now")
    parser.add_argument("--check", action="store_true",
                        help="only check that every fault applies (each snippet once) and that its tests exist")
    parser.add_argument("--list", action="store_true", help="list the faults and exit")
    args = parser.parse_args()

    try:
        faults = [parse_fault(p) for p in select_faults(args.faults)]
        for fault in faults:
            faulted_text(fault, (ROOT / fault.file).read_text(encoding="utf-8"))
    except (FaultFormatError, FileNotFoundError) as error:
        sys.exit(str(error))
    if args.list:
        for fault in faults:
            print(f"{fault.name:<44} {fault.file}\n{'':<44} {fault.what}")
        return 0

    dirty = dirty_files({f.file for f in faults})
    if dirty:
        sys.exit("Refusing to run: these files have uncommitted changes (a fault left behind? "
                 "'git checkout -- <file>' restores one):\n  " + "\n  ".join(dirty))
    if not (Path(args.build_dir) / "CMakeCache.txt").exists():
        sys.exit(f"{args.build_dir} is not a configured build folder (see README.md)")

    for s in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(s, raise_interrupted)
    replayer = Replayer(args)
    if args.check:
        missing = [f.name for f in faults if not tests_matching(replayer.build_dir, f.tests)]
        print(f"{len(faults)} faults apply." + (f" No test matches for: {', '.join(missing)}" if missing else ""))
        return 1 if missing else 0

    results_file = Path(args.results) if args.results else replayer.build_dir / "faults-results.txt"
    head = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True,
                          text=True).stdout.strip()
    outcomes = []
    try:
        if args.clean_check:
            failing = replayer.check_clean(faults)
            if failing:
                sys.exit("These tests fail on the unfaulted tree; fix them first: " + ", ".join(failing))
            print("Clean tree: every named test passes.", flush=True)
        for number, fault in enumerate(faults, 1):
            print(f"[{number}/{len(faults)}] {fault.name} ...", end=" ", flush=True)
            outcome = replayer.replay(fault)
            outcomes.append(outcome)
            print(f"{outcome.result} {', '.join(outcome.caught_by) or outcome.note} ({outcome.seconds:.0f} s)",
                  flush=True)
            # Written after each fault, so that a long run that is stopped still leaves its results.
            results_file.write_text(results_text(outcomes, len(faults), head, args), encoding="utf-8")
    except Interrupted as signal_name:
        print(f"\nInterrupted ({signal_name}); no fault is left applied.", file=sys.stderr)
    except KeyboardInterrupt:
        print("\nInterrupted; no fault is left applied.", file=sys.stderr)

    text = results_text(outcomes, len(faults), head, args)
    results_file.write_text(text, encoding="utf-8")
    print("\n" + text + f"(written to {results_file})")
    return 0 if len(outcomes) == len(faults) else 130


def results_text(outcomes, selected, head, args):
    report = [f"# Fault replay of {head} on {datetime.date.today()}, build folder {args.build_dir}",
              "# Each fault: applied, its tests' targets rebuilt, the tests run (ctest -R <tests:>), restored.",
              "", format_table(outcomes), "", catch_rate(outcomes)]
    if len(outcomes) < selected:
        report.append(f"Incomplete: {len(outcomes)} of {selected} selected faults replayed.")
    if args.compare:
        before = earlier_results(args.compare)
        slipped = [o.fault.name for o in outcomes if before.get(o.fault.name) == CAUGHT and o.result != CAUGHT]
        report.append("Caught in " + args.compare + " but not now: " + (", ".join(slipped) or "none"))
    uncaught = [o for o in outcomes if o.result != CAUGHT]
    if uncaught:
        report += ["", "Not caught:"] + [f"  {o.fault.name}: {o.fault.what}" for o in uncaught]
    return "\n".join(report) + "\n"


if __name__ == "__main__":
    sys.exit(main())
