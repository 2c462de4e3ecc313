# SPDX-License-Identifier: MIT
# Source this with the emulator and its options. Starts it, sets url and work, and stops it at exit. The emulator is on
# this machine, so the user's proxies are ignored.
unset http_proxy https_proxy HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY
work=$(mktemp -d)
mkfifo "$work/url"
"$@" --quiet >"$work/url" &
emulator_pid=$!
trap 'kill "$emulator_pid"; rm -rf "$work"' EXIT
read -r url <"$work/url"
