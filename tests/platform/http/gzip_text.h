// SPDX-License-Identifier: MIT
// Encoders for content encodings.

#ifndef TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
#define TESTS_PLATFORM_HTTP_GZIP_TEXT_H_

#include <string>
#include <string_view>

namespace stowra_test {

// One gzip member (RFC 1952) that holds `text`.
std::string Gzip(std::string_view text);

// A zlib stream (RFC 1950), which HTTP calls deflate.
std::string Deflate(std::string_view text);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
