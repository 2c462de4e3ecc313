// Walking the children of one name.

#ifndef COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_
#define COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_

#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"

namespace ovrant::stowraapiclient {

// Calls `visit` with `reader` on each child of that name in turn, and returns to where it stood.
// False if there is none.
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

// The same for an element that is alone or whose first one counts.
template <typename Visit>
bool InElement(IXMLInput& reader, const ovrant::utils::ovrant_ustring& name, const Visit& visit) {
  if (!reader.FindElement(name)) return false;
  visit();
  reader.LeaveElement(name);
  return true;
}

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_ELEMENT_LIST_H_
