// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/xml/parser.h"

#include <expat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

#include "common_stowraapi/platform/xml/limits.h"

namespace ovrant::xml {
namespace {

// Bytes that the parser of this thread may still allocate. Its memory functions get no pointer of
// ours. What it frees does not come back, since it keeps most of its memory for reuse.
thread_local std::size_t parser_bytes_left = 0;

void* Reallocate(void* block, std::size_t size) {
  if (size > parser_bytes_left) return nullptr;
  void* const moved = std::realloc(block, size);
  if (moved != nullptr) parser_bytes_left -= size;
  return moved;
}

void* Allocate(std::size_t size) { return Reallocate(nullptr, size); }

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserHandle = std::unique_ptr<XML_ParserStruct, FreeParser>;

// Whether markup refers to an entity that needs a declaration.
bool RefersToEntity(std::string_view markup) {
  constexpr std::string_view kKnown[] = {"#", "amp;", "lt;", "gt;", "apos;", "quot;"};
  for (auto i = markup.find('&'); i != markup.npos; i = markup.find('&', i + 1)) {
    const std::string_view name = markup.substr(i + 1);
    const auto is_next = [name](std::string_view known) {
      return name.substr(0, known.size()) == known;
    };
    if (std::none_of(std::begin(kKnown), std::end(kKnown), is_next)) return true;
  }
  return false;
}

// Builds the tree from the parser's events, and stops the parser at what the reader refuses.
// Nothing is thrown through the parser.
class TreeBuilder {
 public:
  TreeBuilder(XML_Parser parser, Tree& tree) : parser_(parser), tree_(tree) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStartElement, OnEndElement);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartNamespaceDeclHandler(parser, OnNamespace);
    XML_SetStartDoctypeDeclHandler(parser, OnDoctype);
    XML_SetEntityDeclHandler(parser, OnEntityDeclaration);
    XML_SetAttlistDeclHandler(parser, OnAttributeDeclaration);
    XML_SetSkippedEntityHandler(parser, OnSkippedEntity);
    // Without this the parser passes over all declarations behind a parameter entity. It still
    // reads nothing external, which would take a handler.
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
  }

  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

 private:
  static TreeBuilder& Self(void* self) { return *static_cast<TreeBuilder*>(self); }

  static void XMLCALL OnStartElement(void* self, const char* name, const char** attributes) {
    Self(self).Do([=] { Self(self).StartElement(name, attributes); });
  }

  static void XMLCALL OnEndElement(void* self, const char* /*name*/) {
    Self(self).Do([=] { Self(self).EndElement(); });
  }

  static void XMLCALL OnText(void* self, const char* text, int size) {
    Self(self).Do([=] { Self(self).tree_.AddText({text, static_cast<std::size_t>(size)}); });
  }

  static void XMLCALL OnNamespace(void* self, const char* /*prefix*/, const char* uri) {
    if (uri != nullptr && std::strlen(uri) > kMaxNamespaceUri) Self(self).Stop();
  }

  static void XMLCALL OnDoctype(void* self, const char* /*name*/, const char* system_id,
                                const char* /*public_id*/, int /*has_internal_subset*/) {
    Self(self).has_external_subset_ = system_id != nullptr;
  }

  static void XMLCALL OnEntityDeclaration(void* self, const char* /*name*/, int /*is_parameter*/,
                                          const char* /*value*/, int /*size*/, const char* /*base*/,
                                          const char* /*system_id*/, const char* /*public_id*/,
                                          const char* /*notation*/) {
    Self(self).Stop();
  }

  static void XMLCALL OnAttributeDeclaration(void* self, const char* /*element*/,
                                             const char* /*name*/, const char* /*type*/,
                                             const char* /*default_value*/, int /*is_required*/) {
    Self(self).Stop();
  }

  static void XMLCALL OnSkippedEntity(void* self, const char* /*name*/, int /*is_parameter*/) {
    Self(self).Stop();
  }

  static void XMLCALL OnMarkup(void* self, const char* text, int size) {
    Self(self).Do([=] { Self(self).markup_.append(text, static_cast<std::size_t>(size)); });
  }

  // The parser may go on for some events after it was stopped.
  template <typename Work>
  void Do(const Work& work) {
    if (stopped_) return;
    try {
      work();
    } catch (const std::bad_alloc&) {
      Stop();
    }
  }

  void StartElement(const char* name, const char** attributes) {
    if (++depth_ > kMaxDepth) return Stop();
    if (has_external_subset_ && HasUnknownReference()) return Stop();
    tree_.BeginElement(name);
    for (; *attributes != nullptr; attributes += 2) {
      tree_.AddAttribute(attributes[0], attributes[1]);
    }
  }

  // Whether an attribute of this start tag refers to an entity. Where the document names an
  // external subset, the parser drops such a reference and reports nothing.
  bool HasUnknownReference() {
    markup_.clear();
    XML_SetDefaultHandlerExpand(parser_, OnMarkup);
    XML_DefaultCurrent(parser_);
    XML_SetDefaultHandlerExpand(parser_, nullptr);
    return RefersToEntity(markup_);
  }

  void EndElement() {
    --depth_;
    tree_.EndElement();
  }

  void Stop() {
    stopped_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  XML_ParserStruct* const parser_;
  Tree& tree_;
  bool stopped_ = false;
  bool has_external_subset_ = false;
  int depth_ = 0;
  std::string markup_;
};

// Older parsers let half a pair through in UTF-16. True for any other encoding.
bool HasOnlyWholePairs(std::string_view document) {
  const std::string_view begin = document.substr(0, 2);
  constexpr std::string_view kBig[] = {"\xFE\xFF", {"\0<", 2}};
  constexpr std::string_view kLittle[] = {"\xFF\xFE", {"<\0", 2}};
  const bool is_big = begin == kBig[0] || begin == kBig[1];
  if (!is_big && begin != kLittle[0] && begin != kLittle[1]) return true;
  bool inside_pair = false;
  for (std::size_t high = is_big ? 0 : 1; high < document.size(); high += 2) {
    const auto byte = static_cast<unsigned char>(document[high]);
    const bool is_second = (byte & 0xFC) == 0xDC;
    if (is_second != inside_pair) return false;
    inside_pair = (byte & 0xFC) == 0xD8;
  }
  return !inside_pair;
}

// The document goes in as one piece: a token that goes on beyond a piece would be read again.
bool Feed(std::string_view document, Tree& tree) {
  parser_bytes_left = MemoryLimit(document.size());
  const XML_Memory_Handling_Suite memory = {Allocate, Reallocate, std::free};
  const ParserHandle parser(XML_ParserCreate_MM(nullptr, &memory, ":"));
  if (!parser) return false;
  const TreeBuilder builder(parser.get(), tree);
  const int size = static_cast<int>(document.size());
  return XML_Parse(parser.get(), document.data(), size, XML_TRUE) == XML_STATUS_OK;
}

}  // namespace

std::unique_ptr<const Tree> Parse(std::string_view document) noexcept {
  if (document.size() > kMaxDocument || !HasOnlyWholePairs(document)) return nullptr;
  try {
    auto tree = std::make_unique<Tree>(MemoryLimit(document.size()));
    if (!Feed(document, *tree)) return nullptr;
    tree->EndDocument();
    return tree;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace ovrant::xml
