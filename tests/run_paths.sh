#!/usr/bin/env bash
# run_paths.sh FOLDER: no program or library in a build folder looks for libraries in the current folder, which is what an
# empty or relative element of a run path means.
set -euo pipefail
export LC_ALL=C

status=0 seen=''
while IFS= read -r -d '' file; do
  # Scripts are passed over.
  path=$( (readelf -d "$file" 2> /dev/null || true) | sed -n 's/.*(\(RPATH\|RUNPATH\)).*\[\(.*\)\]$/\2/p')
  [[ -n $path ]] || continue
  seen+=" $file"
  while IFS= read -r -d : element; do
    # shellcheck disable=SC2016 # the loader fills it in
    [[ $element == /* || $element == '$ORIGIN' || $element == '$ORIGIN/'* ]] && continue
    printf '%s: "%s" in the run path %s\n' "$file" "$element" "$path"
    status=1
  done <<< "$path:"
done < <(find "$1" -type f \( -perm -u+x -o -name '*.so*' \) -print0)
[[ $seen == *" $1/zvr"* ]] || { printf 'No run path was found in %s/zvr\n' "$1" && status=1; }
exit "$status"
