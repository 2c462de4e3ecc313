#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# sysroot.sh FOLDER
#
# Fills FOLDER with what the build needs from macOS and from Homebrew. The headers of third-party packages are links to
# Debian's. Each library is a text stub (.tbd) with the install name that it has on a Mac. The stub lists the names that
# Debian's library exports.
set -euo pipefail
root=$1
arch_include=/usr/include/$(gcc -print-multiarch)
arch_lib=/usr/lib/$(gcc -print-multiarch)
rm -rf "$root"
mkdir -p "$root"/usr/{include/openssl,lib/cmake,lib/pkgconfig} "$root/System/Library/Frameworks/Cocoa.framework"

header() { ln -s "$1" "$root/usr/include/$(basename "$1")"; }
header "$arch_include/curl"
for name in expat.h expat_external.h zlib.h zconf.h sqlite3.h sqlite3ext.h unicode rapidjson CLI fmt nlohmann httplib.h brotli; do
  header "/usr/include/$name"
done
[ ! -e "$arch_include/expat_config.h" ] || header "$arch_include/expat_config.h"
ln -s /usr/include/openssl/* "$arch_include"/openssl/* "$root/usr/include/openssl"

# stub FILE INSTALL_NAME [SYMBOL...]
stub() {
  local symbols
  symbols=$(printf ', _%s' "${@:3}")
  cat >"$1" <<TEXT
--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '$2'
exports:
  - targets: [ x86_64-macos, arm64-macos ]
    symbols: [ ${symbols#, } ]
...
TEXT
}

# library NAME INSTALL_NAME: a stub of lib<NAME>.
library() {
  local symbols
  mapfile -t symbols < <(nm -D --defined-only "$arch_lib/lib$1.so" | sed 's/.* [A-Z] //; s/@.*//' | grep -v '^_' | sort -u)
  stub "$root/usr/lib/lib$1.tbd" "$2" "${symbols[@]}"
}
library curl /usr/lib/libcurl.4.dylib
library expat /usr/lib/libexpat.1.dylib
library z /usr/lib/libz.1.dylib
library sqlite3 /usr/lib/libsqlite3.dylib
library icuuc @rpath/libicuuc.dylib
library ssl @rpath/libssl.3.dylib
library crypto @rpath/libcrypto.3.dylib
stub "$root/System/Library/Frameworks/Cocoa.framework/Cocoa.tbd" \
  /System/Library/Frameworks/Cocoa.framework/Versions/A/Cocoa NSApplicationLoad

# package NAME TARGET [DEFINITION]: the CMake package of a library of headers.
package() {
  local folder=$root/usr/lib/cmake/$1
  mkdir "$folder"
  cat >"$folder/$1Config.cmake" <<TEXT
set(RAPIDJSON_INCLUDE_DIRS "$root/usr/include")
add_library($2 INTERFACE IMPORTED)
set_target_properties($2 PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "$root/usr/include"
  INTERFACE_COMPILE_DEFINITIONS "${3-}")
TEXT
}
package CLI11 CLI11::CLI11
package RapidJSON RapidJSON
package fmt fmt::fmt FMT_HEADER_ONLY
package nlohmann_json nlohmann_json::nlohmann_json
cat >"$root/usr/lib/pkgconfig/cpp-httplib.pc" <<TEXT
Name: cpp-httplib
Description: HTTP server
Version: $(pkg-config --modversion cpp-httplib)
Cflags: -I$root/usr/include $(pkg-config --cflags-only-other cpp-httplib)
TEXT
