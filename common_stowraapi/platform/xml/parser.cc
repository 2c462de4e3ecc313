#include "common_stowraapi/platform/xml/parser.h"

// Without this the header leaves out the limits on entities, which every packaged parser has.
#define XML_DTD 1
#include <expat.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

#include "common_stowraapi/platform/xml/declaration_cost.h"
#include "common_stowraapi/platform/xml/limits.h"
#include "common_stowraapi/platform/xml/parser_memory.h"

namespace ovrant::xml {
namespace {

std::size_t TreeBytes(std::size_t document_size) {
  return kTreeBytesPerByte * document_size + kTreeBytesBesides;
}

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserHandle = std::unique_ptr<XML_ParserStruct, FreeParser>;

ParserHandle MakeParser() {
  const XML_Memory_Handling_Suite memory = {ParserMemory::Allocate, ParserMemory::Reallocate,
                                            ParserMemory::Free};
  ParserHandle parser(XML_ParserCreate_MM(nullptr, &memory, ":"));
  if (parser) {
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser.get(), kMaxEntityGrowth);
    XML_SetBillionLaughsAttackProtectionActivationThreshold(parser.get(), kMinEntityBytes);
  }
  return parser;
}

// Whether the text of an entity refers to a declared one: not to a character by its number, nor to
// one of the five that need no declaration.
bool RefersToEntity(std::string_view text) {
  constexpr std::string_view kCharacters[] = {"#", "amp;", "lt;", "gt;", "apos;", "quot;"};
  for (std::size_t i = text.find('&'); i < text.size(); i = text.find('&', i + 1)) {
    const std::string_view name = text.substr(i + 1);
    const bool is_character =
        std::any_of(std::begin(kCharacters), std::end(kCharacters),
                    [&](std::string_view start) { return name.substr(0, start.size()) == start; });
    if (!is_character) return true;
  }
  return false;
}

// Builds the tree from what the parser reports, and stops it at a limit. Nothing is thrown through
// the parser.
class TreeBuilder {
 public:
  TreeBuilder(XML_Parser parser, std::size_t size)
      : parser_(parser),
        tree_(std::make_unique<Tree>(TreeBytes(size), static_cast<std::uint32_t>(size))),
        declarations_(size) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStartElement, OnEndElement);
    XML_SetCharacterDataHandler(parser, OnText);
    XML_SetStartNamespaceDeclHandler(parser, OnNamespace);
    XML_SetEntityDeclHandler(parser, OnEntityDeclaration);
    XML_SetAttlistDeclHandler(parser, OnAttributeDeclaration);
  }

  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

  // After the last byte.
  std::unique_ptr<const Tree> Finish() {
    tree_->EndDocument();
    return std::move(tree_);
  }

 private:
  static TreeBuilder& Self(void* self) { return *static_cast<TreeBuilder*>(self); }

  static void XMLCALL OnStartElement(void* self, const char* name, const char** attributes) {
    Self(self).Do([&] { Self(self).StartElement(name, attributes); });
  }

  static void XMLCALL OnEndElement(void* self, const char* /*name*/) {
    Self(self).Do([&] { Self(self).EndElement(); });
  }

  static void XMLCALL OnText(void* self, const char* text, int size) {
    Self(self).Do([&] { Self(self).tree_->AddText({text, static_cast<std::size_t>(size)}); });
  }

  static void XMLCALL OnNamespace(void* self, const char* /*prefix*/, const char* uri) {
    const std::size_t size = uri == nullptr ? 0 : std::strlen(uri);
    if (size > kMaxNamespaceUri || !Self(self).declarations_.AddNamespace(size)) Self(self).Stop();
  }

  static void XMLCALL OnEntityDeclaration(void* self, const char* /*name*/, int is_parameter,
                                          const char* value, int size, const char* /*base*/,
                                          const char* /*system_id*/, const char* /*public_id*/,
                                          const char* /*notation*/) {
    // Parameter entities are not expanded, and external ones have no text here.
    if (is_parameter != 0 || value == nullptr) return;
    if (!RefersToEntity({value, static_cast<std::size_t>(size)})) return;
    if (++Self(self).nested_entities_ > kMaxNestedEntities) Self(self).Stop();
  }

  static void XMLCALL OnAttributeDeclaration(void* self, const char* element, const char* /*name*/,
                                             const char* /*type*/, const char* /*default_value*/,
                                             int /*is_required*/) {
    Self(self).Do([&] {
      if (!Self(self).declarations_.AddDeclaration(element)) Self(self).Stop();
    });
  }

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
    // Those that have a declaration's default value come behind the written ones.
    const char** end = nullptr;
    if (declarations_.has_attributes()) {
      end = attributes + XML_GetSpecifiedAttributeCount(parser_);
      if (!declarations_.AddElement(end)) return Stop();
    }
    tree_->BeginElement(name);
    for (; attributes != end && *attributes != nullptr; attributes += 2) {
      tree_->AddAttribute(attributes[0], attributes[1]);
    }
  }

  void EndElement() {
    --depth_;
    tree_->EndElement();
  }

  void Stop() {
    stopped_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  XML_ParserStruct* const parser_;
  std::unique_ptr<Tree> tree_;
  bool stopped_ = false;
  int depth_ = 0;
  int nested_entities_ = 0;
  DeclarationCost declarations_;
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

// In one piece: between pieces the parser would count lines, and read a token again that goes on
// beyond one.
bool Feed(XML_Parser parser, std::string_view document) {
  const int size = static_cast<int>(document.size());
  return XML_Parse(parser, document.data(), size, XML_TRUE) == XML_STATUS_OK;
}

}  // namespace

std::unique_ptr<const Tree> Parse(std::string_view document) noexcept {
  if (!HasOnlyWholePairs(document)) return nullptr;
  const ParserMemory memory(TreeBytes(document.size()));
  const ParserHandle parser = MakeParser();
  if (!parser) return nullptr;
  try {
    TreeBuilder builder(parser.get(), document.size());
    return Feed(parser.get(), document) ? builder.Finish() : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace ovrant::xml
