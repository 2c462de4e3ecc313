// SPDX-License-Identifier: MIT
// Reads a tree from text.

#ifndef COMMON_STOWRAAPI_JSON_TREE_READER_H_
#define COMMON_STOWRAAPI_JSON_TREE_READER_H_

#include <string>

#include "common_stowraapi/json/rapidjson_types.h"

namespace ovrant::json {

// Parses `text` up to its first NUL, as RapidJSON does without parse flags, into `tree`. False, and
// `tree` is unchanged, in these cases:
//   - The text has 4 GiB or more.
//   - It is not strict JSON with an object or array as root.
//   - It nests these deeper than `max_depth`. The parser recurses.
//   - A number has a hundred million zeros or more after the decimal point.
bool ReadTree(std::string text, unsigned int max_depth, ParsedText& tree);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_TREE_READER_H_
