#include "tests/platform/xml/hostile_document.h"

#include <gtest/gtest.h>

#include <ctime>
#include <memory>

#include "tests/support/failing_malloc.h"
#include "tests/support/small_stack.h"

namespace stowra_test {
namespace {

// Of the processor, whatever else it does: a document that costs more than its size takes minutes
// or for ever.
constexpr double kHangSeconds = 20;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// The tree's share, and what the parser needs for itself while it reads.
std::size_t TreeLimit(std::size_t length) { return 16 * length + kMebibyte; }
std::size_t ParserLimit(std::size_t length) { return 16 * length + kMebibyte; }

// Seconds that this thread has run.
double ThreadSeconds() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void Record(const std::string& name, double value) {
  testing::Test::RecordProperty(name, std::to_string(value));
}

struct Outcome {
  bool opened = false;
  double opening_seconds = 0;
  double all_seconds = 0;
  std::size_t peak_bytes = 0;
  std::size_t tree_bytes = 0;
  std::size_t leaked_bytes = 0;
};

Outcome Try(const std::string& bytes, const std::function<void(ovrant::IXMLInput& reader)>& use) {
  Outcome outcome;
  const double start = ThreadSeconds();
#ifdef STOWRA_COUNTS_MEMORY
  const MemoryWatch watch;
#endif
  std::unique_ptr<ovrant::IXMLInput> reader(ovrant::Get_IXMLInput(
      reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size())));
  outcome.opened = reader != nullptr;
  outcome.opening_seconds = ThreadSeconds() - start;
#ifdef STOWRA_COUNTS_MEMORY
  outcome.peak_bytes = watch.peak();
  outcome.tree_bytes = watch.live();
#endif
  if (reader != nullptr && use) use(*reader);
  reader.reset();
#ifdef STOWRA_COUNTS_MEMORY
  if (!use) outcome.leaked_bytes = watch.live();
#endif
  outcome.all_seconds = ThreadSeconds() - start;
  return outcome;
}

}  // namespace

bool OpenHostile(const std::string& bytes,
                 const std::function<void(ovrant::IXMLInput& reader)>& use) {
  Outcome outcome;
  RunOnSmallStack([&] { outcome = Try(bytes, use); });
  EXPECT_LT(outcome.all_seconds, kHangSeconds);
  EXPECT_LE(outcome.tree_bytes, TreeLimit(bytes.size()));
  EXPECT_LE(outcome.peak_bytes, TreeLimit(bytes.size()) + ParserLimit(bytes.size()));
  EXPECT_EQ(outcome.leaked_bytes, 0U);
  Record("opened", outcome.opened ? 1 : 0);
  Record("length", static_cast<double>(bytes.size()));
  Record("opening_seconds", outcome.opening_seconds);
  Record("all_seconds", outcome.all_seconds);
  Record("peak_bytes", static_cast<double>(outcome.peak_bytes));
  Record("tree_bytes", static_cast<double>(outcome.tree_bytes));
  return outcome.opened;
}

std::string WithDeclarations(const std::string& declarations, const std::string& content) {
  return "<!DOCTYPE a [" + declarations + "]>" + content;
}

}  // namespace stowra_test
