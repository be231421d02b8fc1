# Completion of zvr's command lines in bash. zvr lists what may follow; its last line is @files where files may, too.
_zvr() {
  # shellcheck disable=SC2034 # _init_completion sets prev
  local cur prev words cword
  _init_completion -n '=:@&' || return
  mapfile -t COMPREPLY < <("${words[0]}" --complete "${words[@]:1:cword}" 2> /dev/null)
  case ${COMPREPLY[*]: -1} in
    @files)
      compopt -o filenames
      unset 'COMPREPLY[-1]'
      mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "${cur#*=}")
      ;;
    *=) compopt -o nospace ;;
  esac
} &&
  complete -F _zvr zvr
