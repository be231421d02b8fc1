# Completion of zvr's command lines in bash. zvr lists what may follow; its last line is @files where files may, too.
_zvr() {
  local cur prev words cword
  _init_completion -n '=:@&' || return
  mapfile -t COMPREPLY < <("${words[0]}" --complete "${words[@]:1:cword}" 2> /dev/null)
  ((${#COMPREPLY[@]})) || return 0
  if [[ ${COMPREPLY[-1]} == @files ]]; then
    compopt -o filenames
    mapfile -t -O $((${#COMPREPLY[@]} - 1)) COMPREPLY < <(compgen -f -- "${cur#*=}")
  elif [[ ${COMPREPLY[-1]} == *= ]]; then
    compopt -o nospace
  fi
} &&
  complete -F _zvr zvr
