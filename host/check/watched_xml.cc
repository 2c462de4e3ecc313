// SPDX-License-Identifier: MIT
#include "host/check/watched_xml.h"

#include <utility>

namespace stowra {

using ovrant::utils::ovrant_ustring;
using Kind = XmlLookup::Kind;

std::string LocalName(std::string_view qualified) {
  return std::string(qualified.substr(qualified.rfind(':') + 1));
}

std::vector<XmlLookup> WatchedXml::TakeLookups() {
  path_.clear();
  return std::exchange(lookups_, {});
}

bool WatchedXml::FindElement(const ovrant_ustring& name) {
  const bool found = reader_->FindElement(name);
  Record(Kind::kElement, name, found);
  if (found) path_.push_back({name.utf8(), 1});
  return found;
}

bool WatchedXml::LeaveElement(const ovrant_ustring& name) {
  const bool left = reader_->LeaveElement(name);
  if (left && !path_.empty()) path_.pop_back();
  return left;
}

bool WatchedXml::NextElement(const ovrant_ustring& name) {
  const bool found = reader_->NextElement(name);
  if (found && !path_.empty()) ++path_.back().number;
  return found;
}

bool WatchedXml::GetAttribute(const ovrant_ustring& name, ovrant_ustring& value) {
  const bool found = reader_->GetAttribute(name, value);
  Record(Kind::kAttribute, name, found, found ? value.utf8() : "");
  return found;
}

bool WatchedXml::GetElementText(const ovrant_ustring& name, ovrant_ustring& value) {
  const bool found = reader_->GetElementText(name, value);
  Record(Kind::kText, name, found, found ? value.utf8() : "");
  return found;
}

bool WatchedXml::GetElementInt(const ovrant_ustring& name, int& value) {
  const bool found = reader_->GetElementInt(name, value);
  Record(Kind::kInt, name, found, TextOf(name));
  return found;
}

bool WatchedXml::GetElementBool(const ovrant_ustring& name, bool& value) {
  const bool found = reader_->GetElementBool(name, value);
  Record(Kind::kBool, name, found, TextOf(name));
  return found;
}

void WatchedXml::Record(Kind kind, const ovrant_ustring& name, bool found,
                        const std::string& value) {
  lookups_.push_back({kind, path_, name.utf8(), found, value});
}

std::string WatchedXml::TextOf(const ovrant_ustring& name) {
  ovrant_ustring text;
  reader_->GetElementText(name, text);
  return text.utf8();
}

}  // namespace stowra
