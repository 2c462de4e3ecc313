// SPDX-License-Identifier: MIT
// The version of the headers, and the one that a loaded libCommonStowraapi reports about itself.

#ifndef COMMON_STOWRAAPI_VERSION_H_
#define COMMON_STOWRAAPI_VERSION_H_

#include "common_stowraapi/export.h"

// The version of these headers (Semantic Versioning). The build reads it from here. The first
// number is that of the shared libraries' SONAME.
#define COMMON_STOWRAAPI_VERSION_MAJOR 1
#define COMMON_STOWRAAPI_VERSION_MINOR 0
#define COMMON_STOWRAAPI_VERSION_PATCH 0

extern "C" {

// A NUL-terminated text that the program `what` finds in the binary: "@(#)", the names of the
// library and the project, and the build number.
STOWRA_EXPORT extern const unsigned char CommonStowraapiVersionString[];

// The build number of the text above.
STOWRA_EXPORT extern const double CommonStowraapiVersionNumber;

}  // extern "C"

#endif  // COMMON_STOWRAAPI_VERSION_H_
