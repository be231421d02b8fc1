# ./dev bench: measures the built library, and updates the tables of docs/performance.md.
# Sourced by dev.
# shellcheck shell=bash

kSpeedPage=docs/performance.md
kSpeedBegin='<!-- Made by ./dev bench --table: from here … -->'
kSpeedEnd='<!-- … to here -->'
# The measurements in the tables.
kSpeedFilter='^(operation/|growth/|fixed/[^/]*/words)'

runBench() {
  local argument options=() table='' tables
  for argument in "$@"; do
    case $argument in
      --table) table=yes ;;
      --json | [!-]*) options+=("$argument") ;;
      *) misuse "Unknown argument \"$argument\"; bench takes --json, --table and a filter." ;;
    esac
  done
  [[ -z $table || ${#options[@]} -eq 0 ]] || misuse '--table measures everything that the tables show and takes no other argument.'
  # Only the benchmark writes to stdout, so that --json can be piped.
  buildPreset release >&2
  if [[ -z $table ]]; then exec build/release/picturezvr_bench "${options[@]}"; fi
  say 'Measuring; this takes some minutes'
  tables=$(build/release/picturezvr_bench --tables "$kSpeedFilter") || fail 'Measuring failed.'
  putTables "$tables"
  say "$kSpeedPage has new tables."
}

# putTables TEXT: replaces the text between the markers in the page.
putTables() {
  local made
  grep -qxF -- "$kSpeedBegin" "$kSpeedPage" || fail "$kSpeedPage lacks the line \"$kSpeedBegin\"."
  made=$(mktemp)
  (
    removeOnExit "$made"
    TEXT=$1 awk -v begin="$kSpeedBegin" -v end="$kSpeedEnd" '
      $0 == end { inside = 0 }
      !inside { print }
      $0 == begin { print "\n" ENVIRON["TEXT"] "\n"; inside = 1 }' "$kSpeedPage" > "$made"
    cat "$made" > "$kSpeedPage"
  )
}
