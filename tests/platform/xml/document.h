// SPDX-License-Identifier: MIT
// A document that a test opens, and the reader's operations on plain strings.

#ifndef TESTS_PLATFORM_XML_DOCUMENT_H_
#define TESTS_PLATFORM_XML_DOCUMENT_H_

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"
#include "tests/support/text.h"

namespace stowra_test {

// The reader of one document, whose bytes lie in a block of just their size. Getters give nullopt
// for absent, and then see to it that the caller's value is as it was.
class XmlDocument {
 public:
  explicit XmlDocument(std::string_view bytes)
      : bytes_(bytes.begin(), bytes.end()),
        reader_(ovrant::Get_IXMLInput(bytes_.data(), static_cast<int>(bytes_.size()))) {}

  bool is_open() const { return reader_ != nullptr; }
  ovrant::IXMLInput& reader() const { return *reader_; }

  bool Find(std::string_view name) { return reader_->FindElement(stowra_test::Text(name)); }
  bool Next(std::string_view name) { return reader_->NextElement(stowra_test::Text(name)); }
  bool Leave(std::string_view name) { return reader_->LeaveElement(stowra_test::Text(name)); }

  std::optional<std::string> Attribute(std::string_view name) {
    return Utf8(&ovrant::IXMLInput::GetAttribute, name);
  }
  std::optional<std::string> Text(std::string_view name) {
    return Utf8(&ovrant::IXMLInput::GetElementText, name);
  }

  std::optional<int> Int(std::string_view name) {
    int value = -77;
    if (reader_->GetElementInt(stowra_test::Text(name), value)) return value;
    EXPECT_EQ(value, -77) << name;
    return std::nullopt;
  }

  std::optional<bool> Bool(std::string_view name) {
    for (const bool before : {false, true}) {
      bool value = before;
      if (reader_->GetElementBool(stowra_test::Text(name), value)) return value;
      EXPECT_EQ(value, before) << name;
    }
    return std::nullopt;
  }

 private:
  using Ustring = ovrant::utils::ovrant_ustring;

  std::optional<std::string> Utf8(bool (ovrant::IXMLInput::*get)(const Ustring&, Ustring&),
                                  std::string_view name) {
    Ustring value = "untouched";
    if ((*reader_.*get)(stowra_test::Text(name), value)) return value.utf8();
    EXPECT_EQ(value.utf8(), "untouched") << name;
    return std::nullopt;
  }

  std::vector<unsigned char> bytes_;
  std::unique_ptr<ovrant::IXMLInput> reader_;
};

// One that must open. It stands at its root element if that is named.
class OpenDocument : public XmlDocument {
 public:
  explicit OpenDocument(std::string_view bytes, std::string_view root = "") : XmlDocument(bytes) {
    const std::string start(bytes.substr(0, 1000));
    if (!is_open()) throw std::runtime_error("does not open: " + start);
    if (!root.empty() && !Find(root)) throw std::runtime_error("has another root: " + start);
  }
};

inline bool Opens(std::string_view bytes) { return XmlDocument(bytes).is_open(); }

// The text of the root element `a` of a document that must open.
inline std::optional<std::string> RootText(std::string_view bytes) {
  XmlDocument document(bytes);
  EXPECT_TRUE(document.is_open()) << bytes.substr(0, 1000);
  return document.is_open() ? document.Text("a") : std::nullopt;
}

enum class ByteOrder { kLittle, kBig };

// UTF-16 with a byte order mark. Lone surrogates stay.
inline std::string Utf16(std::u16string_view text, ByteOrder order = ByteOrder::kLittle) {
  std::string bytes;
  for (const char16_t unit : u'\uFEFF' + std::u16string(text)) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += order == ByteOrder::kBig ? high : low;
    bytes += order == ByteOrder::kBig ? low : high;
  }
  return bytes;
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_XML_DOCUMENT_H_
