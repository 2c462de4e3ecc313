// SPDX-License-Identifier: MIT
// Writing XML and HTML.

#ifndef EMULATOR_MARKUP_WRITER_H_
#define EMULATOR_MARKUP_WRITER_H_

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_emulator {

// Escapes `text` for element content and quoted attributes. Drops characters that XML forbids.
// Bytes that are not UTF-8 become U+FFFD.
std::string EscapeMarkup(std::string_view text);

// Writes a document that is well-formed XML, an element a line. Escapes values but not names.
class MarkupWriter {
 public:
  using Attributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;

  // `prologue` comes before the first element.
  explicit MarkupWriter(std::string_view prologue) : text_(prologue) {}

  // Opens an element. Everything up to the matching End goes into it.
  void Begin(const char* name, Attributes attributes = {});
  void End();

  void Text(std::string_view text);

  // Adds text without escaping it, such as a style sheet.
  void Verbatim(std::string_view text);

  // Adds an element that holds only text.
  void Element(const char* name, std::string_view text, Attributes attributes = {});

  // Adds an empty element, <name/>. In HTML only for elements that never have an end tag.
  void Empty(const char* name, Attributes attributes);

  // Closes all open elements and returns the document. Nothing may be written afterwards.
  std::string Finish();

 private:
  struct OpenElement {
    const char* name;
    bool has_text = false;
    bool has_elements = false;
  };

  void StartTag(const char* name, Attributes attributes);
  void NewLine();

  std::string text_;
  std::vector<OpenElement> open_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_MARKUP_WRITER_H_
