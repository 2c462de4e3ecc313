// A cursor in an XML document.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_READER_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_READER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml/child_index.h"
#include "common_stowraapi/platform/xml/tree.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::xml {

// Reads a tree, which it owns.
class Reader final : public IXMLInput {
 public:
  explicit Reader(std::unique_ptr<const Tree> tree) : tree_(std::move(tree)), children_(*tree_) {}

  bool FindElement(const utils::ovrant_ustring& name) override;
  bool LeaveElement(const utils::ovrant_ustring& name) override;
  bool NextElement(const utils::ovrant_ustring& name) override;
  bool GetAttribute(const utils::ovrant_ustring& name, utils::ovrant_ustring& value) override;
  bool GetElementText(const utils::ovrant_ustring& name, utils::ovrant_ustring& value) override;
  bool GetElementInt(const utils::ovrant_ustring& name, int& value) override;
  bool GetElementBool(const utils::ovrant_ustring& name, bool& value) override;

 private:
  // A name that was asked for, and its number in the document.
  struct AskedName {
    std::u16string text;
    std::uint64_t tail = 0;
    NameId id = kNoName;
  };

  NameId FindName(const utils::ovrant_ustring& name);
  [[gnu::noinline]] NameId AskFrom(std::size_t slot, const utils::ovrant_ustring& name);
  bool MoveTo(ElementId parent, ElementId from, const utils::ovrant_ustring& name);
  std::optional<std::string_view> FindText(const utils::ovrant_ustring& name);

  const std::unique_ptr<const Tree> tree_;
  ChildIndex children_;
  ElementId current_ = kDocument;

  // A hash table with open addressing, emptied when it is half full.
  static constexpr int kAskedBits = 7;
  std::array<AskedName, std::size_t{1} << kAskedBits> asked_;
  std::size_t asked_count_ = 0;
};

}  // namespace ovrant::xml

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_READER_H_
