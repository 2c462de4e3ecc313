#include "host/body_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "common_stowraapi/platform/ustring.h"

namespace stowra {

using ovrant::utils::ovrant_ustring;

namespace {

struct FileCloser {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

// Each returns 0, or the errno that says why not.
int ReadToEnd(std::FILE* stream, std::string& content) {
  char bytes[16384];
  std::size_t count = 0;
  while ((count = std::fread(bytes, 1, sizeof(bytes), stream)) > 0) content.append(bytes, count);
  return std::ferror(stream) == 0 ? 0 : errno;
}

int ReadFile(const std::string& file, std::string& content) {
  if (file == "-") return ReadToEnd(stdin, content);
  const std::unique_ptr<std::FILE, FileCloser> stream(std::fopen(file.c_str(), "rb"));
  return stream != nullptr ? ReadToEnd(stream.get(), content) : errno;
}

}  // namespace

bool ReadBodyFile(const std::string& file, std::string& body, std::string& why) {
  std::string content;
  if (const int error = ReadFile(file, content)) {
    why = std::strerror(error);  // NOLINT(concurrency-mt-unsafe): no other thread runs yet
    return false;
  }
  // The library's text would carry other bytes than the user gave.
  if (ovrant_ustring(content.data(), content.size()).utf8() != content) {
    why = "not UTF-8";
    return false;
  }
  body = std::move(content);
  return true;
}

}  // namespace stowra
