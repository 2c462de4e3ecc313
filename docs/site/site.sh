#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# site.sh FOLDER
# Makes the site of the public headers and the pages in FOLDER/html. Fails on any warning.
set -euo pipefail
cd "$(dirname "$0")/../.."
mkdir -p "$1"

headers=common_stowraapi/common_stowraapi.h
{
  cat docs/site/Doxyfile
  echo "OUTPUT_DIRECTORY = $1"
  echo "INPUT += $headers $(sed -n 's/^#include "\(.*\)"$/\1/p' "$headers" | paste -sd' ')"
} | doxygen -
echo "site: $1/html/index.html"
