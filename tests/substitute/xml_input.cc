// SPDX-License-Identifier: MIT
// A reader over a document that the test has built.

#include "common_stowraapi/platform/xml_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <deque>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/substitute/effects.h"
#include "tests/substitute/xml_script.h"

using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;
using stowra_substitute::Record;
using stowra_substitute::ShortName;
using stowra_substitute::XmlElement;

namespace {

constexpr std::pair<char, const char*> kNamespaces[] = {
    {'a', "http://www.w3.org/2005/Atom:"},
    {'o', "http://a9.com/-/spec/opensearchrss/1.0/:"},
    {'m', "http://search.yahoo.com/mrss/:"},
    {'s', "http://schemas.stowra.example/stowra/2008:"}};

constexpr int kMostShown = 4096;  // bytes of a document, in a record

int readers = 0;
int misuses = 0;
bool leave_result = true;
std::string failing_operation;
std::deque<std::optional<XmlElement>> script;

void Misuse(const std::string& what) {
  ++misuses;
  Record("misuse: " + what);
}

class ScriptedReader : public IXMLInput {
 public:
  explicit ScriptedReader(XmlElement root) : document_{"", {}, "", {std::move(root)}} {
    ++readers;
    path_.push_back({&document_, 0});
  }

  ~ScriptedReader() override {
    --readers;
    if (path_.size() > 1 && !has_failed_) Misuse("deleted inside " + here().name);
    Record("reader deleted");
  }

  bool FindElement(const ovrant_ustring& name) override { return Move('+', name, here(), 0); }

  bool NextElement(const ovrant_ustring& name) override {
    RequireCurrent("NextElement", name);
    if (path_.size() < 2) return false;
    const Place left = path_.back();
    path_.pop_back();
    if (Move('>', name, here(), left.index + 1)) return true;
    path_.push_back(left);
    list_is_over_ = true;
    return false;
  }

  bool LeaveElement(const ovrant_ustring& name) override {
    list_is_over_ = false;
    RecordOrFail("-" + ShortName(name.utf8()));
    RequireCurrent("LeaveElement", name);
    if (path_.size() > 1) path_.pop_back();
    return leave_result;
  }

  bool GetAttribute(const ovrant_ustring& name, ovrant_ustring& value) override {
    const auto& attributes = here().attributes;
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [key = name.utf8()](const auto& entry) { return entry.first == key; });
    const bool is_found = found != attributes.end();
    RecordCall('@', name, is_found);
    if (is_found) value = found->second.c_str();
    return is_found;
  }

  bool GetElementText(const ovrant_ustring& name, ovrant_ustring& value) override {
    const XmlElement* const child = Child('.', name);
    if (child != nullptr) value = child->text.c_str();
    return child != nullptr;
  }

  bool GetElementInt(const ovrant_ustring& name, int& value) override {
    const XmlElement* const child = Child('#', name);
    if (child != nullptr) value = std::atoi(child->text.c_str());
    return child != nullptr;
  }

  bool GetElementBool(const ovrant_ustring& name, bool& value) override {
    const XmlElement* const child = Child('?', name);
    if (child != nullptr) value = child->text == "true";
    return child != nullptr;
  }

 private:
  struct Place {
    const XmlElement* element;
    std::size_t index;  // among its siblings
  };

  const XmlElement& here() const { return *path_.back().element; }

  void RecordOrFail(const std::string& operation) {
    Record(operation);
    if (operation != failing_operation) return;
    failing_operation.clear();
    has_failed_ = true;
    throw std::bad_alloc();
  }

  static std::size_t IndexOf(const std::string& name, const XmlElement& parent, std::size_t from) {
    const auto& children = parent.children;
    while (from < children.size() && children[from].name != name) ++from;
    return from;
  }

  void RecordCall(char operation, const ovrant_ustring& name, bool found) {
    RecordOrFail((found ? "" : "!") + (operation + ShortName(name.utf8())));
    if (list_is_over_) Misuse("the list has not been left");
  }

  void RequireCurrent(const std::string& operation, const ovrant_ustring& name) const {
    if (ShortName(name.utf8()) != here().name) Misuse(operation + " in " + here().name);
  }

  bool Move(char operation, const ovrant_ustring& name, const XmlElement& parent,
            std::size_t from) {
    const std::size_t index = IndexOf(ShortName(name.utf8()), parent, from);
    const bool found = index < parent.children.size();
    RecordCall(operation, name, found);
    if (found) path_.push_back({&parent.children[index], index});
    return found;
  }

  const XmlElement* Child(char operation, const ovrant_ustring& name) {
    const std::size_t index = IndexOf(ShortName(name.utf8()), here(), 0);
    const bool found = index < here().children.size();
    RecordCall(operation, name, found);
    return found ? &here().children[index] : nullptr;
  }

  const XmlElement document_;
  std::vector<Place> path_;
  bool has_failed_ = false;
  bool list_is_over_ = false;  // a NextElement has failed and no LeaveElement has followed
};

}  // namespace

namespace ovrant {

IXMLInput::~IXMLInput() = default;

IXMLInput* Get_IXMLInput(const unsigned char* data, int length) {
  const bool is_shown = length > 0 && length <= kMostShown;
  const std::string bytes = is_shown ? std::string(data, data + length) : "";
  Record("Get_IXMLInput " + std::to_string(length) + " bytes: " + bytes);
  if (script.empty()) {
    Record("no document is scripted");
    return nullptr;
  }
  std::optional<XmlElement> root = std::move(script.front());
  script.pop_front();
  return root ? new ScriptedReader(*std::move(root)) : nullptr;
}

void End_IXMLInput(IXMLInput** reader) {
  Record("End_IXMLInput");
  delete *reader;
  *reader = nullptr;
}

}  // namespace ovrant

namespace stowra_substitute {

std::string ShortName(const std::string& qualified_name) {
  for (const auto& [letter, prefix] : kNamespaces) {
    const std::string uri = prefix;
    if (qualified_name.compare(0, uri.size(), uri) == 0) {
      return std::string(1, letter) + ":" + qualified_name.substr(uri.size());
    }
  }
  return qualified_name;
}

void ScriptDocument(XmlElement root) { script.emplace_back(std::move(root)); }
void ScriptUnreadableDocument() { script.emplace_back(std::nullopt); }
int CountScriptedDocuments() { return static_cast<int>(script.size()); }

std::unique_ptr<IXMLInput> ReaderOf(XmlElement root) {
  return std::make_unique<ScriptedReader>(std::move(root));
}

int CountReaders() { return readers; }

int TakeReaderMisuses() { return std::exchange(misuses, 0); }

void SetLeaveResult(bool result) { leave_result = result; }

void SetFailingOperation(std::string record) { failing_operation = std::move(record); }

}  // namespace stowra_substitute
