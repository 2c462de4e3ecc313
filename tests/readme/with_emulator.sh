# To be sourced: starts the emulator $1, whose address is then in $url, and stops it in the end.
work=$(mktemp -d)
mkfifo "$work/url"
"$1" --quiet >"$work/url" &
emulator_pid=$!
trap 'kill "$emulator_pid"; rm -rf "$work"' EXIT
read -r url <"$work/url"
