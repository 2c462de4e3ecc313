// SPDX-License-Identifier: MIT
#include "tests/platform/xml/hostile_document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <memory>

#include "tests/platform/xml/document.h"
#include "tests/support/failing_malloc.h"
#include "tests/support/small_stack.h"

namespace stowra_test {
namespace {

// Seconds that any document may take. Small times say little.
constexpr double kFewSeconds = 5;

// How much slower than a harmless document one may be.
constexpr double kMostTimes = 10;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// For the tree, and for the tree and the parser together.
std::size_t TreeLimit(std::size_t length) { return 16 * length + kMebibyte; }
std::size_t PeakLimit(std::size_t length) { return 2 * TreeLimit(length); }

// Seconds that this thread has run.
double ThreadSeconds() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Outcome {
  bool opened = false;
  double seconds = 0;
  std::size_t peak_bytes = 0;
  std::size_t tree_bytes = 0;
  std::size_t leaked_bytes = 0;
};

std::unique_ptr<ovrant::IXMLInput> Open(const std::string& bytes) {
  return std::unique_ptr<ovrant::IXMLInput>(ovrant::Get_IXMLInput(
      reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size())));
}

// What a list of small elements takes to open, for each byte. The time grows with the size.
double HarmlessSecondsPerByte() {
  static const double seconds = [] {
    const std::string bytes = "<list>" + Repeated("<n id='12'>34</n>", 300'000) + "</list>";
    const double start = ThreadSeconds();
    EXPECT_NE(Open(bytes), nullptr);
    return (ThreadSeconds() - start) / static_cast<double>(bytes.size());
  }();
  return seconds;
}

Outcome Try(const std::string& bytes, const std::function<void(ovrant::IXMLInput& reader)>& use) {
  Outcome outcome;
  const double start = ThreadSeconds();
#ifdef STOWRA_COUNTS_MEMORY
  const MemoryWatch watch;
#endif
  std::unique_ptr<ovrant::IXMLInput> reader = Open(bytes);
  outcome.opened = reader != nullptr;
#ifdef STOWRA_COUNTS_MEMORY
  outcome.peak_bytes = watch.peak();
  outcome.tree_bytes = watch.live();
#endif
  if (reader != nullptr && use) use(*reader);
  reader.reset();
#ifdef STOWRA_COUNTS_MEMORY
  if (!use) outcome.leaked_bytes = watch.live();
#endif
  outcome.seconds = ThreadSeconds() - start;
  return outcome;
}

}  // namespace

bool OpenHostile(const std::string& bytes,
                 const std::function<void(ovrant::IXMLInput& reader)>& use) {
  const double harmless_seconds = HarmlessSecondsPerByte() * static_cast<double>(bytes.size());
  Outcome outcome;
  RunOnSmallStack([&] { outcome = Try(bytes, use); });
  EXPECT_LE(outcome.seconds, std::max(kFewSeconds, kMostTimes * harmless_seconds));
  EXPECT_LE(outcome.tree_bytes, TreeLimit(bytes.size()));
  EXPECT_LE(outcome.peak_bytes, PeakLimit(bytes.size()));
  EXPECT_EQ(outcome.leaked_bytes, 0U);
  return outcome.opened;
}

}  // namespace stowra_test
