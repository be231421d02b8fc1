# How much of the tree is tests. Sourced by dev.
# shellcheck shell=bash

# linesOf COMMENT: of the files that are listed on standard input the lines that are neither blank nor, from their first
# mark on, a comment.
linesOf() { xargs -d '\n' cat | grep -cvE "^[[:space:]]*($1.*)?$"; }

# tellProportion: the lines of tests, fuzz targets and case files for each 100 of code, without photographs and corpora.
tellProportion() {
  local code tests others
  code=$(git ls-files frame picture kernels operations classes plugin host zvr | grep -E '\.(cpp|h)$' | linesOf //)
  tests=$(git ls-files tests fuzz | grep -E '\.(cpp|h)$' | linesOf //)
  others=$(git ls-files tests fuzz | grep -vE '\.(cpp|h|md)$|^tests/photographs/|^fuzz/corpus/' | linesOf '#')
  say "Tests: $((tests + others)) lines for $code of code, $(((1000 * (tests + others) / code + 5) / 10)) per 100"
}
