#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh BUILD_DIR
#
# Checks the libraries and the program that cross.sh has linked: install names, versions, the libraries that they load, and
# the exported names.
set -euo pipefail
build=$1
version=$(sed -n 's/^#define COMMON_STOWRAAPI_VERSION_[A-Z]* //p' common_stowraapi/version.h | paste -sd.)
major=${version%%.*}
objdump=$(command -v llvm-objdump || command -v llvm-objdump-14)
nm=$(command -v llvm-nm || command -v llvm-nm-14)
failed=0

# expect WHAT WANTED GIVEN: complains of each line that only one of the texts has.
expect() {
  if ! diff -u --label wanted --label given <(echo "$2") <(echo "$3"); then
    echo "$1 is not what it should be" >&2
    failed=1
  else
    echo "$1: as it should be ($(echo "$3" | wc -l) lines)"
  fi
}

# loaded FILE: the libraries that it loads, without versions and without itself.
loaded() {
  "$objdump" --macho --dylibs-used "$1" | sed -nE 's/^\t(.*) \(compat.*/\1/p' |
    grep -vxF "$("$objdump" --macho --dylib-id "$1" | tail -n 1)" | LC_ALL=C sort
}

# identity LIBRARY: "NAME (compatibility version A, current version B)"
identity() { "$objdump" --macho --all-headers "$1" | awk '
  $1 == "cmd" { id = $2 == "LC_ID_DYLIB" }
  id && $1 == "name" { name = $2 }
  id && $1 == "current" { current = $3 }
  id && $1 == "compatibility" { print name " (compatibility version " $3 ", current version " current ")" }'; }

# plain: names without what only one standard library writes. Its own instances and the linker's names are left out.
plain() {
  sed -E 's/std::__(1|cxx11)::/std::/g; s/\[abi:[a-z0-9]+\]//g; s/ >/>/g; s/ >/>/g' |
    grep -vE '^((typeinfo|typeinfo name|vtable|guard variable) for )?(void |bool )?std::|^operator (new|delete)|^__' | LC_ALL=C sort -u
}
exported() { "$nm" --defined-only --extern-only --demangle "$1" | sed -E 's/^[0-9a-f]* +[A-Za-z] //; s/^_([Ck])/\1/' | plain; }

# wanted NAME: what lib<NAME> exports. Apple's ABI for arm64 hides the type information of a class that has no library to
# hold its virtual table. Such types are compared by name there.
wanted() {
  local names=tests/architecture/$1.exports
  if "$objdump" --macho --private-header "$library" | grep -q ARM64; then
    awk -F ' for ' 'NR == FNR { tables[$2] += /^vtable for /; next } !/^typeinfo / || tables[$2]' "$names" "$names"
  else
    cat "$names"
  fi | plain
}

system=/usr/lib/libSystem.B.dylib
own=("@rpath/libCommonStowraapi.$major.dylib" "@rpath/libCommonStowraapiPlatform.$major.dylib")
platform=$build/common_stowraapi/libCommonStowraapiPlatform.$version.dylib
library=$build/common_stowraapi/libCommonStowraapi.$version.dylib
cocoa=/System/Library/Frameworks/Cocoa.framework/Versions/A/Cocoa

expect "name of libCommonStowraapi" "${own[0]} (compatibility version $major.0.0, current version $version)" "$(identity "$library")"
expect "name of libCommonStowraapiPlatform" "${own[1]} (compatibility version $major.0.0, current version $version)" "$(identity "$platform")"
expect "loaded by libCommonStowraapi" "$(printf '%s\n' "$cocoa" "$system" "${own[1]}")" "$(loaded "$library")"
expect "loaded by libCommonStowraapiPlatform" \
  "$(printf '%s\n' /usr/lib/libSystem.B.dylib /usr/lib/libcurl.4.dylib /usr/lib/libexpat.1.dylib /usr/lib/libz.1.dylib @rpath/libicuuc.dylib)" \
  "$(loaded "$platform")"
expect "loaded by stowra" "$(printf '%s\n' "$system" "${own[@]}")" "$(loaded "$build/host/stowra")"
for name in CommonStowraapi CommonStowraapiPlatform; do
  expect "exports of lib$name" "$(wanted "$name")" \
    "$(exported "$build/common_stowraapi/lib$name.$version.dylib")"
done
exit "$failed"
