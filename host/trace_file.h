// SPDX-License-Identifier: MIT
// Files of trace records.

#ifndef HOST_TRACE_FILE_H_
#define HOST_TRACE_FILE_H_

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/trace_record.h"

namespace stowra {

// Writes records as lines of JSON. Each is flushed, so the file is whole if the program is killed.
class TraceFile {
 public:
  // Makes the file empty. Throws std::runtime_error with a message if that fails.
  explicit TraceFile(std::string path);

  // After the first failure it prints a warning and writes no more.
  void Write(const TraceRecord& record);

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  const std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
};

// Reads all records of the file at `path`, or of standard input for "-". If that fails, returns
// false with the reason in `why`, which names the line of a bad record.
bool ReadTrace(const std::string& path, std::vector<TraceRecord>& records, std::string& why);

}  // namespace stowra

#endif  // HOST_TRACE_FILE_H_
