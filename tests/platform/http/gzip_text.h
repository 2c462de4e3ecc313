// SPDX-License-Identifier: MIT
// The content encoding gzip.

#ifndef TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
#define TESTS_PLATFORM_HTTP_GZIP_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace stowra_test {

// One gzip member (RFC 1952) that holds `text`.
std::string Gzip(std::string_view text);

// Bytes that gzip does not make fewer.
std::string Incompressible(std::size_t size);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
