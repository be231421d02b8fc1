# Completion of zvr's command lines in bash. zvr itself knows what may follow; where it says nothing, files do.
_zvr() {
  local IFS=$'\n'
  # shellcheck disable=SC2207 # split at line ends alone
  COMPREPLY=($("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2> /dev/null))
}
complete -o default -F _zvr zvr
