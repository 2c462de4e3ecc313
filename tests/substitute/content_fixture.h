// Fixture for the tests of the content service.

#ifndef TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_
#define TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/text_operations.h"
#include "tests/substitute/xml_script.h"

namespace ovrant::utils {

// How GoogleTest shows a string.
inline void PrintTo(const ovrant_ustring& text, std::ostream* out) {
  *out << '"' << text.utf8() << '"';
}

}  // namespace ovrant::utils

namespace stowra_substitute {

// The effects since the last call, each on a line of its own, with a line end before the first, as
// a raw string has it.
inline std::string TakeLines() {
  std::string lines = "\n";
  for (const std::string& effect : TakeEffects()) lines += effect + "\n";
  return lines;
}

// An element that only holds others, and one that only holds a text.
inline XmlElement Parent(std::string name, std::vector<XmlElement> children) {
  return {std::move(name), {}, "", std::move(children)};
}
inline XmlElement Leaf(std::string name, std::string text) {
  return {std::move(name), {}, std::move(text), {}};
}

// Bytes in a block of exactly their size: a sanitizer sees a read behind them or after their end.
// The library takes a non-const pointer though it only reads.
class Bytes {
 public:
  explicit Bytes(const std::string& text) : bytes_(text.begin(), text.end()) {}

  unsigned char* data() { return bytes_.data(); }
  unsigned long size() const { return bytes_.size(); }
  int length() const { return static_cast<int>(bytes_.size()); }

 private:
  std::vector<unsigned char> bytes_;
};

// At the end of a test no reader may be left, every scripted document must have been opened, and no
// call may have broken the contract.
class ContentTest : public SubstituteTest {
 protected:
  void TearDown() override {
    SetLeaveResult(true);
    SetFailingOperation("");
    SetAbsentIndex(static_cast<unsigned long>(-1));
    EXPECT_EQ(CountReaders(), 0);
    EXPECT_EQ(CountScriptedDocuments(), 0);
    EXPECT_EQ(TakeReaderMisuses(), 0);
    EXPECT_EQ(TakeTextMisuses(), 0);
    SubstituteTest::TearDown();
  }
};

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_
