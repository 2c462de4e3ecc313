// An nginx for the benchmarks of one program.

#ifndef BENCHMARKS_SUPPORT_NGINX_H_
#define BENCHMARKS_SUPPORT_NGINX_H_

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace stowra_bench {

// Listens on 127.0.0.1 and a port of the system's choice, with one worker, and sends the files of a
// temporary folder of its own. Connections stay open. Where the system allows it, the calling
// thread, those that it starts later and nginx share one processor from then on: their times can be
// compared. What it throws is std::runtime_error or std::filesystem::filesystem_error.
class Nginx {
 public:
  Nginx();
  ~Nginx();

  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  // The one of this program: it starts with the first call and ends with the program.
  static Nginx& OfThisProgram();

  // The URL of a file with that content, or of one of `size` zero bytes, which takes no room.
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
