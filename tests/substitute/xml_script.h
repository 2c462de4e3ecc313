// SPDX-License-Identifier: MIT
// The test's side of the substitute's XML reader: the documents that it opens.

#ifndef TESTS_SUBSTITUTE_XML_SCRIPT_H_
#define TESTS_SUBSTITUTE_XML_SCRIPT_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/xml_input.h"

namespace stowra_substitute {

// An element of a document. Names are short: see ShortName.
struct XmlElement {
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  std::string name;
  Attributes attributes;
  std::string text;
  std::vector<XmlElement> children;
};

// A qualified name with a letter for its namespace: "a:" Atom, "o:" OpenSearch, "m:" Media RSS,
// "s:" the service's own schema. A name in no namespace stays as it is.
STOWRA_EXPORT std::string ShortName(const std::string& qualified_name);

// What the next calls of Get_IXMLInput open, in turn. One that finds none records that, and opens
// nothing.
STOWRA_EXPORT void ScriptDocument(XmlElement root);
STOWRA_EXPORT void ScriptUnreadableDocument();
STOWRA_EXPORT int CountScriptedDocuments();

// A reader at the document above that root. Each of its operations is recorded as a sign and the
// short name that it was given, such as "+a:title", with a "!" before it when it finds nothing:
//
//   +  FindElement    @  GetAttribute     #  GetElementInt
//   >  NextElement    .  GetElementText   ?  GetElementBool
//   -  LeaveElement
STOWRA_EXPORT std::unique_ptr<ovrant::IXMLInput> ReaderOf(XmlElement root);

// The number of readers that exist now.
STOWRA_EXPORT int CountReaders();

// The number of calls outside the contract since the last call, each of which is recorded, too:
//   - NextElement or LeaveElement with another name than the current element's
//   - any other call than LeaveElement after a failed NextElement
//   - the end of the reader inside an element
STOWRA_EXPORT int TakeReaderMisuses();

// Sets the result of LeaveElement, which the library should ignore. True at first.
STOWRA_EXPORT void SetLeaveResult(bool result);

// Makes the operation with that record run out of memory once. No operation if it is empty.
STOWRA_EXPORT void SetFailingOperation(std::string record);

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_XML_SCRIPT_H_
