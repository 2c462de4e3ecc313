// SPDX-License-Identifier: MIT
// Reading XML documents.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant {

// A reader over one XML document (XML 1.0, Namespaces in XML 1.0). It has a current element. At
// first that is the document itself, above the root element.
//
// The name of an element is its namespace URI, ":" and its local name. An element in no namespace
// has its local name alone, and so has an attribute without a prefix. Names match exactly.
//
// The text of an element is all character data inside it, its descendants' too, without the white
// space around it. An empty element is present and has the empty text.
//
// To walk a list, call FindElement, then NextElement until it gives false, then LeaveElement once.
// Children may be asked for in any order, whatever lies between them.
//
// Use a reader from one thread at a time. A call that runs out of memory throws std::bad_alloc and
// changes nothing. The order of the virtual functions is part of the binary interface.
class STOWRA_EXPORT IXMLInput {
 public:
  IXMLInput() = default;
  virtual ~IXMLInput();

  IXMLInput(const IXMLInput&) = delete;
  IXMLInput& operator=(const IXMLInput&) = delete;

  // Makes the first child of that name current. If it does not exist, gives false and stays.
  virtual bool FindElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // Makes the parent of the current element current. The parent of the root is the document. If the
  // current element has another name, gives false and stays.
  virtual bool LeaveElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // Makes the next sibling of that name current. If it does not exist, gives false and stays.
  virtual bool NextElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // The value of an attribute of the current element. False if it is absent. `value` is unchanged
  // then.
  virtual bool GetAttribute(const ovrant::utils::ovrant_ustring& name,
                            ovrant::utils::ovrant_ustring& value) = 0;

  // The text of the first child of that name. The current element stays. False if there is no such
  // child. `value` is unchanged then.
  virtual bool GetElementText(const ovrant::utils::ovrant_ustring& name,
                              ovrant::utils::ovrant_ustring& value) = 0;

  // The same as a decimal number, which is an optional sign and digits that fit 32 bits. Any other
  // text counts as absent.
  virtual bool GetElementInt(const ovrant::utils::ovrant_ustring& name, int& value) = 0;

  // The same as a flag, which is "true", "false", "1" or "0". Any other text counts as absent.
  virtual bool GetElementBool(const ovrant::utils::ovrant_ustring& name, bool& value) = 0;
};

// A reader over `length` bytes, which stay the caller's and must outlive it. The caller owns the
// reader. Null in these cases:
//  - `data` is null, or `length` is 0 or less.
//  - The bytes are not a well-formed document to the last byte. The encoding may be UTF-8, UTF-16,
//    ISO-8859-1 or US-ASCII, as the document declares it.
//  - The document declares an attribute, or an entity other than amp, lt, gt, apos and quot.
//  - The document refers to an entity that it does not declare.
//  - The document breaks a limit. It may have 1 GiB, 256 levels of elements, and namespace URIs of
//    256 bytes. The tree may take 16 times `length` plus 1 MiB of memory, and the parser as much.
//  - There is not enough memory.
//
// All else in a document type declaration is read and ignored. Nothing external is ever opened or
// fetched. Fits a 512 KiB stack.
STOWRA_EXPORT IXMLInput* Get_IXMLInput(const unsigned char* data, int length);

// Deletes the reader and sets `*reader` to null. Does nothing if it is null already.
STOWRA_EXPORT void End_IXMLInput(IXMLInput** reader);

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_
