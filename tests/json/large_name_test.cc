// Names longer than RapidJSON can count.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>
#include <string_view>

#include "common_stowraapi/json/document.h"
#include "common_stowraapi/json/lookup.h"

namespace stowra_test {
namespace {

// Zeros that take no memory until they are read.
class Zeros {
 public:
  explicit Zeros(std::size_t size)
      : size_(size),
        begin_(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
  }
  ~Zeros() {
    if (exist()) munmap(begin_, size_);
  }

  Zeros(const Zeros&) = delete;
  Zeros& operator=(const Zeros&) = delete;

  bool exist() const { return begin_ != MAP_FAILED; }
  std::string_view text() const { return {static_cast<const char*>(begin_), size_}; }

 private:
  const std::size_t size_;
  void* const begin_;
};

// Cut to 32 bits, its length is that of the empty name.
TEST(LargeNameTest, NoMemberHasANameOf4Gibibytes) {
  ovrant::json::Document document;
  ASSERT_TRUE(document.Load(R"({"":1})"));
  const Zeros name(std::size_t{1} << 32);
  ASSERT_TRUE(name.exist());
  const ovrant::json::Value root = ovrant::json::Lookup::Root(document);
  EXPECT_TRUE(ovrant::json::Lookup::Member(root, name.text()).IsNull());
  EXPECT_EQ(ovrant::json::Lookup::Member(root, "").GetInt(), 1);
}

}  // namespace
}  // namespace stowra_test
