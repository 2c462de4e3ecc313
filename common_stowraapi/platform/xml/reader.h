// SPDX-License-Identifier: MIT
// A cursor in an XML document.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_READER_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_READER_H_

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml/tree.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::xml {

// Reads a tree, which it owns.
class Reader final : public IXMLInput {
 public:
  explicit Reader(std::unique_ptr<const Tree> tree) : tree_(std::move(tree)) {}

  bool FindElement(const utils::ovrant_ustring& name) override;
  bool LeaveElement(const utils::ovrant_ustring& name) override;
  bool NextElement(const utils::ovrant_ustring& name) override;
  bool GetAttribute(const utils::ovrant_ustring& name, utils::ovrant_ustring& value) override;
  bool GetElementText(const utils::ovrant_ustring& name, utils::ovrant_ustring& value) override;
  bool GetElementInt(const utils::ovrant_ustring& name, int& value) override;
  bool GetElementBool(const utils::ovrant_ustring& name, bool& value) override;

 private:
  NameId FindName(const utils::ovrant_ustring& name) const;
  bool MoveToChild(ElementId parent, const utils::ovrant_ustring& name, ElementId after);
  std::optional<std::string_view> FindText(const utils::ovrant_ustring& name) const;

  const std::unique_ptr<const Tree> tree_;
  ElementId current_ = kDocument;
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_READER_H_
