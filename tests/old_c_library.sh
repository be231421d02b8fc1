#!/usr/bin/env bash
# old_c_library.sh PROGRAM LIBRARY: runs the program on the library with the C library in the folder ZVR_OLD_C_LIBRARY, and
# says which version that is. Exit status 77: there is none.
set -euo pipefail
if [[ -z ${ZVR_OLD_C_LIBRARY:-} ]]; then
  echo 'Skipped: no older C library is here (./dev check fetches one on Debian).'
  exit 77
fi
loader=$ZVR_OLD_C_LIBRARY/ld-linux.so.2
"$loader" --library-path "$ZVR_OLD_C_LIBRARY" "$ZVR_OLD_C_LIBRARY/libc.so.6" | sed -n 1p # which reads on to the end
exec "$loader" --library-path "$ZVR_OLD_C_LIBRARY" "$@"
