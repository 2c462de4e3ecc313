#!/usr/bin/env bash
# check_floors.sh PROJECT_DIR
#
# The rooms and the only arrows between them. Prints each include that goes another way and fails.
set -uo pipefail
cd "$1" || exit 2

# room: what its files may include of this project (patterns of the path), and of third parties (headers).
rules='
common_stowraapi/platform  common_stowraapi/(platform/|export\.h)                                     <(curl/|zlib\.h|unicode/|expat\.h)
common_stowraapi/json      common_stowraapi/(json/|platform/|export\.h)                               <rapidjson/
common_stowraapi/request   common_stowraapi/(request/|platform/|export\.h)                            -
common_stowraapi/services  common_stowraapi/(services/|request/|json/|platform/|export\.h)            -
common_stowraapi/content   common_stowraapi/(content/|platform/|export\.h)                            -
host                       (host/|PUBLIC)                                                             <(CLI/|fmt/)
benchmarks                 (benchmarks/|PUBLIC)                                                       <(benchmark/|CLI/|curl/|expat\.h|fmt/|libxml/|malloc\.h|nlohmann/|Poco/|Q[A-Za-z]+>|rapidjson/|unicode/)
fuzz                       (fuzz/|tests/|common_stowraapi/)                                           <(expat\.h|nlohmann/|zlib\.h)
emulator                   emulator/                                                                  <(CLI/|httplib\.h|nlohmann/|sqlite3\.h|zlib\.h)
'

# Headers of the language and of POSIX.
standard='<([a-z_]+|c[a-z]+|(arpa|netinet|sys)/[a-z_]+\.h|(dlfcn|fcntl|grp|netdb|poll|pthread|pwd|sched|signal|spawn|unistd|emmintrin|arm_neon|time|stdlib|xlocale|locale)\.h)>'
public=$(sed -n 's/^#include "\(.*\)"$/\1/p' common_stowraapi/common_stowraapi.h; echo common_stowraapi/common_stowraapi.h)

failed=0
complain() { printf '%s: %s\n' "$1" "$2"; failed=1; }

is_public() { grep -qxF "$1" <<<"$public"; }

while read -r room own third; do
  [ -n "$room" ] && [ -d "$room" ] || continue
  for file in $(find "$room" -name '*.h' -o -name '*.cc' | sort); do
    while IFS= read -r include; do
      case $include in
        \"*)
          path=${include//\"/}
          if [[ $path =~ ^$own ]]; then continue; fi
          if [[ $own == *PUBLIC* ]] && is_public "$path"; then continue; fi
          complain "$file" "$room does not see $include" ;;
        *)
          if [[ $include =~ ^$standard$ ]]; then continue; fi
          if [[ $third != - && $include =~ ^$third ]]; then
            if is_public "$file"; then complain "$file" "a public header includes $include"; fi
            if [[ $room == common_stowraapi/platform && $file == *.h ]]; then
              complain "$file" "only source files here include $include"
            fi
            continue
          fi
          complain "$file" "$room does not see $include" ;;
      esac
    done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*([<"][^>"]+[>"]).*/\1/p' "$file")
  done
done <<<"$rules"

[ "$failed" = 0 ] && echo "floors: every include goes the way it should"
exit "$failed"
