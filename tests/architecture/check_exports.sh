#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_exports.sh LIBRARY LIST [--update]
#
# Compares the names that a shared library defines for others with the list that is kept beside this script.
set -euo pipefail
library=$1 list=$2

names() {
  # Constructors and destructors, and a class's tables, come in several copies under one name.
  nm -DC --defined-only "$library" | sed -E 's/^[0-9a-f]* +[A-Za-z] //' | grep -vE '^(__|_init$|_fini$|_edata$|_end$)' |
    LC_ALL=C sort -u
}

if [ "${3-}" = --update ]; then
  names >"$list"
elif ! diff -u "$list" <(names); then
  echo "$library exports other names than $list says" >&2
  exit 1
else
  echo "exports: $(wc -l <"$list") names in $(basename "$library"), all as listed"
fi
