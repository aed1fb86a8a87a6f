#!/usr/bin/env bash
# Installs what is missing, builds the programs in build/ (hbrc-studio and hbdepot in build/bin, the
# plug-in in build/lib: what the README then uses) and runs the studio's tour through its main
# window on an embedded depot (offscreen: it writes pictures of the window into build/tour), or with
# --svn against a Subversion repository served by a local svnserve (a new repository with the users
# alice and bob, on 127.0.0.1, stopped when the demo ends). Add --batch for the demo without a
# window.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${HBRC_BUILD_DIR:-$root/build}
bash "$root/scripts/install-deps.sh"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DHBRC_BUILD_BENCH=OFF
# The programs and the plug-in the studio loads (also all that `cmake --install` installs); the tests
# are not needed for the demo.
cmake --build "$build" -j2 --target hbrc-studio hbdepot hbrevisioncontrol
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
if [ "${1:-}" != "--svn" ]; then
  exec "$build/bin/hbrc-studio" --demo --shots "$build/tour" "$@"
fi
shift
scratch=$(mktemp -d)
server=""
cleanup() {
  if [ -n "$server" ]; then
    kill "$server" 2>/dev/null || true
    wait "$server" 2>/dev/null || true
  fi
  rm -rf "$scratch"
}
trap cleanup EXIT
svnadmin create "$scratch/repository"
printf '[general]\nanon-access = none\nauth-access = write\npassword-db = passwd\nrealm = hbrc-demo\n' \
  > "$scratch/repository/conf/svnserve.conf"
printf '[users]\nalice = alice-pw\nbob = bob-pw\n' > "$scratch/repository/conf/passwd"
# A free port: svnserve exits at once when the one tried is taken.
for attempt in 1 2 3 4 5 6 7 8 9 10; do
  port=$((20000 + RANDOM % 40000))
  svnserve --daemon --foreground --threads --listen-host=127.0.0.1 --listen-port="$port" \
    --root="$scratch/repository" &
  server=$!
  sleep 0.3
  if kill -0 "$server" 2>/dev/null; then break; fi
  server=""
done
[ -n "$server" ] || { echo "cannot start svnserve" >&2; exit 1; }
"$build/bin/hbrc-studio" --demo --shots "$build/tour" --server "svn://127.0.0.1:$port" "$@"
