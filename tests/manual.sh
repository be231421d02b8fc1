#!/usr/bin/env bash
# The manual declares every member as it is registered, its links lead somewhere, its lines for zvr run and answer as quoted.
# shellcheck source=tests/pages.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/pages.sh"

manual=$root/docs/manual
shopt -s extglob
sections=("$manual"/!(README|zvr).md)
pages=("$root/README.md" "$manual/README.md" "$manual/zvr.md" "${sections[@]}")

# ---- Members: a line [CLASS ]SECTION: DECLARATION, console-safe (yes or no) ----

registered() {
  zvr list --json | awk -F'"' '
    $2 == "name" { name = $4; type = "" }
    $2 == "type" { type = $4 }
    $2 == "declaration" { section = class name; declaration = $4 }
    $2 == "consoleSafe" {
      safe = ", console-safe " (/true/ ? "yes" : "no")
      if (declaration != "") print section ": " declaration safe
      else if (type != "") print class "Properties: " name " as " type safe
      else class = name " "
      declaration = ""
    }
  '
}

# Every section of the second level describes a member: declarations first, then a snippet and a line to try.
described() {
  awk '
    function endSection(    i) {
      if (safe == "") safe = pageSafe
      for (i = 1; i <= count; ++i) print section ": " declared[i] ", console-safe " safe
      if (section !~ /^$|Properties$/ && (basic < 2 || shell != 1)) print section ": lacks a snippet or line"
      section = safe = ""
      count = basic = shell = 0
    }
    !isCode && /^#/ { endSection() }
    FNR == 1 { class = /ZVR$/ ? $2 " " : ""; pageSafe = "" }
    /^## / { section = class $2 }
    /^```basic/ { ++basic }
    /^```sh/ { ++shell }
    /^```/ { isCode = !isCode; next }
    isCode && basic == 1 && !shell { declared[++count] = $0 }
    !isCode && tolower($0) ~ /console-safe/ {
      safe = /Not console-safe|\*\* No/ ? "no" : "yes"
      if (section == "") pageSafe = safe
    }
    END { endSection() }
  ' "${sections[@]}"
}

diff <(registered | sort) <(described | sort) ||
  complain 'Above: members as registered (<), and as the manual describes them (>).'
diff "$manual/README.md" <("$root/scripts/manual_index.sh") ||
  complain 'The index is not as scripts/manual_index.sh makes it (>).'

# ---- Links ----

# As code-hosting sites make them from headings.
anchorsOf() { sed -n 's/^##* //p' "$1" | tr 'A-Z ' 'a-z-' | tr -cd 'a-z0-9_\n-'; }

for page in "${pages[@]}"; do
  while IFS= read -r target; do
    file=$(dirname "$page")/${target%%#*}
    [[ $target != '#'* ]] || file=$page
    [[ -e $file ]] || complain "$page: $target leads nowhere"
    [[ $target != *'#'* ]] || grep -qx -e "${target#*#}" <(anchorsOf "$file") || complain "$page: $target has no such heading"
  done < <(grep -o '](\([^) ]*\))' "$page" | sed 's/^](//; s/)$//' | grep -v '://')
done

# ---- Lines for zvr, a session for each page, in a folder with the files that they name ----

export material=$work/material
mkdir material
for name in photo other red green blue shot mask; do cp "$root/tests/photographs/rgb.png" "material/$name.png"; done
cp "$root/tests/photographs/rgba.png" material/logo.png
cp "$manual/images/FindPictureZVR-pic.png" material/icon.png
cp "$manual/looks/sunset.cube" material/film.cube
cp "$manual"/images/* material
head -c 4000 /dev/zero | tr '\0' U > material/samples.raw
head -c 256 material/samples.raw > material/curve.bin
# 8000 unsigned bytes a second, one channel.
printf 'RIFF\xC4\x0F\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\b\0data\xA0\x0F\0\0' |
  cat - material/samples.raw > material/speech.wav

for page in "${pages[@]}"; do
  lines=$(sed -n '/^```sh$/,/^```$/ s/^zvr .*/$ &\n2> …/p; /^<!-- answer / { s///; s/ -->$//; s/ | /\n/g; s/^/$ /p }' "$page")
  [[ -n $lines ]] || complain "$page: no line for zvr"
  # shellcheck disable=SC2016 # for the session
  printf '# %s\n%s\n%s\n\n' "$page" '$ cp $material/* .' "$lines" >> lines
done
"$root/tests/sessions/run.sh" lines || complain 'Above: lines of the manual that fail, or answer otherwise than it says.'

exit "$status"
