// SPDX-License-Identifier: MIT
// XML as a tree, to check what the services answer.

#ifndef TESTS_EMULATOR_XML_TREE_H_
#define TESTS_EMULATOR_XML_TREE_H_

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace stowra_emulator {

// Names in the namespaces of a feed.
inline std::string Atom(const std::string& name) { return "http://www.w3.org/2005/Atom:" + name; }
inline std::string Media(const std::string& name) {
  return "http://search.yahoo.com/mrss/:" + name;
}
inline std::string OpenSearch(const std::string& name) {
  return "http://a9.com/-/spec/opensearchrss/1.0/:" + name;
}
inline std::string Schema(const std::string& name) {
  return "http://schemas.stowra.example/stowra/2008:" + name;
}

struct XmlElement {
  std::string name;  // "namespace:local", or the local name alone.
  std::map<std::string, std::string> attributes;
  std::string text;  // Without the text of its children.
  std::deque<XmlElement> children;

  std::vector<const XmlElement*> Children(const std::string& child) const;

  // All descendants of that name, in document order.
  std::vector<const XmlElement*> Descendants(const std::string& descendant) const;

  // The only child of that name. Fails the current test if there is not exactly one.
  const XmlElement& Child(const std::string& child) const;

  // The only descendant, likewise.
  const XmlElement& Descendant(const std::string& descendant) const;

  // The attribute's value. Fails the current test if it is absent.
  std::string Attribute(const std::string& attribute) const;

  // The href of the link with this rel, or empty. Fails the current test if there are several.
  std::string Link(const std::string& rel) const;
};

// The root element. Fails the current test if the document is not well-formed.
XmlElement ParseXml(const std::string& document);

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_XML_TREE_H_
