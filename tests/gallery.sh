#!/usr/bin/env bash
# A page of `zvr gallery` has everything that is registered and needs nothing beside itself, and its lines for a shell run.
# shellcheck source=tests/pages.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/pages.sh"

kNothingHeld='held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors'

# plain: the text of HTML, without its tags.
plain() { sed 's/<[^>]*>//g; s/&lt;/</g; s/&gt;/>/g; s/&quot;/"/g; s/&apos;/'"'"'/g; s/&amp;/\&/g'; }

checkPage() {
  sed 's/<[a-zA-Z/]/\n&/g' page.html > tags
  plain < page.html > text
  # Others than those that nothing closes, or that close themselves. Lines begin with tags.
  sed -nE '/^<(meta|link|img|input|wbr)|^<[^>]*\/>/d; s/^<([a-z]+[0-9]*).*/\1/p' tags | sort > opened
  sed -nE 's/^<\/([a-z]+[0-9]*).*/\1/p' tags | sort | diff opened - || complain 'Above: elements opened (<), and closed (>)'
  sed -n 's/.* id="\([^"]*\)".*/\1/p' tags | sort > ids
  [[ $(uniq -d ids) == '' ]] || complain "an id twice: $(uniq -d ids)"
  sed -n 's/.* href="#\([^"]*\)".*/\1/p' tags | sort -u | comm -13 ids - > astray
  [[ ! -s astray ]] || complain "links to what is not there: $(< astray)"
  ! grep -E 'https?://|\{\{' page.html | cut -c 1-200 || complain 'an address or a field of the template is left'
  ! grep -ohE '(src|href)="[^"]{,40}|url\([^)]{,40}' tags | grep -vE '"#|"data:|\(data:' || complain 'that is outside'
  [[ $(wc -c < page.html) -le 3000000 ]] || complain 'the page is too large'

  # Everything that is registered, each method with a line that runs it; every result that is a picture.
  zvr list --json | sed '/"classes"/,$d' | awk -F'"' '$2 == "declaration" { print $4 }' > wanted
  printf '%s\n' 'Class PictureSepiaZVR' 'Class PictureLut3DZVR' 'count = 1050' >> wanted
  [[ $(wc -l < lines) -eq $(grep -c '^<div class="form"' tags) ]] || complain 'a form without a line for zvr'
  [[ $(grep -c 'data:image/[a-z]*;base64,[^")]' tags) -gt $(grep -c 'out\.png' lines) ]] || complain 'a picture is missing'

  # A part that was cut out at 2/5 and 3/10 of the sides; all the photograph's pixels; bars, not all of them empty.
  [[ $(grep -o 'x="[0-9]*" y="[0-9]*" width="7" height="5"' tags | sort -u) == 'x="16" y="7" width="7" height="5"' ]] ||
    complain 'the part is not marked where it is'
  grep -qF 'fill="#FFD08C"' tags || complain 'a colour of the call is not shown'
  [[ $(sed -n 's/^<img.* alt="">//p' tags | sort -u | xargs) == 'other part' ]] || complain 'the pictures of calls are not shown'
  grep -o '<path class="[rgb]" d="[^"]*' tags | awk '!/v-/ || gsub(/h1/, "") != 256 { exit 1 }' || complain 'not 256 bars'
}

# Runs the page's lines; it has their answers, too.
runLines() {
  local line words
  while IFS= read -r line; do
    read -ra words <<< "$line"
    eval "zvr ${words[1]} --ledger --host $host ${words[*]:2}" > answers 2> log && grep -q "$kNothingHeld" log ||
      complain "$line: $(< log)"
    grep ' = ' answers | grep -v MemoryBlock >> wanted || true
  done < lines
}

# check HOST PHOTO: the page that the host makes of the photograph.
check() {
  local line
  host=$1 photo=$2
  echo "$photo on $host:"
  cp "$root/docs/manual/images/FindPictureZVR-pic.png" "./$photo"
  zvr gallery --host "$host" -o out --ledger -- "$photo" > log 2>&1 && grep -q "$kNothingHeld" log || complain "$(< log)"
  [[ $host != gdk ]] || return 0  # which can't scroll these pictures
  mv out/index.html page.html
  sed -n 's/.*<code>\(zvr [^<]*\)<.*/\1/p' page.html | plain > lines
  checkPage
  [[ $host != cairo ]] || runLines
  while IFS= read -r line; do
    grep -qF -e "$line" text || complain "lacks $line"
  done < wanted
}

# Photographs whose names read as something else.
check cairo InvertZVR
check console -o
[[ -z ${DISPLAY:-} ]] || check gdk photo.png

exit "$status"
