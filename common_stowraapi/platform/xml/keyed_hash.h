// A hash that nobody outside can foresee.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_KEYED_HASH_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_KEYED_HASH_H_

#include <cstdint>
#include <string_view>

namespace ovrant::utils {

// SipHash-1-3 (Aumasson and Bernstein, 2012) under a key that the process draws at first use: the
// author of a document cannot choose texts that collide.
std::uint64_t KeyedHash(std::string_view text);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_KEYED_HASH_H_
