# SPDX-License-Identifier: MIT
# Source this with the emulator and its options. Starts it, sets url and work, and stops it at exit.
work=$(mktemp -d)
mkfifo "$work/url"
"$@" --quiet >"$work/url" &
emulator_pid=$!
trap 'kill "$emulator_pid"; rm -rf "$work"' EXIT
read -r url <"$work/url"
