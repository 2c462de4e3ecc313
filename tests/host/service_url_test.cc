// SPDX-License-Identifier: MIT
#include "host/service_url.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

TEST(ServiceUrlTest, AcceptsWebUrlsOnly) {
  for (const char* url : {"http://h", "https://h:8443/a?b#c", "HTTP://h/", "http://[::1]:80/"}) {
    EXPECT_EQ(CheckWebUrl(url), "") << url;
  }
  for (const char* url : {"", "x", "-", "ftp://h/x", "file:///etc/passwd", "http:/h", "http://",
                          "http:///x", "http://?x", "http://h/a b", "http://h/a\nb"}) {
    EXPECT_EQ(CheckWebUrl(url), "'" + std::string(url) + "' is not an http or https URL");
  }
}

TEST(ServiceUrlTest, ResolvesAgainstBase) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"http://h", "search?q=x", "http://h/search?q=x"},
      {"http://h/", "search", "http://h/search"},
      {"http://h/api", "search", "http://h/api/search"},
      {"http://h/api/", "search", "http://h/api/search"},
      {"http://h/api?k=v#f", "search", "http://h/api/search"},
      {"http://h/api", "/search", "http://h/search"},
      {"http://h?k=v", "/search", "http://h/search"},
      {"http://h/search", "?q=x", "http://h/search?q=x"},
      {"http://h", "https://other/x", "https://other/x"},
      {"", "search", "search"},
  };
  for (const auto& [base, address, url] : rows) EXPECT_EQ(ResolveUrl(base, address), url);
}

TEST(ServiceUrlTest, EncodesSearchWords) {
  EXPECT_EQ(SearchAddress({}), "search");
  EXPECT_EQ(SearchAddress({"oak", "chair"}), "search?q=oak%20chair");
  EXPECT_EQ(SearchAddress({"a&b=c/d%", "ü"}), "search?q=a%26b%3Dc%2Fd%25%20%C3%BC");
}

}  // namespace
}  // namespace stowra
