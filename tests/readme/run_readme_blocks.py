#!/usr/bin/env python3
"""Runs every ```sh block of the given Markdown files as a user would paste it: each in a fresh
bash (-e, -u, pipefail) in a new empty folder that is also its HOME, with the built programs first
on PATH and no HBDEPOT* variables set. A block whose first line is
    # readme-test: skip (REASON)
is reported and not run (the README's own build and install commands, which need root, and
commands that open a window). A block whose first line is
    # readme-test: continues
is pasted into the same shell as the block of its file that ran before it: it sees that block's
folder, current folder and variables, as a user who follows the README in one terminal does.

With --world DIR --chain TEXT, only the chain whose first block holds TEXT runs, in DIR, which is
kept: the world that README builds, for a test that goes on working in it."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

SKIP = re.compile(r"^# readme-test: skip \((.+)\)$")
CONTINUES = "# readme-test: continues"
# Printed by the shell before each block of a chain, so that a failure is put down to its block.
STARTS = "readme-test-block-starts "


def blocks(markdown):
    """(line number, text) of each ```sh block."""
    found = []
    lines = markdown.read_text(encoding="utf-8").splitlines()
    start = None
    for number, line in enumerate(lines, 1):
        stripped = line.strip()
        if start is None and stripped == "```sh":
            start, body, indent = number, [], len(line) - len(line.lstrip())
        elif start is not None and stripped == "```":
            found.append((start, "\n".join(body) + "\n"))
            start = None
        elif start is not None:
            body.append(line[indent:])
    return found


def chains(name):
    """The blocks of one file to run, grouped into the ones that share a shell: lists of (where, text).
    Prints the skipped ones; returns their number too."""
    grouped, skipped = [], 0
    for line, text in blocks(pathlib.Path(name)):
        where = f"{name}:{line}"
        first = text.splitlines()[0] if text.strip() else ""
        skip = SKIP.match(first)
        if skip:
            print(f"SKIP {where}: {skip.group(1)}")
            skipped += 1
        elif first == CONTINUES and grouped:
            grouped[-1].append((where, text))
        else:
            grouped.append([(where, text)])
    return grouped, skipped


def run_chain(chain, bin_dir, world=None):
    """Runs the blocks of a chain in one shell, in world or a new folder that goes away after;
    returns (passed, failed)."""
    script = "".join(f"printf '%s\\n' '{STARTS}{index}'\n{text}" for index, (_, text) in enumerate(chain))
    with tempfile.TemporaryDirectory(prefix="readme-block-") as scratch:
        folder = world or scratch
        env = {k: v for k, v in os.environ.items() if not k.startswith("HBDEPOT")}
        env.update(HOME=folder, PATH=bin_dir + os.pathsep + env.get("PATH", ""))
        run = subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=folder, env=env,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=300)
    started = [int(line[len(STARTS):]) for line in run.stdout.splitlines() if line.startswith(STARTS)]
    reached = started[-1] if started else 0
    passed = failed = 0
    for index, (where, text) in enumerate(chain):
        if run.returncode == 0 or index < reached:
            print(f"PASS {where}")
            passed += 1
        elif index == reached:
            print(f"FAIL {where} (exit {run.returncode})\n--- block\n{text}--- output\n{run.stdout}"
                  f"--- errors\n{run.stderr}")
            failed += 1
        else:
            print(f"FAIL {where}: not run, the block it continues failed")
            failed += 1
    return passed, failed


def main():
    args = sys.argv[1:]
    world = wanted = None
    if args[:1] == ["--world"] and len(args) >= 4 and args[2] == "--chain":
        world, wanted, args = os.path.abspath(args[1]), args[3], args[4:]
    if len(args) < 2:
        sys.exit("usage: run_readme_blocks.py [--world DIR --chain TEXT] BIN_DIR FILE.md...")
    bin_dir = os.path.abspath(args[0])
    failed = passed = skipped = 0
    for name in args[1:]:
        grouped, skipped_here = chains(name)
        skipped += skipped_here
        if wanted is not None:
            grouped = [chain for chain in grouped if wanted in chain[0][1]]
        for chain in grouped:
            chain_passed, chain_failed = run_chain(chain, bin_dir, world)
            passed += chain_passed
            failed += chain_failed
    print(f"{passed} passed, {failed} failed, {skipped} skipped")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
