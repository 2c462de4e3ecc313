// The content service's own vocabulary.

#ifndef COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_
#define COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_

namespace ovrant::stowraapiclient {

// The namespace of the service's own elements. With "#model", "#collection" and "#user.query"
// behind it, also the name of a category or of a link's relation.
inline constexpr const char* kContentSchemaNamespace = "http://schemas.stowra.example/stowra/2008";

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_CONTENT_SCHEMA_H_
