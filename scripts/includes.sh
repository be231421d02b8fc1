# The layers of the tree: which folder may include which, only downward, and no cyclic includes. Sourced by dev.
# shellcheck shell=bash

# A folder, followed by the files (extended regular expressions) that it may include besides its own. Tests, benchmark and
# fuzz targets may include anything.
kFloors=(
  'old_c_library'
  'kernels'
  'frame'
  'picture kernels/.* frame/.* old_c_library/.*'
  'operations picture/.* kernels/.* frame/.*'
  'classes picture/.* kernels/.* frame/.*'
  'plugin operations/.* classes/.* frame/.* old_c_library/.*'
  'host frame/host_interface\.h'
  'zvr/terminal host/.*'
  'zvr/files zvr/terminal/.* host/.*'
  'zvr/language zvr/(files|terminal)/.* host/.*'
  'zvr/gallery zvr/(language|files|terminal)/.* host/.*'
  'zvr/commands zvr/(gallery|language|files|terminal)/.* host/.*'
)

# includes: prints a line "FILE INCLUDED" for each include of a file of this tree.
includes() { git grep --untracked -oE '^#include "[^"]+"' -- '*.cpp' '*.h' | sed -E 's/^([^:]+):#include "([^"]+)"/\1 \2/'; }

checkIncludes() {
  local floor folder allowed upward circle
  for floor in "${kFloors[@]}"; do
    folder=${floor%% *}
    allowed=$(tr ' ' '|' <<< "$folder/.*${floor#"$folder"}")
    upward=$(includes | grep "^$folder/" | grep -vE "^[^ ]+ ($allowed)$") || continue
    fail "These files include files of a higher layer, or of another one beside theirs:" "$upward"
  done
  # A header and its source count as one.
  circle=$(includes | sed -E 's/\.(cpp|h)\b//g' | awk '$1 != $2' | tsort 2>&1 > /dev/null) ||
    fail 'These files include each other in a cycle:' "$circle"
}
