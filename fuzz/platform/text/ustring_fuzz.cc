// SPDX-License-Identifier: MIT
// Does the same operations on a few texts and on a model of code units. Each step of the input is a
// byte for the operation, one for the texts, and what the operation takes. At the end each text is
// read back.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common_stowraapi/platform/ustring.h"
#include "fuzz/platform/text/format.h"
#include "fuzz/platform/text/model.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

namespace {

using ovrant::utils::GetFileName;
using ovrant::utils::ovrant_ustring;
using stowra_fuzz::Input;

// Units. A text that grows beyond it begins again with nothing.
constexpr std::size_t kLongest = 700;

// The rest of the input is ignored.
constexpr int kMostSteps = 150;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

int Sign(int number) { return number < 0 ? -1 : number > 0 ? 1 : 0; }

bool Equal(const ovrant_ustring& text, std::u16string_view units) {
  if (text.length() != units.size() || text.empty() != units.empty()) return false;
  if (text.units() != units) return false;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (text.at(i) != units[i]) return false;
  }
  return true;
}

struct Text {
  ovrant_ustring text;
  std::u16string units;

  void Check() const { FUZZ_CHECK(Equal(text, units)); }
};

class Machine {
 public:
  explicit Machine(Input input) : input_(input) {}

  void Run() {
    for (int i = 0; i < kMostSteps && !input_.empty(); ++i) Step();
    for (const Text& each : texts_) {
      each.Check();
      const std::string bytes = each.text.utf8();
      FUZZ_CHECK(bytes == stowra_fuzz::EncodeUtf8(each.units));
      const ovrant_ustring again(bytes.data(), bytes.size());
      FUZZ_CHECK(Equal(again, stowra_fuzz::DecodeUtf8(bytes)));
    }
  }

 private:
  static constexpr std::size_t kTexts = 4;
  static constexpr std::size_t kOperations = 22;

  void Step() {
    const std::size_t operation = input_.Below(kOperations);
    const unsigned int chosen = input_.Byte();
    Text& a = texts_[chosen % kTexts];
    Text& b = texts_[chosen / kTexts % kTexts];
    Text& c = texts_[chosen / kTexts / kTexts % kTexts];
    Do(operation, a, b, c);
    a.Check();
    if (a.units.size() > kLongest) {
      a.text.clear();
      a.units.clear();
    }
  }

  void Do(std::size_t operation, Text& a, Text& b, Text& c) {
    switch (operation) {
      case 0:
        return FromBytes(a);
      case 1:
        return FromTerminated(a);
      case 2:
        return FromWide(a);
      case 3:
        return Copy(a, b);
      case 4:
        return Move(a, b);
      case 5:
        a.text.clear();
        a.units.clear();
        return;
      case 6:
        a.text += b.text;
        a.units += std::u16string(b.units);
        return;
      case 7:
        return Append(a, b);
      case 8:
        return SetUnit(a);
      case 9:
        return Find(a, b);
      case 10:
        return Cut(a, b);
      case 11:
        return CutMiddle(a, b);
      case 12:
        return Compare(b, c);
      case 13:
        return CompareFolded(b, c);
      case 14:
        FUZZ_CHECK(b.text.to_int() == stowra_fuzz::ToInt(b.units));
        FUZZ_CHECK(b.text.to_float() == stowra_fuzz::ToFloat(b.units));
        return;
      case 15:
        a.units = stowra_fuzz::Replaced(a.units, b.units, c.units);
        a.text.replace_all(b.text, c.text);
        return;
      case 16:
        return Tokenize(b, c);
      case 17:
        return stowra_fuzz::FormatNumber(input_, a.text, a.units);
      case 18:
        return stowra_fuzz::FormatText(input_, b.text, b.units, a.text, a.units);
      case 19:
        return stowra_fuzz::FormatAnything(input_, b.text, a.text, a.units);
      case 20:
        return NameFile(a, b);
      default:
        return Null(a);
    }
  }

  std::string_view Bytes() { return input_.Bytes(input_.Byte()); }

  void FromBytes(Text& a) {
    const std::string_view bytes = Bytes();
    a.text = ovrant_ustring(bytes.data(), bytes.size());
    a.units = stowra_fuzz::DecodeUtf8(bytes);
    FUZZ_CHECK(ovrant_ustring(bytes) == a.text);
    FUZZ_CHECK(ovrant_ustring(a.units) == a.text);
  }

  void FromTerminated(Text& a) {
    const std::string bytes(Bytes());
    const std::size_t how = input_.Below(3);
    if (how == 0) a.text = ovrant_ustring(bytes.c_str());
    if (how == 1) a.text = bytes.c_str();
    if (how == 2) FUZZ_CHECK(&a.text.assign_utf8(bytes.c_str()) == &a.text);
    a.units = stowra_fuzz::DecodeUtf8(bytes.c_str());
  }

