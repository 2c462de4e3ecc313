// SPDX-License-Identifier: MIT
// Helpers to load and write documents.

#ifndef TESTS_JSON_TEXT_H_
#define TESTS_JSON_TEXT_H_

#include <gtest/gtest.h>

#include <string>

#include "common_stowraapi/json/document.h"
#include "tests/support/text.h"

namespace stowra_test {

inline std::string Written(ovrant::json::Document& document) {
  ovrant::utils::ovrant_ustring text;
  document.ToString(text);
  return text.utf8();
}

// Loads `text` into a fresh document.
inline bool Loads(const std::string& text) {
  ovrant::json::Document document;
  return document.Load(Text(text));
}

// A document with one member "v", whose value is `json`.
class ValueDocument {
 public:
  explicit ValueDocument(const std::string& json) {
    EXPECT_TRUE(document_.Load(Text("{\"v\":" + json + "}"))) << json;
  }

  ovrant::json::Value& value() { return document_["v"]; }

  // The value as it is now.
  std::string written() {
    const std::string all = Written(document_);
    return all.substr(5, all.size() - 6);
  }

 private:
  ovrant::json::Document document_;
};

}  // namespace stowra_test

#endif  // TESTS_JSON_TEXT_H_
