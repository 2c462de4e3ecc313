// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/xml_input.h"

#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "common_stowraapi/platform/xml/parser.h"
#include "common_stowraapi/platform/xml/reader.h"

namespace ovrant {

IXMLInput::~IXMLInput() = default;

IXMLInput* Get_IXMLInput(const unsigned char* data, int length) {
  if (data == nullptr || length <= 0) return nullptr;
  auto tree = xml::Parse({reinterpret_cast<const char*>(data), static_cast<std::size_t>(length)});
  if (!tree) return nullptr;
  return new (std::nothrow) xml::Reader(std::move(tree));
}

void End_IXMLInput(IXMLInput** reader) {
  delete *reader;
  *reader = nullptr;
}

}  // namespace ovrant
