// SPDX-License-Identifier: MIT
// Watches what a class reads from an XML document.

#ifndef HOST_CHECK_WATCHED_XML_H_
#define HOST_CHECK_WATCHED_XML_H_

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace stowra {

// One element on the way down. Elements of one name are counted from 1 in the parent's order.
struct XmlStep {
  std::string name;  // qualified
  int number = 1;
};

// Something that was asked for.
struct XmlLookup {
  enum class Kind { kElement, kAttribute, kText, kInt, kBool };

  Kind kind = Kind::kElement;
  std::vector<XmlStep> path;  // below the element at which the watch began
  std::string name;           // qualified for elements
  bool found = false;
  std::string value;  // the text; also where it is not the number or flag that it should be
};

// The last part of a qualified name.
std::string LocalName(std::string_view qualified);

// A reader that passes every call on and records the look-ups.
class WatchedXml : public ovrant::IXMLInput {
 public:
  explicit WatchedXml(std::unique_ptr<ovrant::IXMLInput> reader) : reader_(std::move(reader)) {}

  // The look-ups since the last call. Later paths begin at the current element.
  std::vector<XmlLookup> TakeLookups();

  bool FindElement(const ovrant::utils::ovrant_ustring& name) override;
  bool LeaveElement(const ovrant::utils::ovrant_ustring& name) override;
  bool NextElement(const ovrant::utils::ovrant_ustring& name) override;
  bool GetAttribute(const ovrant::utils::ovrant_ustring& name,
                    ovrant::utils::ovrant_ustring& value) override;
  bool GetElementText(const ovrant::utils::ovrant_ustring& name,
                      ovrant::utils::ovrant_ustring& value) override;
  bool GetElementInt(const ovrant::utils::ovrant_ustring& name, int& value) override;
  bool GetElementBool(const ovrant::utils::ovrant_ustring& name, bool& value) override;

 private:
  void Record(XmlLookup::Kind kind, const ovrant::utils::ovrant_ustring& name, bool found,
              const std::string& value = {});
  std::string TextOf(const ovrant::utils::ovrant_ustring& name);

  const std::unique_ptr<ovrant::IXMLInput> reader_;
  std::vector<XmlStep> path_;
  std::vector<XmlLookup> lookups_;
};

}  // namespace stowra

#endif  // HOST_CHECK_WATCHED_XML_H_
