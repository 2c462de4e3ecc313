// SPDX-License-Identifier: MIT
// Walks the children of one name.

#ifndef COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_
#define COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

// Calls `visit` with `reader` at each child of that name in turn, then moves `reader` back. False
// if the element has no such child.
template <typename Visit>
bool ForEachElement(IXMLInput& reader, const ovrant::utils::ovrant_ustring& name,
                    const Visit& visit) {
  if (!reader.FindElement(name)) return false;
  do {
    visit();
  } while (reader.NextElement(name));
  reader.LeaveElement(name);
  return true;
}

// The same for the first child of that name only.
template <typename Visit>
bool InElement(IXMLInput& reader, const ovrant::utils::ovrant_ustring& name, const Visit& visit) {
  if (!reader.FindElement(name)) return false;
  visit();
  reader.LeaveElement(name);
  return true;
}

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_
