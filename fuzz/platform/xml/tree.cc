// SPDX-License-Identifier: MIT
#include "fuzz/platform/xml/tree.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <set>

#include "common_stowraapi/platform/xml/limits.h"

namespace stowra_fuzz {
namespace {

// Bytes that a small document may surely cost. The limits are never below 1 MiB, and this counts at
// least half of what they count.
constexpr std::size_t kSurelyEnough = std::size_t{1} << 17;

// The parser is stopped beyond it.
constexpr std::size_t kTooMuch = std::size_t{1} << 22;

constexpr std::size_t kNodeCost = 64;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string Trimmed(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

// Where the high byte stands in each unit of UTF-16. Nothing for any other encoding.
std::optional<std::size_t> HighByte(std::string_view document) {
  const std::string_view start = document.substr(0, 2);
  if (start == "\xFE\xFF" || start == std::string_view("\0<", 2)) return 0;
  if (start == "\xFF\xFE" || start == std::string_view("<\0", 2)) return 1;
  return std::nullopt;
}

// Whether UTF-16 has a surrogate alone. Other encodings have none.
bool HasLoneSurrogate(std::string_view document) {
  const std::optional<std::size_t> high_byte = HighByte(document);
  if (!high_byte) return false;
  bool expects_second = false;
  for (std::size_t i = 0; i + 1 < document.size(); i += 2) {
    const auto high = static_cast<unsigned char>(document[i + *high_byte]);
    const bool is_first = high >= 0xD8 && high <= 0xDB;
    const bool is_second = high >= 0xDC && high <= 0xDF;
    if (is_second != expects_second) return true;
    expects_second = is_first;
  }
  return expects_second;
}

// Markup with one byte a unit. What UTF-16 has outside ASCII becomes '?'.
std::string Narrow(std::string_view markup, std::optional<std::size_t> high_byte) {
  if (!high_byte) return std::string(markup);
  std::string narrow;
  for (std::size_t i = 0; i + 1 < markup.size(); i += 2) {
    narrow += markup[i + *high_byte] == '\0' ? markup[i + 1 - *high_byte] : '?';
  }
  return narrow;
}

// Whether a start tag refers to an entity that has to be declared.
bool HasEntity(const std::string& tag) {
  static const std::set<std::string> known = {"amp", "lt", "gt", "apos", "quot"};
  for (std::size_t i = tag.find('&'); i != std::string::npos; i = tag.find('&', i + 1)) {
    const std::string name = tag.substr(i + 1, tag.find(';', i) - i - 1);
    if (name[0] != '#' && known.count(name) == 0) return true;
  }
  return false;
}

}  // namespace

// Builds the tree from the parser's events.
class XmlTreeBuilder {
 public:
  XmlTreeBuilder(XML_Parser parser, std::string_view document, XmlTree& tree)
      : parser_(parser), document_(document), tree_(tree), open_(tree.nodes_.front().get()) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, &OnStart, &OnEnd);
    XML_SetCharacterDataHandler(parser, &OnText);
    XML_SetStartNamespaceDeclHandler(parser, &OnNamespace);
    XML_SetEntityDeclHandler(parser, &OnEntity);
    XML_SetAttlistDeclHandler(parser, &OnAttributeDeclaration);
    XML_SetSkippedEntityHandler(parser, &OnSkippedEntity);
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
  }

  bool is_refused() const {
    return declares_ || has_entity_ || depth_ > ovrant::xml::kMaxDepth ||
           longest_uri_ > ovrant::xml::kMaxNamespaceUri;
  }
  std::size_t cost() const { return cost_; }

 private:
  static XmlTreeBuilder& Self(void* self) { return *static_cast<XmlTreeBuilder*>(self); }

  static void OnStart(void* self, const char* name, const char** attributes) {
    Self(self).Start(name, attributes);
  }

  static void OnEnd(void* self, const char* /*name*/) {
    Self(self).open_ = Self(self).open_->parent;
    --Self(self).level_;
  }

  static void OnText(void* self, const char* text, int size) {
    for (XmlNode* node = Self(self).open_; node != nullptr; node = node->parent) {
      node->text.append(text, static_cast<std::size_t>(size));
      Self(self).Pay(static_cast<std::size_t>(size));
    }
  }

  static void OnNamespace(void* self, const char* /*prefix*/, const char* uri) {
    const std::size_t size = uri == nullptr ? 0 : std::strlen(uri);
    Self(self).longest_uri_ = std::max(Self(self).longest_uri_, size);
    Self(self).Pay(kNodeCost + size);
  }

  static void OnEntity(void* self, const char* /*name*/, int /*is_parameter*/,
                       const char* /*value*/, int /*size*/, const char* /*base*/,
                       const char* /*system_id*/, const char* /*public_id*/,
                       const char* /*notation*/) {
    Self(self).Refuse(Self(self).declares_);
  }

