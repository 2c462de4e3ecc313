// SPDX-License-Identifier: MIT
#include "tests/emulator/xml_tree.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <memory>

namespace stowra_emulator {
namespace {

struct Builder {
  XmlElement document;
  std::vector<XmlElement*> open{&document};
};

void XMLCALL StartElement(void* data, const char* name, const char** attributes) {
  auto& builder = *static_cast<Builder*>(data);
  XmlElement& element = builder.open.back()->children.emplace_back();
  element.name = name;
  for (; *attributes != nullptr; attributes += 2) {
    element.attributes[attributes[0]] = attributes[1];
  }
  builder.open.push_back(&element);
}

void XMLCALL EndElement(void* data, const char*) { static_cast<Builder*>(data)->open.pop_back(); }

void XMLCALL Characters(void* data, const char* text, int length) {
  static_cast<Builder*>(data)->open.back()->text.append(text, static_cast<std::size_t>(length));
}

const XmlElement& Only(const std::vector<const XmlElement*>& found) {
  static const XmlElement none;
  EXPECT_EQ(found.size(), 1u);
  return found.size() == 1 ? *found[0] : none;
}

}  // namespace

std::vector<const XmlElement*> XmlElement::Children(const std::string& child) const {
  std::vector<const XmlElement*> found;
  for (const XmlElement& element : children) {
    if (element.name == child) found.push_back(&element);
  }
  return found;
}

std::vector<const XmlElement*> XmlElement::Descendants(const std::string& descendant) const {
  std::vector<const XmlElement*> found;
  for (const XmlElement& child : children) {
    if (child.name == descendant) found.push_back(&child);
    for (const XmlElement* deeper : child.Descendants(descendant)) found.push_back(deeper);
  }
  return found;
}

const XmlElement& XmlElement::Child(const std::string& child) const {
  SCOPED_TRACE(child + " in " + name);
  return Only(Children(child));
}

const XmlElement& XmlElement::Descendant(const std::string& descendant) const {
  SCOPED_TRACE(descendant + " in " + name);
  return Only(Descendants(descendant));
}

std::string XmlElement::Attribute(const std::string& attribute) const {
  const auto found = attributes.find(attribute);
  if (found != attributes.end()) return found->second;
  ADD_FAILURE() << name << " has no attribute " << attribute;
  return std::string();
}

std::string XmlElement::Link(const std::string& rel) const {
  std::string href;
  for (const XmlElement* link : Children(Atom("link"))) {
    if (link->Attribute("rel") != rel) continue;
    EXPECT_EQ(href, "") << "several links " << rel;
    href = link->Attribute("href");
  }
  return href;
}

XmlElement ParseXml(const std::string& document) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreateNS(nullptr, ':'), XML_ParserFree);
  Builder builder;
  XML_SetUserData(parser.get(), &builder);
  XML_SetElementHandler(parser.get(), StartElement, EndElement);
  XML_SetCharacterDataHandler(parser.get(), Characters);
  const XML_Status status =
      XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
  EXPECT_EQ(status, XML_STATUS_OK) << XML_ErrorString(XML_GetErrorCode(parser.get())) << " in line "
                                   << XML_GetCurrentLineNumber(parser.get()) << " of\n"
                                   << document;
  return status == XML_STATUS_OK ? builder.document.children.front() : XmlElement();
}

}  // namespace stowra_emulator
