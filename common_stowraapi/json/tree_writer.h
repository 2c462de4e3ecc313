// SPDX-License-Identifier: MIT
// Writes a tree as text.

#ifndef COMMON_STOWRAAPI_JSON_TREE_WRITER_H_
#define COMMON_STOWRAAPI_JSON_TREE_WRITER_H_

#include "common_stowraapi/json/rapidjson_types.h"

namespace ovrant::json {

// Appends `root` to `text` as Node::Accept would through an OutputWriter, up to the first number
// that JSON cannot write. Does not recurse.
void WriteTree(const Node& root, Output& text);

}  // namespace ovrant::json

#endif  // COMMON_STOWRAAPI_JSON_TREE_WRITER_H_
