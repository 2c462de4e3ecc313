#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# reference_test.sh man|bash|zsh|fish FOLDER
#
# Checks the man pages of the programs, or one shell's completion, in FOLDER. Exits with 77 if it needs a program that is
# not installed.
set -uo pipefail
part=$1 folder=$2
failed=0

need() { command -v "$1" >/dev/null || { echo "$1 is not installed"; exit 77; }; }

# expect WHAT WANTED GIVEN
expect() {
  if [ "$2" != "$3" ]; then
    printf '%s: wanted "%s", got "%s"\n' "$1" "$2" "$3" >&2
    failed=1
  fi
}

options() { grep -oE -- '--[a-z][a-z-]*' | LC_ALL=C sort -u; }

# bash_completes WORD...: the completions of the last word.
bash_completes() {
  bash -c 'source "$0/stowra.bash"; source "$0/stowra-emulator.bash"
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); "_${1//-/_}"; echo "${COMPREPLY[*]}"' "$folder" "$@"
}

fish_completes() {
  fish --no-config -c "source $folder/stowra.fish; source $folder/stowra-emulator.fish; complete -C '$*'" |
    cut -f 1 | paste -sd ' '
}

# zsh_completes LINE: the command line after a tab.
zsh_completes() {
  timeout 60 zsh -f "$(dirname "$0")/complete.zsh" "$folder" "$1"
}

case $part in
  man)
    need man
    for page in stowra stowra-emulator; do
      expect "$page.1" "" "$(LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l -Tutf8 -Z "$folder/$page.1" 2>&1 >/dev/null)"
      if command -v mandoc >/dev/null; then
        expect "$page.1 by mandoc" "" "$(mandoc -T lint -W warning "$folder/$page.1")"
      fi
      program=$folder/../../$([ "$page" = stowra ] && echo host || echo emulator)/$page
      expect "options that $page.1 lacks" "" \
        "$(comm -23 <("$program" --help | options) <(sed 's/\\-/-/g' "$folder/$page.1" | options))"
    done ;;
  bash)
    need bash
    expect "a command" "search" "$(bash_completes stowra se)"
    expect "an option of a command" "--all" "$(bash_completes stowra search --al)"
    expect "an option of the program" "--version" "$(bash_completes stowra --v)"
    expect "the value of a choice" "matched" "$(bash_completes stowra-emulator --replay-order m)"
    expect "an open value" "" "$(bash_completes stowra search --timeout '')" ;;
  zsh)
    need zsh
    expect "a command" "stowra search " "$(zsh_completes "stowra sea")"
    expect "an option of a command" "stowra search --all " "$(zsh_completes "stowra search --al")"
    expect "the value of a choice" "stowra-emulator --replay-order matched " \
      "$(zsh_completes "stowra-emulator --replay-order ma")" ;;
  fish)
    need fish
    expect "a command" "search" "$(fish_completes stowra sea)"
    expect "an option of a command" "--all" "$(fish_completes stowra search --al)"
    expect "the value of a choice" "matched" "$(fish_completes stowra-emulator --replay-order m)" ;;
esac
[ "$failed" = 0 ] && echo "$part: as expected"
exit "$failed"
