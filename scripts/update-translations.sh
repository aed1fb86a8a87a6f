#!/usr/bin/env bash
# Brings the Linguist files (.ts) up to date with the sources; translate the new entries after
# (Qt Linguist, package linguist-qt6). lupdate gets each library's own sources and no include
# paths: following the includes into Boost's headers makes it spin without end, which is why the
# CMake lupdate targets are not used.
set -euo pipefail
cd "$(dirname "$0")/.."
LUPDATE=${LUPDATE:-$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)}

update() {
    local ts=$1
    shift
    "$LUPDATE" -silent -no-obsolete -locations none "$@" -ts "$ts"
}

update framework/src/hbrevisioncontrol/translations/hbrevisioncontrol_de.ts framework/src/hbrevisioncontrol
update framework/src/qtextention/translations/qtextention_de.ts -I framework/include framework/src/qtextention framework/include/qtextention
update host/studio/translations/hbrc-studio_de.ts host/studio
for ts in framework/src/*/translations/*.ts host/studio/translations/*.ts; do
    echo "$ts: $(grep -c 'type="unfinished"' "$ts" || true) text(s) to translate"
done
