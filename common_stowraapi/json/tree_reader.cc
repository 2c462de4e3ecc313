// SPDX-License-Identifier: MIT
#include "common_stowraapi/json/tree_reader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "common_stowraapi/json/string_scan.h"

namespace ovrant::json {
namespace {

using Reader = rapidjson::GenericReader<Encoding, Encoding, ThrowingAllocator>;

// Selects RapidJSON's own functions in the specialisations below. They ignore the flag.
constexpr unsigned int kParseAsUsual = rapidjson::kParseStopWhenDoneFlag;

constexpr std::size_t kMaxSize = std::numeric_limits<std::uint32_t>::max();
constexpr std::ptrdiff_t kMaxFractionZeros = 99'999'999;
constexpr std::ptrdiff_t kMaxExponentDigits = 9;

// Passes the parser's events to the document, which builds the tree. Stops the parser at the depth
// limit.
class TreeBuilder {
 public:
  TreeBuilder(ParsedText& tree, unsigned int max_depth) : tree_(tree), levels_left_(max_depth) {}

  bool StartObject() { return Enter() && tree_.StartObject(); }
  bool EndObject(SizeType count) { return Leave() && tree_.EndObject(count); }
  bool StartArray() { return Enter() && tree_.StartArray(); }
  bool EndArray(SizeType count) { return Leave() && tree_.EndArray(count); }

  bool Key(const char* text, SizeType size, bool copy) { return tree_.Key(text, size, copy); }
  bool String(const char* text, SizeType size, bool copy) { return tree_.String(text, size, copy); }
  bool RawNumber(const char* text, SizeType size, bool copy) {
    return tree_.RawNumber(text, size, copy);
  }
  bool Null() { return tree_.Null(); }
  bool Bool(bool value) { return tree_.Bool(value); }
  bool Int(int value) { return tree_.Int(value); }
  bool Uint(unsigned int value) { return tree_.Uint(value); }
  bool Int64(std::int64_t value) { return tree_.Int64(value); }
  bool Uint64(std::uint64_t value) { return tree_.Uint64(value); }
  bool Double(double value) { return tree_.Double(value); }

 private:
  bool Enter() {
    if (levels_left_ == 0) return false;
    --levels_left_;
    return true;
  }
  bool Leave() {
    ++levels_left_;
    return true;
  }

  ParsedText& tree_;
  unsigned int levels_left_;
};

char* SkipZeros(char* at) {
  while (*at == '0') ++at;
  return at;
}

char* SkipDigits(char* at) {
  while (*at >= '0' && *at <= '9') ++at;
  return at;
}

// The parser adds up digits and exponents in int, and the sums overflow for some numbers. Returns
// false for too many zeros after the decimal point. Raises an exponent below -999999999 to that:
// the number is 0 either way.
bool MakeNumberSafe(char* number) {
  char* at = SkipDigits(*number == '-' ? number + 1 : number);
  if (*at == '.') {
    char* const behind_zeros = SkipZeros(at + 1);
    if (behind_zeros - (at + 1) > kMaxFractionZeros) return false;
    at = SkipDigits(behind_zeros);
  }
  if ((*at != 'e' && *at != 'E') || at[1] != '-') return true;
  char* const exponent = SkipZeros(at + 2);
  char* const end = SkipDigits(exponent);
  if (end - exponent > kMaxExponentDigits) {
    std::fill(exponent, end - kMaxExponentDigits, '0');
    std::fill(end - kMaxExponentDigits, end, '9');
  }
  return true;
}

}  // namespace
}  // namespace ovrant::json

// Scans a string without escapes in long steps and copies it once. Leaves others to RapidJSON.
template <>
template <>
void ovrant::json::Reader::ParseString<rapidjson::kParseNoFlags>(ovrant::json::Input& is,
                                                                 ovrant::json::TreeBuilder& handler,
                                                                 bool isKey) {
  const char* const begin = is.src_ + 1;
  const char* const end = ovrant::json::FindEscape(begin);
  if (*end != '"') {
    ParseString<ovrant::json::kParseAsUsual>(is, handler, isKey);
    return;
  }
  const auto size = static_cast<ovrant::json::SizeType>(end - begin);
  const bool goes_on = isKey ? handler.Key(begin, size, true) : handler.String(begin, size, true);
  is.src_ = end + 1;
  if (!goes_on) SetParseError(rapidjson::kParseErrorTermination, is.Tell());
}

// MakeNumberSafe may write into the text, since ReadTree owns it.
template <>
template <>
void ovrant::json::Reader::ParseNumber<rapidjson::kParseNoFlags>(
    ovrant::json::Input& is, ovrant::json::TreeBuilder& handler) {
  if (ovrant::json::MakeNumberSafe(const_cast<char*>(is.src_))) {
    ParseNumber<ovrant::json::kParseAsUsual>(is, handler);
  } else {
    SetParseError(rapidjson::kParseErrorNumberTooBig, is.Tell());
  }
}

namespace ovrant::json {

bool ReadTree(std::string text, unsigned int max_depth, ParsedText& tree) {
  if (text.size() > kMaxSize && std::strlen(text.c_str()) > kMaxSize) return false;
  const char first = text.c_str()[std::strspn(text.c_str(), " \t\n\r")];
  if (first != '{' && first != '[') return false;
  text.append(kScanStep, '\0');

  ThrowingAllocator allocator;
  Reader reader(&allocator);
  Input input(text.data());
  TreeBuilder builder(tree, max_depth);
  const auto parse = [&](ParsedText& /*tree*/) {
    return !reader.Parse<rapidjson::kParseNoFlags>(input, builder).IsError();
  };
  tree.Populate(parse);
  return !reader.HasParseError();
}

}  // namespace ovrant::json
