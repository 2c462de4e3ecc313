// Reading XML documents.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_

#include "common_stowraapi/export.h"
#include "common_stowraapi/platform/ustring.h"

namespace ovrant {

// A reader over one XML document (XML 1.0, Namespaces in XML 1.0). It has a current element; at
// first it stands at the document, above the root element.
//
// Elements are named by namespace URI, ":" and local name, those in no namespace by the local name
// alone; attributes without a prefix by their local name. Names match exactly.
//
// The text of an element is all character data inside it, that of its descendants included, without
// the white space around it. An empty element is present, with the empty text.
//
// A list of elements is walked so: FindElement; while NextElement gives true, go on; LeaveElement
// once. Children may be asked for in any order, whatever lies between them. For one thread at a
// time. Running out of memory throws std::bad_alloc and changes nothing. The order of the virtual
// functions is part of the binary interface.
class STOWRA_EXPORT IXMLInput {
 public:
  IXMLInput() = default;
  virtual ~IXMLInput();

  IXMLInput(const IXMLInput&) = delete;
  IXMLInput& operator=(const IXMLInput&) = delete;

  // Makes the first child of that name the current element. False, and nothing changes, if there is
  // none.
  virtual bool FindElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // Makes the parent of the current element, which has that name, current: after the root element,
  // the document. False, and nothing changes, if the current element has another name.
  virtual bool LeaveElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // Makes the next sibling of that name the current element. False, and nothing changes, if there
  // is none.
  virtual bool NextElement(const ovrant::utils::ovrant_ustring& name) = 0;

  // The value of an attribute of the current element as the document gives it: one that only a
  // document type declaration supplies is absent. False if absent; `value` is then unchanged.
  virtual bool GetAttribute(const ovrant::utils::ovrant_ustring& name,
                            ovrant::utils::ovrant_ustring& value) = 0;

  // The text of the first child of that name; the current element stays. False if there is no such
  // child; `value` is then unchanged.
  virtual bool GetElementText(const ovrant::utils::ovrant_ustring& name,
                              ovrant::utils::ovrant_ustring& value) = 0;

  // The same, read as a decimal number: an optional sign and digits that fit 32 bits. Any other
  // text counts as absent.
  virtual bool GetElementInt(const ovrant::utils::ovrant_ustring& name, int& value) = 0;

  // The same, read as "true", "false", "1" or "0". Any other text counts as absent.
  virtual bool GetElementBool(const ovrant::utils::ovrant_ustring& name, bool& value) = 0;
};

// A reader over `length` bytes, which stay the caller's and must outlive it. Null when they are not
// a well-formed document to their last byte, in UTF-8, UTF-16, ISO-8859-1 or US-ASCII as declared;
// when there is not enough memory; and when they break one of the limits that keep a hostile
// document from costing more than its size: 256 levels of elements; a namespace URI of 256 bytes;
// 64 entities that refer to other declared ones; 16 times `length` plus 1 MiB of bytes for the
// tree, and as many for the parser; and as much again of what declarations make the parser do,
// which is a look at each attribute declared for an element at each of them and at each element,
// and a hash of each byte of a defaulted attribute's name and of a declared namespace's URI. What
// entities and attribute defaults bring about counts like what is written.
//
// A document type declaration is read, but neither the external subset nor an external entity is:
// nothing is ever opened or fetched. Fits a 512 KiB stack. The caller owns the reader.
STOWRA_EXPORT IXMLInput* Get_IXMLInput(const unsigned char* data, int length);

// Deletes the reader and sets the pointer to null. A null pointer in `*reader` is left alone.
STOWRA_EXPORT void End_IXMLInput(IXMLInput** reader);

}  // namespace ovrant

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_INPUT_H_
