#!/usr/bin/env python3
"""Runs every ```sh block of the given Markdown files as a user would paste it: each in a fresh
bash (-e, -u, pipefail) in a new empty folder that is also its HOME, with the built programs first
on PATH and no HBDEPOT* variables set. A block whose first line is
    # readme-test: skip (REASON)
is reported and not run (the README's own build and install commands, which need root)."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

SKIP = re.compile(r"^# readme-test: skip \((.+)\)$")


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


def main():
    if len(sys.argv) < 3:
        sys.exit("usage: run_readme_blocks.py BIN_DIR FILE.md...")
    bin_dir = os.path.abspath(sys.argv[1])
    failed = passed = skipped = 0
    for name in sys.argv[2:]:
        for line, text in blocks(pathlib.Path(name)):
            where = f"{name}:{line}"
            skip = SKIP.match(text.splitlines()[0]) if text.strip() else None
            if skip:
                print(f"SKIP {where}: {skip.group(1)}")
                skipped += 1
                continue
            with tempfile.TemporaryDirectory(prefix="readme-block-") as folder:
                env = {k: v for k, v in os.environ.items() if not k.startswith("HBDEPOT")}
                env.update(HOME=folder, PATH=bin_dir + os.pathsep + env.get("PATH", ""))
                run = subprocess.run(["bash", "-euo", "pipefail", "-c", text], cwd=folder, env=env,
                                     stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=300)
            if run.returncode == 0:
                print(f"PASS {where}")
                passed += 1
            else:
                print(f"FAIL {where} (exit {run.returncode})\n--- block\n{text}--- output\n{run.stdout}"
                      f"--- errors\n{run.stderr}")
                failed += 1
    print(f"{passed} passed, {failed} failed, {skipped} skipped")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
