#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_floors.sh PROJECT_DIR
#
# Checks the rooms and the only arrows between them. Prints each include that goes another way, each circle of includes in
# the library, and each header that stands on the wrong floor, and fails.
set -uo pipefail
cd "$1" || exit 2

library=common_stowraapi
platform=$library/platform

# The public headers of each wing of the platform. They stand in platform/ itself.
text_headers="$platform/(ustring|format_argument|random)\.h"
notify_headers="$platform/(observer|notification_center)\.h"
http_headers="$platform/(internet_data|internet_data_delegate|transfer_types|url|(body|file|memory)_(source|sink))\.h"
xml_headers="$platform/xml_input\.h"

# Small headers without a room.
base="$library/(export|succeeds)\.h"

# room: the paths of this project that its files may include, and the headers of third parties. PLATFORM stands for every
# public header of the platform, PUBLIC for every public header.
rules="
$platform/text      ($platform/text/|$text_headers|$library/export\.h)                                      <unicode/
$platform/notify    ($platform/notify/|$notify_headers|$library/export\.h)                                  -
$platform/http      ($platform/(http|text|notify)/|$http_headers|$text_headers|$notify_headers|$library/export\.h)  <(curl/|zlib\.h)
$platform/xml       ($platform/(xml|text)/|$xml_headers|$text_headers|$library/export\.h)                   <expat\.h
$library/json       ($library/json/|PLATFORM|$base)                                                         <rapidjson/
$library/request    ($library/request/|PLATFORM|$base)                                                      -
$library/services   ($library/(services|request|json)/|PLATFORM|$base)                                      -
$library/content    ($library/content/|PLATFORM|$base)                                                      -
host                (host/|PUBLIC)                                                                          <(CLI/|fmt/)
benchmarks          (benchmarks/|PUBLIC)                                                                    <(benchmark/|CLI/|curl/|expat\.h|fmt/|libxml/|malloc\.h|nlohmann/|Poco/|Q[A-Za-z]+>|rapidjson/|unicode/)
fuzz                (fuzz/|tests/|$library/)                                                                <(expat\.h|nlohmann/|zlib\.h)
examples            ((\.\./)?[a-z_]+\.h|PUBLIC)                                                              <(dispatch/dispatch\.h|glib\.h|Q[A-Za-z]+>)
packaging           (packaging/|(host|emulator)/command_line\.h)                                             <CLI/
emulator            emulator/                                                                               <(CLI/|httplib\.h|nlohmann/|openssl/|sqlite3\.h|zlib\.h)
"

# Headers of the language and of POSIX.
standard='<([a-z_]+|c[a-z]+|(arpa|netinet|sys)/[a-z_]+\.h|(dlfcn|fcntl|grp|netdb|poll|pthread|pwd|sched|signal|spawn|unistd|emmintrin|arm_neon|time|stdlib|xlocale|locale)\.h)>'

# The pairs of files that may include each other: the first declares a class, the second implements it.
facades="
$library/json/document $library/json/document_tree
$library/content/content_item $library/content/entry_reader
"

public=$(sed -n 's/^#include "\(.*\)"$/\1/p' $library/$library.h; echo $library/$library.h)

failed=0
complain() { printf '%s: %s\n' "$1" "$2"; failed=1; }

# has_line TEXT LINE
has_line() { [[ $'\n'$1$'\n' == *$'\n'"$2"$'\n'* ]]; }

is_public() { has_line "$public" "$1"; }

includes_of() { sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*([<"][^>"]+[>"]).*/\1/p' "$1"; }

files_in() { find "$@" \( -name '*.h' -o -name '*.cc' \) | sort; }

# check_include FILE ROOM OWN THIRD INCLUDE
check_include() {
  local file=$1 room=$2 own=$3 third=$4 include=$5 path
  if [[ $include == \"* ]]; then
    path=${include//\"/}
    if [[ $path =~ ^$own ]]; then return; fi
    if [[ $own == *PUBLIC* ]] && is_public "$path"; then return; fi
    if [[ $own == *PLATFORM* && $path == "$platform"/* ]] && is_public "$path"; then return; fi
  else
    if [[ $include =~ ^$standard$ ]]; then return; fi
    if [[ $third != - && $include =~ ^$third ]]; then
      if is_public "$file"; then complain "$file" "a public header includes $include"; fi
      if [[ $room == "$platform"/* && $file == *.h ]]; then
        complain "$file" "only source files here include $include"
      fi
      return
    fi
  fi
  complain "$file" "$room does not see $include"
}

while read -r room own third; do
  [ -n "$room" ] && [ -d "$room" ] || continue
  files=$(files_in "$room")
  # A wing's public headers obey its rule, too.
  if [[ $room == "$platform"/* ]]; then
    headers=${room##*/}_headers
    files+=$'\n'$(files_in "$platform" -maxdepth 1 | grep -E "^${!headers}$")
  fi
  while read -r file; do
    while read -r include; do
      check_include "$file" "$room" "$own" "$third" "$include"
    done < <(includes_of "$file")
  done <<<"$files"
done <<<"$rules"

while read -r file; do
  if ! is_public "$file"; then complain "$file" "only public headers stand in $platform"; fi
  grep -qE "^($text_headers|$notify_headers|$http_headers|$xml_headers)$" <<<"$file" ||
    complain "$file" "belongs to no wing"
done < <(files_in "$platform" -maxdepth 1)
while read -r file; do
  if is_public "$file"; then complain "$file" "a public header stands in a wing"; fi
done < <(files_in "$platform" -mindepth 2)

# A header and the source file beside it count as one.
circles=$(
  while read -r file; do
    unit=${file%.*}
    while read -r include; do
      [[ $include == \"$library/* ]] || continue
      included=${include//\"/}
      included=${included%.*}
      [ "$unit" = "$included" ] && continue
      has_line "$facades" "$included $unit" && continue
      echo "$unit $included"
    done < <(includes_of "$file")
  done < <(files_in $library) | tsort 2>&1 >/dev/null | sed 's/^tsort: //'
)
if [ -n "$circles" ]; then
  echo "a circle of includes:"
  echo "$circles"
  failed=1
fi

[ "$failed" = 0 ] && echo "floors: every include goes the way it should"
exit "$failed"
