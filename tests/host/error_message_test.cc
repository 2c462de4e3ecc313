// SPDX-License-Identifier: MIT
#include "host/error_message.h"

#include <gtest/gtest.h>

#include "tests/support/text.h"

namespace stowra {
namespace {

TEST(ErrorMessageTest, TakesTheFirstLineOfText) {
  EXPECT_EQ(ErrorMessage("text/plain", "no such model"), "no such model");
  EXPECT_EQ(ErrorMessage("text/plain", " \r\n no\tsuch  model \r\nat all\n"), "no such model");
  EXPECT_EQ(ErrorMessage("text/plain", "a\x1B[31mb"), "a\x1B[31mb");
  EXPECT_EQ(ErrorMessage("text/plain", ""), "");
  EXPECT_EQ(ErrorMessage("text/plain", "\n"), "");
}

TEST(ErrorMessageTest, TakesTheMessageOfJson) {
  const std::pair<const char*, const char*> rows[] = {
      {R"({"error":"no such user"})", "no such user"},
      {R"({"code":7,"message":"no such\nuser"})", "no such"},
      {R"({"error":{"code":404,"message":"gone"}})", "gone"},
      {R"({"title":"Gone","detail":"It is gone."})", "It is gone."},
      {R"({"error":7})", ""},
      {R"([1])", ""},
      {"{\"broken\"\nmore", "{\"broken\""},
  };
  for (const auto& [body, message] : rows) {
    EXPECT_EQ(ErrorMessage("application/json", body), message) << body;
  }
}

TEST(ErrorMessageTest, TakesTheTitleOfHtml) {
  EXPECT_EQ(ErrorMessage("text/html; charset=utf-8",
                         "<html><title>\n  404\n  Not Found </title><h1>x</h1></html>"),
            "404 Not Found");
}

TEST(ErrorMessageTest, ShowsOnlyTextTypes) {
  for (const char* type : {"text/plain", "Text/HTML; charset=utf-8", "application/json",
                           "application/problem+json;x=y", "application/atom+xml"}) {
    EXPECT_EQ(ErrorMessage(type, "x"), "x") << type;
  }
  for (const char* type : {"", "application/octet-stream", "image/png", "json/other", "text"}) {
    EXPECT_EQ(ErrorMessage(type, "x"), "") << type;
  }
}

TEST(ErrorMessageTest, ShowsOnlyTheFirst200Characters) {
  const std::string umlauts = stowra_test::Repeated("ü", 200);
  EXPECT_EQ(ErrorMessage("text/plain", umlauts), umlauts);
  EXPECT_EQ(ErrorMessage("text/plain", umlauts + "\n"), umlauts);
  EXPECT_EQ(ErrorMessage("text/plain", umlauts + "ü"), umlauts + "...");
  EXPECT_EQ(ErrorMessage("text/plain", umlauts + " x"), umlauts + "...");
  const std::string as(199, 'a');
  EXPECT_EQ(ErrorMessage("text/plain", as + " b"), as + "...");
  EXPECT_LT(ErrorMessage("text/plain", std::string(100000, '\x80')).size(), 3000U);
}

}  // namespace
}  // namespace stowra
