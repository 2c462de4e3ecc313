#!/bin/sh
# SPDX-License-Identifier: MIT
# browser_test.sh NODE FOLDER NAME: runs NAME_test.mjs in FOLDER. Exits with 77 if Node or its packages are missing.
if [ -z "$1" ] || [ ! -e "$2/packages.stamp" ]; then
  echo "Node or its packages are not installed. The target node_packages installs the packages."
  exit 77
fi
exec "$1" "$2/$3_test.mjs"