  static void OnAttributeDeclaration(void* self, const char* /*element*/, const char* /*name*/,
                                     const char* /*type*/, const char* /*value*/,
                                     int /*required*/) {
    Self(self).Refuse(Self(self).declares_);
  }

  static void OnSkippedEntity(void* self, const char* /*name*/, int /*is_parameter*/) {
    Self(self).Refuse(Self(self).has_entity_);
  }

  void Refuse(bool& reason) {
    reason = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  void Start(const char* name, const char** attributes) {
    depth_ = std::max(depth_, ++level_);
    auto node = std::make_unique<XmlNode>();
    node->parent = open_;
    node->index = open_->children.size();
    node->name = name;
    Pay(kNodeCost + node->name.size());
    const auto tag = document_.substr(static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_)),
                                      static_cast<std::size_t>(XML_GetCurrentByteCount(parser_)));
    if (HasEntity(Narrow(tag, HighByte(document_)))) Refuse(has_entity_);
    for (int i = 0; attributes[i] != nullptr; i += 2) {
      node->attributes[attributes[i]] = attributes[i + 1];
      Pay(kNodeCost + std::strlen(attributes[i]) + std::strlen(attributes[i + 1]));
    }
    open_->children.push_back(node.get());
    open_ = node.get();
    tree_.nodes_.push_back(std::move(node));
  }

  void Pay(std::size_t cost) {
    cost_ += cost;
    if (cost_ > kTooMuch) XML_StopParser(parser_, XML_FALSE);
  }

  XML_ParserStruct* const parser_;
  const std::string_view document_;
  XmlTree& tree_;
  XmlNode* open_;
  int level_ = 0;
  int depth_ = 0;
  bool declares_ = false;
  bool has_entity_ = false;
  std::size_t longest_uri_ = 0;
  std::size_t cost_ = 0;
};

XmlTree::XmlTree(std::string_view bytes) {
  nodes_.push_back(std::make_unique<XmlNode>());
  if (bytes.empty() || HasLoneSurrogate(bytes)) return;
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreateNS(nullptr, ':'), &XML_ParserFree);
  XmlTreeBuilder builder(parser.get(), bytes, *this);
  const bool is_well_formed = XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()),
                                        XML_TRUE) == XML_STATUS_OK;
  if (builder.cost() > kTooMuch) {
    verdict_ = Verdict::kEither;
  } else if (is_well_formed && !builder.is_refused()) {
    verdict_ = builder.cost() > kSurelyEnough ? Verdict::kEither : Verdict::kOpened;
  }
}

std::vector<std::string> XmlTree::Names() const {
  std::vector<std::string> names;
  std::set<std::string> known;
  const auto add = [&](const std::string& name) {
    if (known.insert(name).second) names.push_back(name);
  };
  for (const auto& node : nodes_) {
    if (node->parent != nullptr) add(node->name);
    for (const auto& attribute : node->attributes) add(attribute.first);
  }
  return names;
}

const XmlNode* XmlNode::Child(std::string_view child_name) const {
  for (const XmlNode* const child : children) {
    if (child->name == child_name) return child;
  }
  return nullptr;
}

const XmlNode* XmlNode::NextSibling(std::string_view sibling_name) const {
  if (parent == nullptr) return nullptr;
  for (std::size_t i = index + 1; i < parent->children.size(); ++i) {
    if (parent->children[i]->name == sibling_name) return parent->children[i];
  }
  return nullptr;
}

std::optional<std::string> XmlNode::Attribute(const std::string& attribute_name) const {
  const auto found = attributes.find(attribute_name);
  if (found == attributes.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> XmlNode::ChildText(std::string_view child_name) const {
  const XmlNode* const child = Child(child_name);
  if (child == nullptr) return std::nullopt;
  return Trimmed(child->text);
}

std::optional<int> XmlNode::ChildInt(std::string_view child_name) const {
  const std::string written = ChildText(child_name).value_or("");
  const bool is_signed = !written.empty() && (written[0] == '-' || written[0] == '+');
  const std::string digits = written.substr(is_signed ? 1 : 0);
  if (digits.empty()) return std::nullopt;
  long long value = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    value = std::min(value * 10 + (c - '0'), 1LL << 40);
  }
  if (written[0] == '-') value = -value;
  if (value < -(1LL << 31) || value > (1LL << 31) - 1) return std::nullopt;
  return static_cast<int>(value);
}

std::optional<bool> XmlNode::ChildBool(std::string_view child_name) const {
  const std::string written = ChildText(child_name).value_or("");
  if (written == "true" || written == "1") return true;
  if (written == "false" || written == "0") return false;
  return std::nullopt;
}

}  // namespace stowra_fuzz
