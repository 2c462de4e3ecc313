// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/http/blanked_text.h"

#include <gtest/gtest.h>

namespace stowra_test {
namespace {

using ovrant::internet::BlankHead;
using ovrant::internet::BlankUrls;

TEST(BlankUrls, KeepsAUrlWithoutSecrets) {
  for (const char* url :
       {"", "http://a.example", "https://a.example:8080/b/c@d;e=f", "none:", "?"}) {
    EXPECT_EQ(BlankUrls(url), url);
  }
}

TEST(BlankUrls, BlanksTheValuesOfTheQuery) {
  EXPECT_EQ(BlankUrls("http://a/b?q=chair&page=2"), "http://a/b?q=***&page=***");
  EXPECT_EQ(BlankUrls("/b?q=a=b?c;d=e&&f=&g"), "/b?q=***;d=***&&f=***&***");
  EXPECT_EQ(BlankUrls("GET /b?q=chair HTTP/1.1"), "GET /b?q=*** HTTP/1.1");
}

TEST(BlankUrls, BlanksTheFragment) {
  EXPECT_EQ(BlankUrls("http://a/b#token=1?&2"), "http://a/b#***");
  EXPECT_EQ(BlankUrls("http://a/b?c=d#e"), "http://a/b?c=***#***");
}

TEST(BlankUrls, BlanksUserAndPassword) {
  EXPECT_EQ(BlankUrls("http://user:pass@a/b"), "http://***@a/b");
  EXPECT_EQ(BlankUrls("http://us@er:p%40ss@a:80"), "http://***@a:80");
  EXPECT_EQ(BlankUrls("//user:pass@a/b"), "//***@a/b");
  EXPECT_EQ(BlankUrls("http:/user:pass@a/b"), "http:/***@a/b");
  EXPECT_EQ(BlankUrls("http:///user:pass@a/b"), "http:///***@a/b");
}

TEST(BlankUrls, FindsEachUrlInAText) {
  EXPECT_EQ(BlankUrls("<http://u@a/?b=c>; rel=next, <http://u@d/?e=f>; rel=\"last\""),
            "<http://***@a/?b=***>; rel=next, <http://***@d/?e=***>; rel=\"last\"");
}

TEST(BlankHead, BlanksSecretFields) {
  EXPECT_EQ(BlankHead("GET /?a=b HTTP/1.1\n"
                      "Host: a.example\n"
                      "AUTHORIZATION: Bearer 1\n"
                      "Proxy-Authorization:Basic 2\n"
                      "Cookie: c=3\n"
                      "X-Api-Key: 4\n"
                      "X-My-Token : 5\n"
                      "Accept: */*\n",
                      {}),
            "GET /?a=*** HTTP/1.1\n"
            "Host: a.example\n"
            "AUTHORIZATION: ***\n"
            "Proxy-Authorization: ***\n"
            "Cookie: ***\n"
            "X-Api-Key: ***\n"
            "X-My-Token : ***\n"
            "Accept: */*\n");
}

TEST(BlankHead, BlanksTheFieldsThatTheCallerNames) {
  EXPECT_EQ(BlankHead("GET / HTTP/1.1\nX-Tenant: a\nX-Other: b\n", {"x-tenant"}),
            "GET / HTTP/1.1\nX-Tenant: ***\nX-Other: b\n");
}

TEST(BlankHead, BlanksContinuationsOfASecretField) {
  EXPECT_EQ(BlankHead("HTTP/1.1 200 OK\nSet-Cookie: a=1;\n b=2\nX: 3\n 4\n", {}),
            "HTTP/1.1 200 OK\nSet-Cookie: ***\n ***\nX: 3\n 4\n");
}

TEST(BlankHead, BlanksUrlsInOtherFields) {
  EXPECT_EQ(BlankHead("HTTP/1.1 302 Found\nLocation: http://u:p@a/?b=c\n", {}),
            "HTTP/1.1 302 Found\nLocation: http://***@a/?b=***\n");
}

TEST(BlankHead, TakesALineWithoutItsEnd) {
  EXPECT_EQ(BlankHead("HTTP/1.1 200 OK\nCookie: a", {}), "HTTP/1.1 200 OK\nCookie: ***\n");
}

}  // namespace
}  // namespace stowra_test
