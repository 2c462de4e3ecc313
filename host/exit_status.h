// What the program's exit status says.

#ifndef HOST_EXIT_STATUS_H_
#define HOST_EXIT_STATUS_H_

namespace stowra {

enum class ExitStatus {
  kDone = 0,
  kCannotRun = 1,  // no memory, or something could not be read or written
  kUsage = 2,
  kTransferFailed = 3,
  kHttpStatus = 4,  // any other status than 200, or of an upload than 2xx
  kUnusableResponse = 5,
};

}  // namespace stowra

#endif  // HOST_EXIT_STATUS_H_