  // One to four bytes a character: most are to be characters.
  void FromWide(Text& a) {
    std::vector<std::uint32_t> codes;
    std::vector<wchar_t> wide;
    for (std::size_t count = input_.Below(64); count > 0; --count) {
      std::uint32_t code = 0;
      for (std::size_t size = 1 + input_.Below(4); size > 0; --size) {
        code = code << 8 | input_.Byte();
      }
      if (code == 0) break;
      codes.push_back(code);
      wide.push_back(static_cast<wchar_t>(code));
    }
    wide.push_back(0);
    a.text = ovrant_ustring(wide.data());
    a.units = stowra_fuzz::DecodeUtf32(codes);
  }

  static void Copy(Text& a, Text& b) {
    ovrant_ustring copy(b.text);
    a.text = copy;
    copy += "x";
    a.units = std::u16string(b.units);
  }

  // A moved-from text may hold anything, so it is emptied.
  static void Move(Text& a, Text& b) {
    ovrant_ustring moved(std::move(b.text));
    b.text = ovrant_ustring();
    a.units = std::exchange(b.units, std::u16string());
    a.text = std::move(moved);
  }

  void Append(Text& a, const Text& b) {
    const std::string bytes(Bytes());
    a.units = b.units + stowra_fuzz::DecodeUtf8(bytes.c_str());
    a.text = b.text + bytes.c_str();
  }

  void SetUnit(Text& a) {
    const std::uint16_t number = input_.Word();
    const std::uint16_t unit = input_.Word();
    if (a.units.empty()) return;
    const std::size_t index = number % a.units.size();
    FUZZ_CHECK(a.text[index] == a.units[index]);
    a.text[index] = unit;
    a.units[index] = unit;
  }

  void Find(const Text& whole, const Text& part) {
    unsigned long start = input_.Byte();
    if (start > 250) start = ovrant_ustring::npos - (start - 251);
    const std::size_t found = std::u16string_view(whole.units).find(part.units, start);
    FUZZ_CHECK(whole.text.find(part.text, start) ==
               (found == std::u16string::npos ? ovrant_ustring::npos : found));
  }

  int Count() {
    const int byte = input_.Byte();
    switch (byte) {
      case 255:
        return kMost;
      case 254:
        return kLeast;
      case 253:
        return -1;
      case 252:
        return kMost - 1;
      default:
        return byte;
    }
  }

  void Cut(Text& a, const Text& b) {
    const int count = Count();
    const std::size_t size = b.units.size();
    const std::size_t kept = count < 0 ? 0
                             : static_cast<std::size_t>(count) < size
                                 ? static_cast<std::size_t>(count)
                                 : size;
    FUZZ_CHECK(Equal(b.text.Left(count), b.units.substr(0, kept)));
    a.text = b.text.Right(count);
    a.units = std::u16string(b.units.substr(size - kept));
  }

  void CutMiddle(Text& a, const Text& b) {
    const int start = Count();
    const int count = Count();
    std::u16string expected;
    for (long long i = start; i < static_cast<long long>(start) + count; ++i) {
      if (start < 0 || i >= static_cast<long long>(b.units.size())) break;
      expected += b.units[static_cast<std::size_t>(i)];
    }
    a.text = b.text.Mid(start, count);
    a.units = expected;
  }

  static void Compare(const Text& b, const Text& c) {
    const int expected = stowra_fuzz::CompareUnits(b.units, c.units);
    FUZZ_CHECK(Sign(b.text.compare(c.text)) == expected);
    FUZZ_CHECK((b.text == c.text) == (expected == 0));
    FUZZ_CHECK((b.text != c.text) == (expected != 0));
    FUZZ_CHECK((b.text < c.text) == (expected < 0));
  }

  static void CompareFolded(const Text& b, const Text& c) {
    const int result = Sign(b.text.compare_nocase(c.text));
    FUZZ_CHECK(Sign(c.text.compare_nocase(b.text)) == -result);
    FUZZ_CHECK(b.text.compare_nocase(b.text) == 0);
    if (b.units == c.units) FUZZ_CHECK(result == 0);
    const auto folded_b = stowra_fuzz::Folded(b.units);
    const auto folded_c = stowra_fuzz::Folded(c.units);
    if (!folded_b || !folded_c) return;
    FUZZ_CHECK(result == stowra_fuzz::CompareUnits(*folded_b, *folded_c));
  }

  static void Tokenize(const Text& b, const Text& c) {
    const std::vector<ovrant_ustring> tokens = b.text.TokenizeToVector(c.text);
    const std::vector<std::u16string> expected = stowra_fuzz::Split(b.units, c.units);
    FUZZ_CHECK(tokens.size() == expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) FUZZ_CHECK(Equal(tokens[i], expected[i]));
  }

  void NameFile(Text& a, const Text& b) {
    const bool with_extension = input_.Below(2) != 0;
    a.units = stowra_fuzz::FileName(b.units, with_extension);
    a.text = GetFileName(b.text, with_extension);
  }

  static void Null(Text& a) {
    const char* const bytes = nullptr;
    const wchar_t* const wide = nullptr;
    FUZZ_CHECK(ovrant_ustring(bytes).empty());
    FUZZ_CHECK(ovrant_ustring(bytes, 0).empty());
    FUZZ_CHECK(ovrant_ustring(wide).empty());
    a.text = bytes;
    a.units.clear();
  }

  Input input_;
  Text texts_[kTexts];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Machine(Input(data, size)).Run();
  return 0;
}
