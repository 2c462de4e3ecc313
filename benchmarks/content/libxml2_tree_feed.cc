// SPDX-License-Identifier: MIT
#include <memory>

#include "benchmarks/content/feed_builder.h"
#include "benchmarks/content/libxml2_feed.h"
#include "benchmarks/content/libxml2_names.h"

namespace stowra_bench {
namespace {

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

// Compares URIs as text, because a tree holds copies of them.
Element Classify(const xmlNode& node) {
  if (node.ns == nullptr) return Element::kOther;
  for (const ElementName& name : kElementNames) {
    if (xmlStrEqual(node.name, Chars(name.local_name)) != 0 &&
        xmlStrEqual(node.ns->href, Chars(name.uri)) != 0) {
      return name.element;
    }
  }
  return Element::kOther;
}

void Start(const xmlNode& node, FeedBuilder& builder) {
  const Element element = Classify(node);
  Attributes values;
  if (HasAttributes(element)) {
    for (const xmlAttr* attribute = node.properties; attribute; attribute = attribute->next) {
      if (attribute->ns != nullptr) continue;
      const xmlNode* const value = attribute->children;
      values.Set(Chars(attribute->name), value != nullptr ? Chars(value->content) : "");
    }
  }
  builder.Start(element, values);
}

// Reports the tree's nodes in document order.
void Walk(const xmlNode* root, FeedBuilder& builder) {
  const xmlNode* node = root;
  while (true) {
    if (node->type == XML_ELEMENT_NODE) {
      Start(*node, builder);
      if (node->children != nullptr) {
        node = node->children;
        continue;
      }
      builder.End();
    } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
      builder.Characters(Chars(node->content));
    }
    while (node != root && node->next == nullptr) {
      node = node->parent;
      builder.End();
    }
    if (node == root) return;
    node = node->next;
  }
}

}  // namespace

bool LoadWithLibxml2Tree(std::string_view document, int max_qmf_version, StdFeed& feed) {
  const std::unique_ptr<xmlDoc, FreeDocument> tree(
      xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                    kLibxml2Options | XML_PARSE_NOBLANKS | XML_PARSE_COMPACT));
  if (!tree) return false;
  FeedBuilder builder(max_qmf_version, feed);
  Walk(xmlDocGetRootElement(tree.get()), builder);
  return builder.complete();
}

}  // namespace stowra_bench
