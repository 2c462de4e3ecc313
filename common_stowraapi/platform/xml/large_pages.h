// Memory by the large page.

#ifndef COMMON_STOWRAAPI_PLATFORM_XML_LARGE_PAGES_H_
#define COMMON_STOWRAAPI_PLATFORM_XML_LARGE_PAGES_H_

#include <cstddef>

namespace ovrant::utils {

// Asks the system to give `block`, if it is large and has not been used yet, page by large page:
// one fault then takes the place of hundreds. Does nothing where the system cannot.
void PreferLargePages(void* block, std::size_t size);

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_XML_LARGE_PAGES_H_
