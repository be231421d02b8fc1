#!/usr/bin/env bash
# A page of `zvr gallery` has everything that is registered and needs nothing beside itself, and its lines for a shell run.
# ZVR_PROGRAMS is the folder of zvr, else that of the release build.
set -euo pipefail
export LC_ALL=C

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
PATH=${ZVR_PROGRAMS:-$root/build/release}:$PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
status=0
kNothingHeld='held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors'

complain() {
  printf '%s: %s\n' "$photo on $host" "$*"
  status=1
}

# plain: the text of HTML, without its tags.
plain() { sed 's/<[^>]*>//g; s/&lt;/</g; s/&gt;/>/g; s/&quot;/"/g; s/&amp;/\&/g'; }

# Every element that is opened is closed, in order. Lines begin with tags.
checkNesting() {
  awk '
    !match($0, /^<\/?[a-z]+[0-9]*/) { next }
    { name = substr($0, 2, RLENGTH - 1) }
    name ~ /^(meta|link|img|input|wbr)$/ || substr($0, index($0, ">") - 1, 1) == "/" { next }
    name !~ /^\// { open[++depth] = name; next }
    name != "/" open[depth--] { print "not nested: " substr($0, 1, 80); exit }
    END { if (depth != 0) print depth " elements are left open" }
  ' tags
}

checkPage() {
  local ids target count=0
  sed 's/<[a-zA-Z/]/\n&/g' page.html > tags
  plain < page.html > text
  [[ $(checkNesting) == '' ]] || complain "$(checkNesting)"
  ids=$(grep -o ' id="[^"]*"' tags)
  [[ $(sort -u <<< "$ids") == $(sort <<< "$ids") ]] || complain "an id twice: $(sort <<< "$ids" | uniq -d)"
  while IFS= read -r target; do
    grep -qF " id=$target" <<< "$ids" || complain "a link to $target, which is not there"
  done < <(sed -n 's/.* href="#\([^"]*"\).*/"\1/p' tags)
  ! grep -E 'https?://|\{\{' page.html | cut -c 1-200 || complain 'an address or a field of the template is left'
  ! grep -ohE '(src|href)="[^"]{,40}|url\([^)]{,40}' tags | grep -vE '"#|"data:|\(data:' || complain 'that is outside'
  [[ $(wc -c < page.html) -le 3000000 ]] || complain 'the page is too large'

  # Everything that is registered, each method with a line that runs it; every result that is a picture.
  while IFS= read -r declaration; do
    grep -qF -e "$declaration" text || complain "lacks $declaration"
  done < <(zvr list --json | sed '/"classes"/,$d' | awk -F'"' '$6 == "declaration" { print $8 }'
    printf 'Class %s\n' PictureSepiaZVR PictureLut3DZVR)
  ! grep 'No example yet' text || complain 'a method without an example'
  [[ $(wc -l < lines) -eq $(grep -c '^<article' tags) ]] || complain 'a card without a line for zvr'
  rm -rf shown
  mkdir shown
  grep -o 'data:image/[a-z]*;base64,[^")]*' tags | while IFS=, read -r _ data; do
    count=$((count + 1))
    base64 -d <<< "$data" > "shown/$count"
  done
  zvr apply shown/* HasMaskZVR > /dev/null || complain 'a picture of the page is none'
  [[ $(find shown -type f | wc -l) -gt $(grep -c 'out\.png' lines) ]] || complain 'a picture is missing'

  # A part that was cut out at 2/5 and 3/10 of the sides; all the photograph's pixels; bars, not all of them empty.
  [[ $(grep -o 'x="[0-9]*" y="[0-9]*" width="7" height="5"' tags | sort -u) == 'x="16" y="7" width="7" height="5"' ]] ||
    complain 'the part is not marked where it is'
  grep -qF 'count = 1050' text || complain 'the count is another'
  grep -qF 'fill="#FFD08C"' tags || complain 'a colour of the call is not shown'
  grep -o '<path class="[rgb]" d="[^"]*' tags | awk '!/v-/ || gsub(/h1/, "") != 256 { exit 1 }' || complain 'not 256 bars'
}

# runLines: runs the page's lines; what the line N prints goes to HOST/N, and the picture or string that it writes to
# HOST/N.file.
runLines() {
  local line words answer number=0
  mkdir "$host"
  while IFS= read -r line; do
    number=$((number + 1))
    rm -f out.*
    read -ra words <<< "$line"
    eval "zvr ${words[1]} --ledger --host $host ${words[*]:2}" > "$host/$number" 2> log || complain "$line: $(< log)"
    grep -q "$kNothingHeld" log || complain "$line: $(< log)"
    [[ $line != *'-o out.'* ]] || mv out.* "$host/$number.file" || complain "$line: no file"
    # The alpha channel of a picture without one is another on each kind of host.
    [[ ! $line =~ 'EmbeddedMaskZVR false'( -o|$) ]] || rm "$host/$number.file"
    while IFS= read -r answer; do
      grep -qF -e "$answer" text || complain "lacks $answer"
    done < <(grep ' = ' "$host/$number" | grep -v MemoryBlock)
  done < lines
}

# make HOST PHOTO: the page that the host makes of the photograph.
make() {
  host=$1 photo=$2
  cp "$root/docs/manual/images/FindPictureZVR-pic.png" "./$photo"
  zvr gallery --host "$host" -o out --ledger -- "$photo" > log 2>&1 || complain "$(< log)"
  grep -q "$kNothingHeld" log || complain "$(< log)"
  mv out/index.html page.html
  sed -n 's/.*<code>\(zvr [^<]*\)<.*/\1/p' page.html | plain > lines
}

[[ -z ${DISPLAY:-} ]] || make gdk photo.png
# Photographs whose names read as something else.
make cairo InvertZVR
checkPage
runLines
make console -o
checkPage
runLines
diff -r cairo console || complain 'other answers than on cairo, by the line of the page'

exit "$status"
