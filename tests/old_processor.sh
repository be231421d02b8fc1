#!/usr/bin/env bash
# old_processor.sh PROGRAM ARGUMENT…: runs a test program on an emulated processor that has SSE2 and nothing of
# what came later, so that any later instruction is illegal. Exit status 77: the emulator is not here.
set -euo pipefail
if ! command -v qemu-i386 > /dev/null; then
  echo 'Skipped: there is no qemu-i386 here (Debian has it in the package qemu-user).'
  exit 77
fi
exec qemu-i386 -cpu pentium3,+sse2 "$@"
