// SPDX-License-Identifier: MIT
// Runs nginx for the benchmarks of one program.

#ifndef BENCHMARKS_SUPPORT_NGINX_H_
#define BENCHMARKS_SUPPORT_NGINX_H_

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace stowra_bench {

// Listens on 127.0.0.1, on a port that the system chooses. One worker sends files from a temporary
// folder and keeps connections open. On Linux, the constructor binds the calling thread, its later
// threads and nginx to one processor. This makes their times comparable. Throws std::runtime_error
// or std::filesystem::filesystem_error.
class Nginx {
 public:
  Nginx();
  ~Nginx();

  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  // The program's only server. It starts on the first call and ends with the program.
  static Nginx& OfThisProgram();

  // Creates a file and returns its URL. The sparse file has `size` zero bytes and takes no disk
  // space.
  std::string AddFile(const std::string& name, std::string_view content);
  std::string AddSparseFile(const std::string& name, std::size_t size);

 private:
  std::string Url(const std::string& name) const;

  std::filesystem::path folder_;
  int port_ = 0;
  pid_t process_ = -1;
};

}  // namespace stowra_bench

#endif  // BENCHMARKS_SUPPORT_NGINX_H_
