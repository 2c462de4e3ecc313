# SPDX-License-Identifier: MIT
# complete.zsh FOLDER LINE: prints the command line LINE as an interactive zsh has it after a tab.
zmodload zsh/zpty
zpty shell "TERM=dumb zsh -f -i"
zpty -w shell "fpath=(${(q)1} \$fpath); autoload -Uz compinit; compinit -u -D"
# Return shows the line, between two control characters, in place of running it.
zpty -w shell "show() { print -r -- \$'\\x02'\$BUFFER\$'\\x03'; BUFFER=; zle .accept-line }; zle -N accept-line show; PS1="
zpty -w -n shell "$2"$'\t'
zpty -w -n shell $'\n'
zpty -r shell output $'*\x02*\x03*'
print -r -- "${${output##*$'\x02'}%%$'\x03'*}"
zpty -d shell
