#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# filter.sh FILE
# Prepares a file for Doxygen, so that neither headers nor pages need mark-up of its own.
#
# In a header, plain comments become Doxygen's. The one at the beginning is about the file. In a page, headings become
# targets of the links that are spelt as on GitHub. Characters that Doxygen reads as commands or tags are escaped.
exec awk -v page="$(basename "$1" .md)" -v is_header="$([[ $1 = *.h ]] && echo 1)" '
# Text between backticks becomes code, and so does everything in it.
function escape(text,   parts, count, i, result) {
  count = split(text, parts, "`")
  for (i = 1; i <= count; ++i) {
    if (is_header || i % 2 == 0) {
      gsub(/[\\@%#&<>]/, "\\\\&", parts[i])
      gsub(/"/, "\\&quot;", parts[i])
    }
    # Mostly the word, not the class.
    if (is_header && i % 2) gsub(/ URL/, " %URL", parts[i])
    result = result (i == 1 ? "" : i % 2 ? "</code>" : "<code>") parts[i]
  }
  return result
}
function convert(mark,   at) {
  at = index($0, "//")
  print substr($0, 1, at - 1) mark escape(substr($0, at + 2))
}
is_header && /^\/\/ SPDX/ { print "/// @file"; next }
is_header && /^ *\/\/( |$)/ { convert("///"); next }
is_header && /\/\/ NOLINT|\/\/ namespace/ { sub(/ +\/\/ .*/, ""); print; next }
is_header && /^ .*[;,] +\/\/ / { convert("///<"); next }
is_header { print; next }

/^```/ { in_code = !in_code; print; next }
in_code || /^    / { print; next }
/^##+ / {
  slug = tolower($0)
  sub(/^#+ /, "", slug)
  gsub(/[^a-z0-9 -]/, "", slug)
  gsub(/ /, "-", slug)
  $0 = $0 " {#" page "-" slug "}"
}
{ gsub(/\]\(#/, "&" page "-"); print escape($0) }' "$1"
