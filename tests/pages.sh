# Sourced by tests of pages: a folder for their work, zvr in the path, and a way to complain.
# ZVR_PROGRAMS is the folder of zvr, else that of the release build.
# shellcheck shell=bash
set -euo pipefail
export LC_ALL=C
root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
PATH=${ZVR_PROGRAMS:-$root/build/release}:$PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
status=0

complain() {
  printf '%s\n' "$@"
  # shellcheck disable=SC2034 # with which the tests exit
  status=1
}
