#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What try.sh runs inside the bare system.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
quiet() { "$@" >/tmp/log 2>&1 || { cat /tmp/log >&2; exit 1; }; }

quiet apt-get update
quiet apt-get install -y --no-install-recommends /packages/stowra-tools_*.deb /packages/libcommon-stowraapi1_*.deb
echo "== $(stowra --version)"
stowra-emulator --quiet >/tmp/url &
emulator=$!
trap 'kill $emulator' EXIT
for _ in {1..100}; do [ -s /tmp/url ] && break; sleep 0.1; done
url=$(cat /tmp/url)
stowra search "$url/search?q=chair" | sed -n 1,4p

quiet apt-get install -y --no-install-recommends cmake g++ make pkg-config /packages/libcommon-stowraapi-dev_*.deb
echo "== built with CMake"
quiet cmake -S /consumer -B /tmp/consumer
quiet cmake --build /tmp/consumer
/tmp/consumer/consumer "$url"
echo "== built with pkg-config"
g++ -std=c++17 /consumer/consumer.cc -o /tmp/with_pkg_config $(pkg-config --cflags --libs common_stowraapi)
/tmp/with_pkg_config "$url"
