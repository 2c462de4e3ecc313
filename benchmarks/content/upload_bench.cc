// SPDX-License-Identifier: MIT
// Measures building an upload's body against one write of the same file.

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"

namespace stowra_bench {
namespace {

using ovrant::stowraapiclient::UploadFile;
using ovrant::stowraapiclient::multipartupload::SetupPayload;

constexpr std::int64_t kLargeFile = 256 << 20;
constexpr std::int64_t kSmallerFile = kLargeFile / 10;

const char kBoundary[] = "BrevixClient0385119264730052";

std::size_t SizeOf(std::stringstream& body) {
  return static_cast<std::size_t>(body.seekp(0, std::ios::end).tellp());
}

// Both write to a new stream and return whether it holds the whole file.
bool WriteBody(std::string_view file) {
  UploadFile upload;
  upload.file_path_ = "/home/ann/models/chair.qmf";
  upload.upload_url_ =
      "http://upload.stowra.example/?name=Chair&type=application/vnd.brevix.qmf&task=create";
  std::stringstream body;
  SetupPayload("m42", &upload, reinterpret_cast<const unsigned char*>(file.data()), file.size(),
               kBoundary, &body);
  return body.good() && SizeOf(body) > file.size();
}

bool WriteBare(std::string_view file) {
  std::stringstream body;
  body.write(file.data(), static_cast<std::streamsize>(file.size()));
  return body.good() && SizeOf(body) == file.size();
}

// Runs only `work` in a child process. Returns the child's peak memory in the system's unit, or 0
// on failure.
template <typename Work>
double PeakOf(const Work& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work() ? 0 : 1);
  int status = 0;
  struct rusage usage = {};
  const bool done = child > 0 && wait4(child, &status, 0, &usage) == child;
  return done && status == 0 ? static_cast<double>(usage.ru_maxrss) : 0;
}

// Returns freed memory to the system, as in a process that uploads once. Otherwise only some sizes
// would reuse memory, by chance.
void GiveMemoryBack() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

// The first `size` bytes of one file, which is made once.
std::string_view FileOf(std::int64_t size) {
  static const std::string file = MakeBytes(static_cast<std::size_t>(kLargeFile));
  return std::string_view(file).substr(0, static_cast<std::size_t>(size));
}

template <bool (*kWrite)(std::string_view)>
void Upload(benchmark::State& state) {
  const std::string_view file = FileOf(state.range());
  // In the system's unit, which is 1 KiB on Linux. Does not include the file.
  state.counters["peak"] = PeakOf([&] { return kWrite(file); }) - PeakOf([] { return true; });
  for (auto _ : state) {
    state.PauseTiming();
    GiveMemoryBack();
    state.ResumeTiming();
    if (!kWrite(file)) state.SkipWithError("not written");
  }
  state.SetBytesProcessed(state.iterations() * state.range());
}
BENCHMARK(Upload<WriteBody>)
    ->Name("SetupPayload/stowra")
    ->Arg(kSmallerFile)
    ->Arg(kLargeFile)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Upload<WriteBare>)
    ->Name("SetupPayload/write")
    ->Arg(kSmallerFile)
    ->Arg(kLargeFile)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace stowra_bench
