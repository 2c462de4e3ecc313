// XML and HTML text.

#ifndef EMULATOR_MARKUP_WRITER_H_
#define EMULATOR_MARKUP_WRITER_H_

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace stowra_emulator {

// `text` as it may stand between tags and in quoted attributes. Characters that XML does not allow
// are left out; bytes that are not UTF-8 become U+FFFD.
std::string EscapeMarkup(std::string_view text);

// Writes a document, well-formed as XML, an element a line. Values are escaped; names are not.
class MarkupWriter {
 public:
  using Attributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;

  // `prologue` is what stands before the first element.
  explicit MarkupWriter(std::string_view prologue) : text_(prologue) {}

  // Opens an element; what comes until the matching End is inside it.
  void Begin(const char* name, Attributes attributes = {});
  void End();

  void Text(std::string_view text);

  // Text that is not escaped, such as a style sheet.
  void Verbatim(std::string_view text);

  // An element with only text in it.
  void Element(const char* name, std::string_view text, Attributes attributes = {});

  // An element with nothing in it, as <name/>. In HTML only for those that never have an end tag.
  void Empty(const char* name, Attributes attributes);

  // Ends all open elements and gives the document. Nothing may be written afterwards.
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
