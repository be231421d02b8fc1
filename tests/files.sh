#!/usr/bin/env bash
# files.sh FOLDER: promises of the library and the programs in a build folder that only their headers tell.
set -euo pipefail
export LC_ALL=C
library=$1/libpicturezvr.so status=0

# promise TEXT WANTED GOT
promise() {
  [[ $2 == "$3" ]] && return
  printf '%s\n  wanted: %s\n  got: %s\n' "$@"
  status=1
}

promise 'The library exports only its entry.' 'T REALPluginMain' "$(nm -D --defined-only "$library" | cut -d ' ' -f 2-)"

others=$(readelf -dW "$library" | grep -E 'NEEDED|TEXTREL|RPATH|RUNPATH' |
  grep -vE '\[(libc\.so\.6|libdl\.so\.2|libm\.so\.6|ld-linux\.so\.2)\]' || true)
promise 'It needs only the C runtime, nor does it ask for other folders or for code to be written.' '' "$others"

newest=$({ echo GLIBC_2.3 && readelf -VW "$library" | grep -oE 'GLIBC_[0-9A-Z.]+'; } | sort -V | tail -n 1)
promise 'A C library of version 2.3 has all that it asks for.' GLIBC_2.3 "$newest"

promise 'Nothing can be both written and executed, the stack included.' GNU_STACK \
  "$(readelf -lW "$library" | grep -oE 'GNU_STACK|RWE')"

# Else a host's own SSE code is slow afterwards. These two answer vectors.
dirty=$(objdump -d --no-show-raw-insn "$library" | awk '
  />:$/ { name = $2; isDirty = 0 }
  /%[yz]mm/ { isDirty = 1 }
  /vzeroupper/ { isDirty = 0 }
  /\tret/ && isDirty && name !~ /entriesE|decideE/ { print name }')
promise 'Kernels leave the upper halves of vector registers empty.' '' "$dirty"

# shellcheck disable=SC2016 # for whoever asks a file what it is
promise 'It carries its name and version.' '$$ Plugin version: 13.4 (2013) $$' "$(strings -a "$library" | grep 'Plugin version')"

# Scripts among the files have readelf complain. An empty or relative element of a run path means the current folder.
current=$({ find "$1" -type f \( -perm -u+x -o -name '*.so*' \) -exec readelf -dW {} + 2> /dev/null || true; } | awk -F '[][]' '
  /^File: / { file = $0 }
  /RPATH|RUNPATH/ { for (i = split($2, folders, ":"); i > 0; --i) if (folders[i] !~ "^(/|[$]ORIGIN(/|$))") print file ": " $2 }')
promise 'Nothing looks for libraries in the current folder.' '' "$current"
promise 'zvr has one run path.' 1 "$(readelf -dW "$1/zvr" | grep -cE 'RPATH|RUNPATH')"
exit "$status"
