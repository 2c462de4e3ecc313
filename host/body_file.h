// A request body that the user gives.

#ifndef HOST_BODY_FILE_H_
#define HOST_BODY_FILE_H_

#include <string>

namespace stowra {

// Reads the whole file, or standard input for "-", as UTF-8. False when that cannot be done, and
// `why` says why.
bool ReadBodyFile(const std::string& file, std::string& body, std::string& why);

}  // namespace stowra

#endif  // HOST_BODY_FILE_H_
