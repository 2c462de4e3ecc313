// SPDX-License-Identifier: MIT
// The content service's own vocabulary.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_

namespace ovrant::stowraapiclient {

// The namespace of the service's own elements. Category terms and link relations are this URI with
// "#model", "#collection" or "#user.query" appended.
inline constexpr const char* kContentSchemaNamespace = "http://schemas.stowra.example/stowra/2008";

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_
