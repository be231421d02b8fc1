#!/usr/bin/env bash
# Runs sessions at a shell: run.sh FILE[:LINE]…, with a line only the session that has it. A file is made of:
#
#   $ COMMAND     run by sh; zvr and picture are in its path, and $photos is tests/photographs
#   > MORE        a further line of the command
#   TEXT          a line of standard output
#   2> TEXT       a line of standard error
#   exit N: TEXT  the exit status, else 0, and text that standard error has somewhere; also as the command's comment
#   # TEXT        a comment
#
# All that is printed has to be as the lines say; only standard output may have none where the command succeeds, and then
# isn't looked at, nor are lines of standard error that begin with "wrote" unless some are wanted. … stands for any text, of several lines too. An empty line ends a session; the next begins in a fresh
# folder with photo.png, 23 x 9 pixels. A step that fails ends its session.
set -euo pipefail
here=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
export PATH=${ZVR_PROGRAMS:-${here%/tests/sessions}/build/release}:$PATH photos=${here%/*}/photographs LC_ALL=C COLUMNS=
umask 022
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT

# matches TEXT WANTED
matches() {
  local pattern=$2 special
  for special in \\ '[' ']' '(' ')' '|' '*' '?'; do pattern=${pattern//"$special"/\\"$special"}; done
  # shellcheck disable=SC2053 # a pattern
  [[ $1 == ${pattern//…/*} ]]
}

# step PLACE COMMAND STATUS OUTPUT ERRORS: runs a command; says how it ended when that is not as wanted.
step() {
  local status=0 wanted=$4 output errors
  if [[ $3 -eq 0 && -z $wanted ]]; then wanted=…; fi
  (cd "$temporary/session" && exec sh -c "$2") < /dev/null > "$temporary/output" 2> "$temporary/errors" || status=$?
  output=$(< "$temporary/output")
  errors=$(< "$temporary/errors")
  if [[ $5 != *wrote* ]]; then errors=$(sed '/^wrote /d' "$temporary/errors"); fi
  if [[ $status -eq $3 ]] && matches "$output" "$wanted" && matches "$errors" "$5"; then return 0; fi
  printf '%s: $ %s\n' "$1" "$2"
  printf -- '--- %s: exit %s, standard output:\n%s\n--- standard error:\n%s\n' wanted "$3" "$wanted" "$5" \
    got "$status" "$output" "$errors"
  return 1
}

# session FILE FIRST LINE…: runs the steps of a session, whose first line has the number FIRST.
session() {
  local file=$1 number=$2 at=0 command=true status=0 output='' errors='' line
  rm -rf "$temporary/session"
  install -D -t "$temporary/session" "$photos/photo.png"
  for line in "${@:3}" '$ true'; do
    case $line in
      '$ '*)
        step "$file:$at" "$command" "$status" "${output%$'\n'}" "${errors%$'\n'}" || return
        at=$number command=${line:2} status=0 output='' errors=''
        ;;&
      'exit '?': '* | '$ '*'  # exit '?': '*)
        line=${line##*'exit '}
        status=${line:0:1} errors=…${line:3}…
        ;;
      'exit '?) status=${line:5} ;;
      '> '*) command+=$'\n'${line:2} ;;
      '2> '*) errors+=${line:3}$'\n' ;;
      '$ '* | '#'*) ;;
      *) output+=$line$'\n' ;;
    esac
    number=$((number + 1))
  done
}

ran=0 failed=0
for word in "$@"; do
  file=${word%:*} wanted=${word##*:} first=0
  mapfile -t lines < "$file"
  for ((i = 0; i <= ${#lines[@]}; ++i)); do
    if [[ ${lines[i]-} ]]; then continue; fi
    if [[ $i -gt $first && ($file == "$word" || ($wanted -gt $first && $wanted -le $i)) ]]; then
      ran=$((ran + 1))
      session "$file" $((first + 1)) "${lines[@]:first:i-first}" || failed=$((failed + 1))
    fi
    first=$((i + 1))
  done
done
echo "$failed of $ran sessions failed"
[[ $ran -gt 0 && $failed -eq 0 ]]
