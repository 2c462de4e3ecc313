// SPDX-License-Identifier: MIT
// Opens an XML document to be watched.

#ifndef HOST_CHECK_XML_DOCUMENT_H_
#define HOST_CHECK_XML_DOCUMENT_H_

#include <climits>
#include <memory>
#include <string>

#include "common_stowraapi/platform/xml_input.h"
#include "host/check/watched_xml.h"

namespace stowra {

// Null if the library does not open it. `document` must outlive the reader.
inline std::unique_ptr<WatchedXml> WatchDocument(const std::string& document) {
  if (document.size() > INT_MAX) return nullptr;
  std::unique_ptr<ovrant::IXMLInput> reader(ovrant::Get_IXMLInput(
      reinterpret_cast<const unsigned char*>(document.data()), static_cast<int>(document.size())));
  return reader == nullptr ? nullptr : std::make_unique<WatchedXml>(std::move(reader));
}

inline constexpr char kNotOpened[] =
    "it cannot be opened: it is not well-formed XML, declares entities or attributes, or is too "
    "large";

}  // namespace stowra

#endif  // HOST_CHECK_XML_DOCUMENT_H_
