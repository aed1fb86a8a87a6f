#!/bin/sh
# Replays the hand-made faults of cases/ (see README.md); every argument goes to replay.py.
exec python3 "$(dirname "$0")/replay.py" "$@"
