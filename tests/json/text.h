// SPDX-License-Identifier: MIT
// Helpers to load and write documents, and to look into handles.

#ifndef TESTS_JSON_TEXT_H_
#define TESTS_JSON_TEXT_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/value.h"
#include "tests/support/text.h"

namespace stowra_test {

using ovrant::json::Document;
using ovrant::json::Value;

inline std::string Written(Document& document) {
  ovrant::utils::ovrant_ustring text;
  document.ToString(text);
  return text.utf8();
}

// Loads `text` into a fresh document.
inline bool Loads(const std::string& text) {
  Document document;
  return document.Load(Text(text));
}

// A document that has `json` as its text.
class LoadedDocument : public Document {
 public:
  explicit LoadedDocument(const std::string& json) { EXPECT_TRUE(Load(Text(json))) << json; }
};

// A document with one member "v", whose value is `json`.
class ValueDocument {
 public:
  explicit ValueDocument(const std::string& json) : document_("{\"v\":" + json + "}") {}

  Value& value() { return document_["v"]; }
  Value& operator[](int index) { return value()[static_cast<unsigned int>(index)]; }

  // The value as it is now.
  std::string written() {
    const std::string all = Written(document_);
    return all.substr(5, all.size() - 6);
  }

 private:
  LoadedDocument document_;
};

// The private members of a handle.
bool IsOwned(const Value& handle);
void* NodeOf(const Value& handle);
void* AllocatorOf(const Value& handle);

// The number of handles that `handle` returned and keeps.
std::size_t CountHandles(const Value& handle);

}  // namespace stowra_test

#endif  // TESTS_JSON_TEXT_H_
