// SPDX-License-Identifier: MIT
#include <Poco/AutoPtr.h>
#include <Poco/DOM/Attr.h>
#include <Poco/DOM/CharacterData.h>
#include <Poco/DOM/DOMParser.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/SAX/SAXException.h>

#include "benchmarks/content/feed_builder.h"
#include "benchmarks/content/poco_feed.h"

namespace stowra_bench {
namespace {

using Poco::XML::Node;

Element Classify(const Node& node) {
  for (const ElementName& name : kElementNames) {
    if (node.localName() == name.local_name && node.namespaceURI() == name.uri) return name.element;
  }
  return Element::kOther;
}

void Start(const Poco::XML::Element& node, FeedBuilder& builder) {
  static const Poco::XML::XMLString names[] = {"rel", "href", "type", "term", "src", "url"};
  const Element element = Classify(node);
  Attributes values;
  if (HasAttributes(element)) {
    for (const Poco::XML::XMLString& name : names) {
      const Poco::XML::Attr* const attribute = node.getAttributeNode(name);
      if (attribute != nullptr) values.Set(name, attribute->value());
    }
  }
  builder.Start(element, values);
}

// Reports the tree's nodes in document order.
void Walk(const Node* root, FeedBuilder& builder) {
  const Node* node = root;
  while (true) {
    const unsigned short type = node->nodeType();
    if (type == Node::ELEMENT_NODE) {
      Start(static_cast<const Poco::XML::Element&>(*node), builder);
      if (node->firstChild() != nullptr) {
        node = node->firstChild();
        continue;
      }
      builder.End();
    } else if (type == Node::TEXT_NODE || type == Node::CDATA_SECTION_NODE) {
      builder.Characters(static_cast<const Poco::XML::CharacterData&>(*node).data());
    }
    while (node != root && node->nextSibling() == nullptr) {
      node = node->parentNode();
      builder.End();
    }
    if (node == root) return;
    node = node->nextSibling();
  }
}

}  // namespace

bool LoadWithPocoTree(std::string_view document, int max_qmf_version, StdFeed& feed) {
  Poco::XML::DOMParser parser;
  parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACES, true);
  parser.setFeature(Poco::XML::DOMParser::FEATURE_FILTER_WHITESPACE, true);
  try {
    const Poco::AutoPtr<Poco::XML::Document> tree =
        parser.parseMemory(document.data(), document.size());
    FeedBuilder builder(max_qmf_version, feed);
    Walk(tree->documentElement(), builder);
    return builder.complete();
  } catch (const Poco::XML::SAXException&) {
    return false;
  }
}

}  // namespace stowra_bench
