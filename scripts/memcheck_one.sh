#!/usr/bin/env bash
# memcheck_one.sh C-LIBRARY PROGRAM:FILTER@ROAD: runs some tests of one program of build/release under memcheck, with the
# C library in that folder.
set -euo pipefail
library=$1
program=${2%%:*}
filter=${2#*:}
filter=${filter%@*}
road=${2##*@}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if valgrind -q --error-exitcode=99 "$library/ld-linux.so.2" --library-path "$library" \
  "build/release/$program" "--road=$road" "--gtest_filter=$filter" > "$log" 2>&1; then
  echo "memcheck: $program, $road: nothing found"
else
  {
    tail -n 40 "$log"
    echo "memcheck: $program, $road: failed"
  } >&2
  exit 1
fi
