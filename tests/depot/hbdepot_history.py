#!/usr/bin/env python3
"""hbdepot's history verbs in one scenario: alice and bob each submit two changes to ship.kel (and
bob deletes sail.kel); a table of verbs with their exit codes and output; every listing's --json
document checked against its published schema.

Usage: hbdepot_history.py HBDEPOT SCHEMA_FOLDER"""
import json
import os
import re
import subprocess
import sys
import tempfile

import jsonschema

HBDEPOT, SCHEMAS = os.path.abspath(sys.argv[1]), sys.argv[2]
DATE = r"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d"
failures = []


def run(folder, *args, stdin=None):
    done = subprocess.run([HBDEPOT, *args], cwd=folder, input=stdin, capture_output=True, text=True, env=ENV)
    return done.returncode, done.stdout, done.stderr


def must(folder, *args, stdin=None):
    code, out, err = run(folder, *args, stdin=stdin)
    if code != 0:
        sys.exit(f"hbdepot {' '.join(args)} failed ({code}): {err}")
    return out


def write(path, text):
    if os.path.exists(path):
        os.chmod(path, 0o644)
    with open(path, "w") as f:
        f.write(text)


with tempfile.TemporaryDirectory() as top:
    ENV = {k: v for k, v in os.environ.items() if not k.startswith("HBDEPOT")}
    ENV.update(HBDEPOT=f"{top}/depot.db", HBDEPOT_TICKETS=f"{top}/tickets", TZ="UTC")
    alice, bob = f"{top}/alice", f"{top}/bob"
    must(top, "init")
    for user, root in (("alice", alice), ("bob", bob)):
        must(top, "--password-stdin", "user", "add", user, stdin="pw\n")
        must(top, "workspace", "add", "--create", f"{user}-ws", user, root)
        must(root, "--password-stdin", "login", "-q", stdin="pw\n")
    def edit_ship(root, text, description=None):
        must(root, "edit", "ship.kel")
        write(f"{root}/ship.kel", text)
        if description:
            must(root, "submit", "-d", description)

    write(f"{alice}/ship.kel", "hull\nmast\nsail\n")
    write(f"{alice}/sail.kel", "white\n")
    must(alice, "add", "ship.kel", "sail.kel")
    must(alice, "submit", "-d", "first ship")
    edit_ship(alice, "hull\nmast\nred sail\n", "red sail")
    must(bob, "sync")
    edit_ship(bob, "long hull\nmast\nred sail\n", "long hull\nand why")
    must(bob, "delete", "sail.kel")
    edit_ship(bob, "long hull\nmast\nred sail\nflag", "flag, no sail")
    must(alice, "sync")
    edit_ship(alice, "long hull\nmast\nred sail\nflag\nkeel\n")

    # (name, folder, arguments, exit code, standard output as a regular expression, error text)
    rows = [
        ("filelog lists four revisions, newest first", bob, ["filelog", "ship.kel"], 0,
         f"//depot/ship.kel\n"
         f"... #4 change 4 edit on {DATE} by bob@bob-ws 'flag, no sail'\n"
         f"... #3 change 3 edit on {DATE} by bob@bob-ws 'long hull and why'\n"
         f"... #2 change 2 edit on {DATE} by alice@alice-ws 'red sail'\n"
         f"... #1 change 1 add on {DATE} by alice@alice-ws 'first ship'\n", ""),
        ("filelog -m keeps the newest", bob, ["filelog", "-m", "1", "sail.kel"], 0,
         f"//depot/sail.kel\n... #2 change 4 delete on {DATE} by bob@bob-ws 'flag, no sail'\n", ""),
        ("filelog names a file it does not know", bob, ["filelog", "ship.kel", "raft.kel"], 1,
         r"//depot/ship.kel\n(\.\.\. .*\n){4}", "raft.kel - no such file in the depot"),
        ("print -r writes that revision", bob, ["print", "-r", "2", "ship.kel"], 0, r"hull\nmast\nred sail\n", ""),
        ("print writes the head's bytes as stored", bob, ["print", "ship.kel"], 0, r"long hull\nmast\nred sail\nflag", ""),
        ("print refuses a deleting revision", bob, ["print", "sail.kel"], 1, "",
         "//depot/sail.kel#2 deletes the file; it has no content"),
        ("print refuses a revision past the head", bob, ["print", "-r", "9", "ship.kel"], 1, "", "no such revision"),
        ("diff2 shows exactly the changed lines", bob, ["diff2", "ship.kel", "2", "#4"], 0,
         re.escape("--- ship.kel#2\n+++ ship.kel#4\n@@ -1,3 +1,4 @@\n-hull\n+long hull\n mast\n red sail\n+flag\n"
                   "\\ No newline at end of file\n"), ""),
        ("diff2 of the same content prints nothing", bob, ["diff2", "ship.kel", "3", "3"], 0, "", ""),
        ("diff2 takes revision numbers only", bob, ["diff2", "ship.kel", "two", "3"], 2, "", "Usage: hbdepot"),
        ("diff shows an opened file against the workspace's revision", alice, ["diff"], 0,
         re.escape(f"--- //depot/ship.kel#4\n+++ {alice}/ship.kel\n@@ -1,4 +1,5 @@\n long hull\n mast\n red sail\n"
                   "-flag\n\\ No newline at end of file\n+flag\n+keel\n"),
         ""),
        ("diff names a file that is not open", alice, ["diff", "sail.kel"], 1, "", "sail.kel - file not opened"),
        ("files leaves out files deleted at the head", bob, ["files"], 0,
         f"//depot/ship.kel#4 change 4 edit on {DATE} by bob@bob-ws\n", ""),
        ("files -c answers as of a change", bob, ["files", "-c", "1"], 0,
         f"//depot/sail.kel#1 change 1 add on {DATE} by alice@alice-ws\n"
         f"//depot/ship.kel#1 change 1 add on {DATE} by alice@alice-ws\n", ""),
        ("files -c refuses an unknown change", bob, ["files", "-c", "99"], 1, "", "Change 99 unknown."),
        ("changes by path and user, newest first", bob, ["changes", "-s", "submitted", "-u", "bob", "sail.kel"], 0,
         f"Change 4 on {DATE} by bob@bob-ws \\*submitted\\* 'flag, no sail'\n", ""),
        ("users", bob, ["users"], 0, "alice\nbob\n", ""),
        ("workspaces", bob, ["workspaces"], 0,
         f"Workspace alice-ws owner alice root {alice}\nWorkspace bob-ws owner bob root {bob}\n", ""),
        ("sync FILE#REV refuses a file open here", alice, ["sync", "ship.kel#1"], 1, "",
         "ship.kel#1 - opened in this workspace"),
        ("sync FILE#REV brings that revision", bob, ["sync", "ship.kel#2", "sail.kel#1"], 0,
         "//depot/ship.kel#2 - updated\n//depot/sail.kel#1 - updated\nupdated 2, deleted 0\n", ""),
        ("then status says not at head", bob, ["status", "ship.kel"], 0,
         re.escape("ship.kel - edited by others, not at head (alice)\n"), ""),
    ]
    for name, folder, args, code, out, err in rows:
        got_code, got_out, got_err = run(folder, *args)
        if got_code != code or not re.fullmatch(out, got_out) or err not in got_err:
            failures.append(f"{name}: hbdepot {' '.join(args)}\n  exit {got_code} (wanted {code})\n"
                            f"  output {got_out!r}\n  wanted {out!r}\n  errors {got_err!r}")
    with open(f"{bob}/ship.kel") as synced:
        if synced.read() != "hull\nmast\nred sail\n":
            failures.append("sync ship.kel#2 did not write revision 2")

    listings = {"status": ["status", "ship.kel", "sail.kel"], "opened": ["opened", "-a"],
                "changes": ["changes", "-s", "submitted"], "describe": ["describe", "4"], "info": ["info"],
                "filelog": ["filelog", "ship.kel", "sail.kel"], "files": ["files"], "users": ["users"],
                "workspaces": ["workspaces"]}
    for listing, args in listings.items():
        with open(os.path.join(SCHEMAS, f"{listing}.schema.json")) as f:
            schema = json.load(f)
        document = json.loads(must(alice, "--json", *args))
        try:
            jsonschema.validate(document, schema, cls=jsonschema.Draft202012Validator)
        except jsonschema.ValidationError as error:
            failures.append(f"{listing} --json does not follow its schema: {error.message}")
    if sorted(f[: -len(".schema.json")] for f in os.listdir(SCHEMAS)) != sorted(listings):
        failures.append("every schema is checked against its listing")

print("\n".join(failures) or f"{len(rows)} verbs and {len(listings)} JSON listings as expected")
sys.exit(1 if failures else 0)
