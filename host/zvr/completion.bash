# Completion of zvr's command lines in bash. zvr itself lists what may follow; where it lists nothing, files do.
_zvr() {
  local IFS=$'\n'
  # shellcheck disable=SC2207 # split at line ends only
  COMPREPLY=($("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2> /dev/null))
}
complete -o default -F _zvr zvr
