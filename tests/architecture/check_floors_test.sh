#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Whether check_floors.sh accepts what it should and complains of each kind of wrong include.
set -uo pipefail
check=$(cd "$(dirname "$0")" && pwd)/check_floors.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
library=$tree/common_stowraapi
failed=0

# A small tree in which every include is allowed.
plant() {
  rm -rf "${tree:?}"/*
  mkdir -p "$library"/platform/{text,notify,http,xml} "$library"/{json,request,services,content} "$tree"/{host,emulator}
  local header
  for header in platform/{ustring,observer,internet_data,xml_input}.h json/value.h request/base.h services/query.h content/item.h; do
    echo "#include \"common_stowraapi/$header\"" >>"$library/common_stowraapi.h"
    add "common_stowraapi/$header" '<string>'
  done
  add common_stowraapi/export.h '<string>'
  add common_stowraapi/succeeds.h '<new>'
  add common_stowraapi/platform/text/conversion.h '<string>'
  add common_stowraapi/platform/text/conversion.cc '"common_stowraapi/platform/text/conversion.h"' '<unicode/utf8.h>'
  add common_stowraapi/platform/notify/center.cc '"common_stowraapi/platform/observer.h"'
  add common_stowraapi/platform/http/loop.cc '"common_stowraapi/platform/text/conversion.h"' '<curl/curl.h>'
  add common_stowraapi/platform/http/sender.cc '"common_stowraapi/platform/observer.h"' '<zlib.h>'
  add common_stowraapi/platform/xml/tree.cc '"common_stowraapi/platform/text/conversion.h"' '<expat.h>'
  add common_stowraapi/json/value.cc '"common_stowraapi/platform/ustring.h"' '<rapidjson/document.h>'
  add common_stowraapi/services/query.cc '"common_stowraapi/json/value.h"' '"common_stowraapi/request/base.h"' \
    '"common_stowraapi/succeeds.h"'
  add common_stowraapi/content/item.cc '"common_stowraapi/platform/xml_input.h"'
  add host/main.cc '"common_stowraapi/common_stowraapi.h"' '<fmt/core.h>'
  add emulator/main.cc '<httplib.h>'
}

# add FILE INCLUDE...
add() {
  local file=$tree/$1 include
  shift
  for include in "$@"; do echo "#include $include" >>"$file"; done
}

fail() { echo "check_floors_test: $1" >&2; failed=1; }

# expect_complaint TEXT FILE INCLUDE...: the small tree with these includes added is refused with TEXT.
expect_complaint() {
  local text=$1 output
  shift
  plant
  add "$@"
  if output=$("$check" "$tree"); then
    fail "$*: not refused"
  elif [[ $output != *"$text"* ]]; then
    fail "$*: refused for another reason: $output"
  fi
}

plant
output=$("$check" "$tree") || fail "the small tree is refused: $output"

wing=common_stowraapi/platform
expect_complaint "text does not see" $wing/text/a.cc '"common_stowraapi/platform/observer.h"'
expect_complaint "text does not see" $wing/text/a.cc '"common_stowraapi/platform/xml/tree.h"'
expect_complaint "text does not see" $wing/ustring.h '"common_stowraapi/platform/observer.h"'
expect_complaint "notify does not see" $wing/notify/a.cc '"common_stowraapi/platform/ustring.h"'
expect_complaint "notify does not see" $wing/notify/a.cc '"common_stowraapi/platform/http/loop.h"'
expect_complaint "http does not see" $wing/http/a.cc '"common_stowraapi/platform/xml_input.h"'
expect_complaint "xml does not see" $wing/xml/a.cc '"common_stowraapi/platform/http/loop.h"'
expect_complaint "xml does not see" $wing/xml/a.cc '"common_stowraapi/platform/observer.h"'
expect_complaint "http does not see" $wing/http/a.cc '"common_stowraapi/json/value.h"'
expect_complaint "http does not see" $wing/http/a.cc '"common_stowraapi/succeeds.h"'
expect_complaint "json does not see" common_stowraapi/json/a.cc '"common_stowraapi/platform/text/conversion.h"'
expect_complaint "json does not see" common_stowraapi/json/a.cc '"common_stowraapi/request/base.h"'
expect_complaint "request does not see" common_stowraapi/request/a.cc '"common_stowraapi/json/value.h"'
expect_complaint "request does not see" common_stowraapi/request/a.cc '"common_stowraapi/services/query.h"'
expect_complaint "services does not see" common_stowraapi/services/a.cc '"common_stowraapi/content/item.h"'
expect_complaint "content does not see" common_stowraapi/content/a.cc '"common_stowraapi/json/value.h"'
expect_complaint "content does not see" common_stowraapi/content/a.cc '"common_stowraapi/platform/xml/tree.h"'
expect_complaint "host does not see" host/a.cc '"common_stowraapi/succeeds.h"'
expect_complaint "emulator does not see" emulator/a.cc '"common_stowraapi/platform/ustring.h"'
expect_complaint "text does not see" $wing/text/a.cc '<expat.h>'
expect_complaint "json does not see" common_stowraapi/json/a.cc '<curl/curl.h>'
expect_complaint "services does not see" common_stowraapi/services/a.cc '<rapidjson/document.h>'
expect_complaint "only source files here include" $wing/http/a.h '<curl/curl.h>'
expect_complaint "a public header includes" common_stowraapi/json/value.h '<rapidjson/document.h>'
expect_complaint "a public header includes" $wing/xml_input.h '<expat.h>'
expect_complaint "only public headers stand in" $wing/a.h '<string>'
expect_complaint "belongs to no wing" $wing/a.h '<string>'
plant
add $wing/ustring.h '"common_stowraapi/platform/text/conversion.h"'
add $wing/text/conversion.h '"common_stowraapi/platform/ustring.h"'
output=$("$check" "$tree") && fail "a circle is not refused"
[[ $output == *"a circle of includes"* ]] || fail "a circle: $output"
plant
add common_stowraapi/common_stowraapi.h '"common_stowraapi/platform/text/conversion.h"'
output=$("$check" "$tree") && fail "a public header in a wing is not refused"
[[ $output == *"a public header stands in a wing"* ]] || fail "a public header in a wing: $output"

exit "$failed"
