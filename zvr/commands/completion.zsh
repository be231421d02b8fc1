#compdef zvr
# Completion of zvr's command lines in zsh. zvr lists what may follow; its last line is @files where files may, too.
local -a found
local after=' '
found=(${(f)"$($words[1] --complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2> /dev/null)"})
compset -P '*='
case $found[-1] in
  @files) shift -p found; _files ;;
  *=) after= ;;
esac
compadd -M 'm:{a-zA-Z}={A-Za-z}' -S "$after" -a found
