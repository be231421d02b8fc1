#!/usr/bin/env bash
# manual_index.sh: prints docs/manual/README.md with its rows of methods and classes made anew, from what `zvr list` knows and
# from the purposes in their sections: <!-- index PURPOSE -->. Rows keep their order. New ones follow those of their page,
# or stand before the classes. zvr is in the path.
set -euo pipefail
export LC_ALL=C

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../docs/manual"
members=$(zvr list --json)
awk '
  function addMissing(page,    i, name) {
    for (i = 1; i <= count; ++i) {
      name = names[i]
      if (name in listed || (page != "" && pages[name] != page)) continue
      listed[name]
      print rows[name]
    }
  }
  pass == "members" && /"(globalMethods|pictureMethods|classes)"/ {
    on = /global/ ? "global" : /picture/ ? "Picture" : ""
  }
  pass == "members" { split($0, quoted, "\"") }
  quoted[2] == "name" { named = quoted[4] }
  quoted[2] == "declaration" { name = named }
  quoted[2] == "result" { result = quoted[4] == "" ? "by reference" : quoted[4] }
  quoted[2] == "consoleSafe" { safe = (/true/ ? "yes" : "no") }
  quoted[2] == "consoleSafe" && on != "" {
    ++forms[name]
    before[name] = on
    after[name] = result " | " safe
  }
  quoted[2] == "properties" {
    forms[named] = "class"
    after[named] = safe
  }
  pass == "sections" && FNR == 1 {
    page = FILENAME
    delete quoted
  }
  pass == "sections" && /^##? / { name = $2 }
  pass == "sections" && /^<!-- index .* -->$/ && name in forms {
    names[++count] = name
    pages[name] = page
    purpose = substr($0, 12, length($0) - 15)
    if (forms[name] == "class") {
      rows[name] = "| [" name "](" page ") | class | | " purpose " | [Run](" page "#run) | " after[name] " |"
    } else {
      rows[name] = "| [" name "](" page "#" tolower(name) ") | " forms[name] " | " before[name] " | " purpose " | " \
        after[name] " |"
    }
  }
  pass == "rows" || pass == "index" {
    name = match($0, /^\| \[[A-Za-z0-9_]*\]/) ? substr($0, 4, RLENGTH - 4) : ""
    if (name in rows) listed[name]
  }
  pass == "index" {
    page = name in rows ? pages[name] : ""
    if (last != "" && page != last) addMissing(last)
    if (/ \| class \| /) addMissing("")
    last = page
    if (name == "" || name in rows) print (name in rows ? rows[name] : $0)
  }
' pass=members <(printf '%s\n' "$members") pass=sections [a-z]*.md pass=rows README.md pass=index README.md
