// SPDX-License-Identifier: MIT
// A second reading of XML documents, for every target whose subject reads one.

#ifndef FUZZ_PLATFORM_XML_TREE_H_
#define FUZZ_PLATFORM_XML_TREE_H_

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stowra_fuzz {

// Names are as the parser gives them: namespace URI, ":", local name; the document's is empty.
struct XmlNode {
  XmlNode* parent = nullptr;
  std::size_t index = 0;  // among the parent's children
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string text;  // all inside, with the white space around it
  std::vector<XmlNode*> children;

  // Null if it does not exist.
  const XmlNode* Child(std::string_view child_name) const;
  const XmlNode* NextSibling(std::string_view sibling_name) const;
  std::optional<std::string> Attribute(const std::string& attribute_name) const;

  // Of the first child of that name, read as the type says.
  std::optional<std::string> ChildText(std::string_view child_name) const;
  std::optional<int> ChildInt(std::string_view child_name) const;
  std::optional<bool> ChildBool(std::string_view child_name) const;
};

class XmlTree {
 public:
  // kEither: the document is well-formed, and so near to a limit that it may be refused or not.
  enum class Verdict { kRefused, kEither, kOpened };

  explicit XmlTree(std::string_view bytes);

  Verdict verdict() const { return verdict_; }

  // The node above the root. Complete only if the document is opened.
  const XmlNode& document() const { return *nodes_.front(); }

  // All names of elements and attributes, in the order of their first appearance.
  std::vector<std::string> Names() const;

 private:
  friend class XmlTreeBuilder;

  Verdict verdict_ = Verdict::kRefused;
  std::vector<std::unique_ptr<XmlNode>> nodes_;  // in document order
};

}  // namespace stowra_fuzz

#endif  // FUZZ_PLATFORM_XML_TREE_H_
