// SPDX-License-Identifier: MIT
// Documents made to cost more than their size.

#ifndef TESTS_PLATFORM_XML_HOSTILE_DOCUMENT_H_
#define TESTS_PLATFORM_XML_HOSTILE_DOCUMENT_H_

#include <functional>
#include <string>

#include "common_stowraapi/platform/xml_input.h"

namespace stowra_test {

// Opens the document on a small stack, calls `use` if it opens, and deletes the reader. Returns
// whether it opened. The test fails if that takes ten times as long as a harmless document of the
// same size. It also fails if the memory is above the reader's limits, or if some memory leaks.
bool OpenHostile(const std::string& bytes,
                 const std::function<void(ovrant::IXMLInput& reader)>& use = nullptr);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_XML_HOSTILE_DOCUMENT_H_
