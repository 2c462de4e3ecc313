// The output of --version.

#ifndef HOST_VERSION_TEXT_H_
#define HOST_VERSION_TEXT_H_

#include <string>

namespace stowra {

// The two version symbols of the loaded library, in readable form.
std::string VersionText();

}  // namespace stowra

#endif  // HOST_VERSION_TEXT_H_
