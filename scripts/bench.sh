# ./dev bench: measures the built library, and keeps the tables of README.md.
# Sourced by dev.
# shellcheck shell=bash

kSpeedBegin='<!-- Made by ./dev bench --table: from here … -->'
kSpeedEnd='<!-- … to here -->'
# The rows of the README's tables.
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
  [[ -z $table || ${#options[@]} -eq 0 ]] || misuse 'The tables are made of all their rows: --table goes with nothing else.'
  # Only the benchmark writes to the standard output, so that --json can be piped on.
  buildPreset release >&2
  if [[ -z $table ]]; then exec build/release/picturezvr_bench "${options[@]}"; fi
  say 'Measuring; this takes some minutes'
  tables=$(build/release/picturezvr_bench --tables "$kSpeedFilter") || fail 'Measuring failed.'
  putTables "$tables"
  say 'README.md has new tables under "How fast".'
}

# putTables TEXT: between the markers in README.md, which are made when they are not there.
putTables() {
  local readme=README.md made
  grep -qxF -- "$kSpeedBegin" "$readme" || addSpeedSection "$readme"
  made=$(mktemp)
  (
    removeOnExit "$made"
    TEXT=$1 awk -v begin="$kSpeedBegin" -v end="$kSpeedEnd" '
      $0 == end { inside = 0 }
      !inside { print }
      $0 == begin { print "\n" ENVIRON["TEXT"] "\n"; inside = 1 }' "$readme" > "$made"
    cat "$made" > "$readme"
  )
}

addSpeedSection() {
  local section
  section="## How fast

\`./dev bench\` measures every method and class through the built library and our host, and every kernel by itself on each
instruction set; \`./dev bench --json\` and \`./dev bench FILTER\` give figures for programs and a choice of them.
\`./dev bench --table\` writes the tables below. Only the plug-in's own processor time counts: neither the host's services
nor the clearing and first touching of memory, for our host and the heap use the memory of earlier calls again. Pictures are
3840 × 2160 unless a column says otherwise; \`RenderSamplesZVR\` shows 10 million 16-bit samples at 1500 × 300.

- *copies*: the time as a multiple of a plain copy (\`rep movsb\`) of the same bytes, made by turns with the calls
- *SSE2 alone*, *1000 × 1000*: the same, with that instruction set or of that size; *3-byte pixels*: the same, of pictures of
  older desktop hosts, and *in word copies* of as many 4-byte pixels
- *KiB besides*: the most memory that a call takes besides its pictures
- *16 × 16: ns*: one call on so small a picture

$kSpeedBegin
$kSpeedEnd
"
  TEXT=$section awk '/^## On other systems/ { print ENVIRON["TEXT"] } { print }' "$1" > "$1.new"
  mv "$1.new" "$1"
}
