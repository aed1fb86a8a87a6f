#!/usr/bin/env bash
# Checks what the shipped libraries export and need:
#   the plug-in exports plxPluginRegister and nothing else, and links no library of the reference host;
#   every other library named exports none of the classes and namespaces that only its sources declare.
# Usage: check-exports.sh <plug-in .so> [<library .so> <public header folder> <source folder>]...
set -euo pipefail
plugin=$1
shift
status=0

# Defined dynamic symbols, without the linker's own section markers.
defined_dynamic() { nm -D --defined-only "$@" | awk '{print $3}' | grep -vE '^$|^(__bss_start|_edata|_end)$' || true; }

plugin_exports=$(defined_dynamic "$plugin")
if [ "$plugin_exports" != "plxPluginRegister" ]; then
  echo "The plug-in must export plxPluginRegister only; it exports $(echo "$plugin_exports" | wc -l) symbols:"
  echo "$plugin_exports" | head -20
  status=1
fi

host_libs=$(readelf -d "$plugin" | sed -n 's/.*Shared library: \[\(libhbrc_[a-z]*\)[.]so.*/\1/p' | grep -v '^libhbrc_sdkruntime$' || true)
if [ -n "$host_libs" ]; then
  echo "The plug-in links libraries of the reference host: $host_libs"
  status=1
fi

# The names a library's sources declare as class, struct or namespace (each part of a nested
# namespace) that appear nowhere in its public headers.
internal_names() {
  local headers=$1 sources=$2
  comm -23 \
    <(find "$sources" \( -name '*.h' -o -name '*.cpp' \) -exec cat {} + |
        sed -nE 's/^[[:space:]]*(class|struct|namespace) ([A-Za-z_][A-Za-z0-9_]*(::[A-Za-z_][A-Za-z0-9_]*)*)([[:space:]]|$).*/\2/p' |
        tr -s ':' '\n' | sort -u) \
    <(find "$headers" -name '*.h' -exec cat {} + | grep -oE '[A-Za-z_][A-Za-z0-9_]*' | sort -u)
}

# Every part of the qualified name of each exported symbol (template arguments and parameters left
# out: a template instantiated for a hidden type is hidden itself). Symbols of the standard library,
# Boost and Qt may appear in a build; they are not the library's.
exported_name_parts() {
  nm -D --defined-only --demangle "$1" | cut -d' ' -f3- |
    sed -E 's/^(typeinfo name for|typeinfo for|vtable for|VTT for|guard variable for|non-virtual thunk to|virtual thunk to) //
            s/operator(<<=|>>=|<=>|<<|>>|<=|>=|->\*|->|<|>)/operator/g
            s/\[abi:[a-z0-9]+\]//g
            :strip
            s/<[^<>]*>//g
            t strip
            s/\(.*//' |
    awk '{print $NF}' | grep -vE '^(std|boost|__gnu_cxx|Q[A-Za-z0-9_]*|qt_[A-Za-z0-9_]*)(::|$)' |
    tr -s ':' '\n' | sort -u
}

counts=()
while [ $# -gt 0 ]; do
  library=$1 headers=$2 sources=$3
  shift 3
  name=$(basename "$library")
  unexpected=$(comm -12 <(exported_name_parts "$library") <(internal_names "$headers" "$sources"))
  if [ -n "$unexpected" ]; then
    echo "$name exports names that only its sources declare:"
    echo "$unexpected"
    status=1
  fi
  counts+=("$name $(defined_dynamic "$library" | wc -l)")
done

if [ $status -eq 0 ]; then
  echo "exports: plug-in 1 symbol (plxPluginRegister); all public:"
  printf '  %s\n' "${counts[@]}"
fi
exit $status
