// SPDX-License-Identifier: MIT
// A download that fills much of the memory.

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>

#include "benchmarks/platform/http/bare_curl.h"
#include "benchmarks/platform/http/transfer_files.h"
#include "common_stowraapi/platform/internet_data.h"

namespace stowra_bench {
namespace {

using ovrant::internet::InternetData;
using ovrant::utils::ovrant_ustring;

// Allows bodies of that size while it lives.
class BodyCap {
 public:
  explicit BodyCap(std::size_t size) {
    ovrant::internet::TransferDefaults defaults;
    defaults.body_cap = size;
    InternetData::SetDefaults(defaults);
  }
  ~BodyCap() { InternetData::SetDefaults({}); }

  BodyCap(const BodyCap&) = delete;
  BodyCap& operator=(const BodyCap&) = delete;
};

// Each side makes one download before the clock starts. A virtual machine may have to get unused
// memory from its host, which takes seconds.

void Stowra(benchmark::State& state) {
  const BodyCap cap(kHugeBody);
  const ovrant_ustring url(UrlOfFile(kHugeBody).c_str());
  const auto download = [&] {
    InternetData transport(url);
    return transport.Download() && transport.received_data_length() == kHugeBody;
  };
  bool good = download();
  for (auto _ : state) good = download() && good;
  if (!good) state.SkipWithError("a download failed");
}

void Libcurl(benchmark::State& state) {
  BareEasy easy(UrlOfFile(kHugeBody));
  const auto download = [&] {
    std::string body;
    body.reserve(kHugeBody);
    return easy.Download(body) && body.size() == kHugeBody;
  };
  bool good = download();
  for (auto _ : state) good = download() && good;
  if (!good) state.SkipWithError("a download failed");
}

// The peak memory of a process that makes one download and nothing else, or 0 when it fails. The
// process is a fork. After vfork it would share this process's memory for a moment and be charged
// for its peak.
std::size_t PeakOfChild(const std::string& url, std::size_t length) {
  const std::string size = std::to_string(length);
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(STOWRA_TRANSFER_MEMORY_CHILD, STOWRA_TRANSFER_MEMORY_CHILD, url.c_str(), size.c_str(),
            static_cast<char*>(nullptr));
    ::_exit(EXIT_FAILURE);
  }
  int status = -1;
  rusage usage = {};
  while (::wait4(child, &status, 0, &usage) < 0) {
    if (errno != EINTR) return 0;
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS) return 0;
#if defined(__APPLE__)
  return static_cast<std::size_t>(usage.ru_maxrss);
#else
  return static_cast<std::size_t>(usage.ru_maxrss) << 10;
#endif
}

void Memory(benchmark::State& state) {
  const std::string url = UrlOfFile(kHugeBody);
  std::size_t peak = 0;
  for (auto _ : state) peak = PeakOfChild(url, kHugeBody);
  if (peak < kHugeBody) state.SkipWithError("the download failed");
  state.counters["peak_beyond_body_mib"] =
      (static_cast<double>(peak) - static_cast<double>(kHugeBody)) / (1 << 20);
}

void SetUp(const char* name, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, function)
      ->Unit(benchmark::kMillisecond)
      ->Iterations(1)
      ->UseRealTime();
}

[[maybe_unused]] const bool kRegistered = [] {
  SetUp("DownloadHuge/stowra/1073741824", Stowra);
  SetUp("DownloadHuge/libcurl/1073741824", Libcurl);
  SetUp("DownloadMemory/stowra/1073741824", Memory);
  return true;
}();

}  // namespace
}  // namespace stowra_bench
