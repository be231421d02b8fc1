#compdef zvr
# Completion of zvr's command lines in zsh. zvr lists what may follow; its last line is @files where files may, too.
local -a found
found=(${(f)"$($words[1] --complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2> /dev/null)"})
compset -P '*='
[[ $found[-1] != @files ]] || _files
compadd -a -- found
