// SPDX-License-Identifier: MIT
// An encoder for the content encoding gzip.

#ifndef TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
#define TESTS_PLATFORM_HTTP_GZIP_TEXT_H_

#include <string>
#include <string_view>

namespace stowra_test {

// One gzip member (RFC 1952) that holds `text`.
std::string Gzip(std::string_view text);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_HTTP_GZIP_TEXT_H_
