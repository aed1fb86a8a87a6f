#!/usr/bin/env bash
# Checks what the shipped libraries export and need:
#   the plug-in exports plxPluginRegister and nothing else, and links no library of the reference host;
#   the toolkit exports none of the classes and namespaces that only its sources declare.
# Usage: check-exports.sh <plug-in .so> <toolkit .so> <toolkit public header folder> <toolkit source folder>
set -euo pipefail
plugin=$1 toolkit=$2 headers=$3 sources=$4
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

# The first name of each demangled toolkit symbol (class, namespace or function) must not be one
# that only the toolkit's sources declare. (Qt's, the standard library's and a sanitizer's own
# symbols may appear in a build; they are not the toolkit's.)
public_names=$(cat "$headers"/*.h | grep -oE '[A-Za-z_][A-Za-z0-9_]*' | sort -u)
internal_names=$(cat "$sources"/*.h "$sources"/*.cpp | grep -oE '^(class|struct|namespace) [A-Za-z_][A-Za-z0-9_]*( |$)' |
  awk '{print $2}' | sort -u | comm -23 - <(echo "$public_names"))
exported_names=$(nm -D --defined-only --demangle "$toolkit" | cut -d' ' -f3- |
  sed -E 's/^(typeinfo name for|typeinfo for|vtable for|VTT for|non-virtual thunk to|virtual thunk to) //' |
  grep -oE '^[A-Za-z_][A-Za-z0-9_]*' | sort -u)
unexpected=$(comm -12 <(echo "$exported_names") <(echo "$internal_names"))
if [ -n "$unexpected" ]; then
  echo "The toolkit exports names that only its sources declare:"
  echo "$unexpected"
  status=1
fi

[ $status -eq 0 ] && echo "exports: plug-in 1 symbol (plxPluginRegister); toolkit $(defined_dynamic "$toolkit" | wc -l) symbols, all public"
exit $status
