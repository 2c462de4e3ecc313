// SPDX-License-Identifier: MIT
#include "fuzz/json/json_model.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "fuzz/json/json_numbers.h"

// The other parser is nlohmann-json, used through its events. It differs from the library so:
// - A NUL ends the text; nlohmann-json rejects it.
// - The root must be an object or an array.
// - These may nest 512 deep.
// - nlohmann-json skips a byte order mark; the library rejects it.
// - Both keep every member of a repeated name, in order.
// - The library stores an escaped lone low surrogate as the three bytes of its would-be UTF-8,
// which
//   read as three times U+FFFD. nlohmann-json rejects it, so it gets the escape for U+FFFF instead.
//   A text that also has a U+FFFF of its own is not judged.
// - The library reads doubles with a few roundings, accepts infinite ones, and rejects some that
//   nlohmann-json accepts: see json_numbers.cc. nlohmann-json rejects infinite ones, so it gets
//   another number instead.

namespace stowra_fuzz {
namespace {

constexpr std::size_t kMaxDepth = 512;
constexpr std::string_view kMarker = "\xEF\xBF\xBF";         // U+FFFF
constexpr std::string_view kLoneSurrogate = "\xED\xB0\x80";  // of whichever of them
constexpr std::string_view kThreeReplacements = "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD";

void ReplaceAll(std::string_view from, std::string_view to, std::string& text) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// A text as nlohmann-json gets it, and what is to be put back.
struct Prepared {
  std::string text;
  std::vector<NumberText> numbers;  // in order
  bool has_lone_surrogates = false;
  bool has_markers = false;
};

// Walks over a text that may not be JSON. The result does not matter in that case.
class Preparer {
 public:
  explicit Preparer(std::string_view text) { prepared_.text = text; }

  Prepared Prepare() {
    while (at_ < prepared_.text.size()) {
      const char c = prepared_.text[at_];
      if (c == '"') {
        DoString();
      } else if (c == '-' || std::isdigit(static_cast<unsigned char>(c)) != 0) {
        DoNumber();
      } else {
        ++at_;
      }
    }
    return std::move(prepared_);
  }

 private:
  void DoString() {
    for (++at_; at_ < prepared_.text.size() && prepared_.text[at_] != '"';) {
      if (prepared_.text.compare(at_, kMarker.size(), kMarker) == 0) prepared_.has_markers = true;
      if (prepared_.text[at_] != '\\') {
        ++at_;
      } else if (prepared_.text.compare(at_, 2, "\\u") == 0) {
        DoEscape();
      } else {
        at_ += 2;
      }
    }
    ++at_;
  }

  // The four digits after \u, in lower case.
  std::string Digits(std::size_t at) const {
    std::string digits = prepared_.text.substr(std::min(at, prepared_.text.size())).substr(0, 4);
    for (char& c : digits) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return digits;
  }

  void DoEscape() {
    const std::string digits = Digits(at_ + 2);
    const auto is = [](const std::string& text, std::string_view second) {
      return text.size() == 4 && text[0] == 'd' && second.find(text[1]) != std::string_view::npos;
    };
    if (digits == "ffff") prepared_.has_markers = true;
    if (is(digits, "89ab")) {
      at_ += 12;  // the second of the pair, too: without one the text is refused
    } else if (is(digits, "cdef") && IsHex(digits)) {
      prepared_.text.replace(at_, 6, "\\uffff");
      prepared_.has_lone_surrogates = true;
      at_ += 6;
    } else {
      at_ += 2;
    }
  }

  static bool IsHex(const std::string& digits) {
    return digits.find_first_not_of("0123456789abcdef") == std::string::npos;
  }

  void DoNumber() {
    const std::size_t end =
        std::min(prepared_.text.find_first_not_of("+-.eE0123456789", at_), prepared_.text.size());
    const std::string spelling = prepared_.text.substr(at_, end - at_);
    prepared_.numbers.push_back(ReadNumber(spelling));
    at_ = end;
    if (!std::isinf(prepared_.numbers.back().nearest)) return;
    // Zeros for the exponent's digits leave it as right or wrong as it was.
    for (std::size_t i = std::min(spelling.find_first_of("eE"), spelling.size());
         i < spelling.size(); ++i) {
      char& c = prepared_.text[end - spelling.size() + i];
      if (std::isdigit(static_cast<unsigned char>(c)) != 0) c = '0';
    }
  }

  Prepared prepared_;
  std::size_t at_ = 0;
};

class TreeBuilder {
 public:
  explicit TreeBuilder(const Prepared& prepared) : prepared_(prepared) {}

  JsonNode TakeRoot() { return std::move(root_); }

  // What nlohmann-json calls.
  bool null() { return Add(JsonNode::Kind::kNull) != nullptr; }
  bool boolean(bool value) {
    return Add(value ? JsonNode::Kind::kTrue : JsonNode::Kind::kFalse) != nullptr;
  }
  bool number_integer(std::int64_t value) {
    ++number_;
    JsonNode* const node = Add(JsonNode::Kind::kInteger);
    if (node == nullptr) return false;
    node->negative = value < 0;
    node->integer = static_cast<std::uint64_t>(value);
    return true;
  }
  bool number_unsigned(std::uint64_t value) {
    ++number_;
    JsonNode* const node = Add(JsonNode::Kind::kInteger);
    if (node == nullptr) return false;
    node->integer = value;
    return true;
  }
  bool number_float(double /*value*/, const std::string& /*spelling*/) {
    const NumberText& number = prepared_.numbers.at(number_++);
    JsonNode* const node = Add(JsonNode::Kind::kDouble);
    if (node == nullptr) return false;
    node->number = number.nearest;
    node->error = number.error;
    return true;
  }
  bool string(std::string& text) {
    JsonNode* const node = Add(JsonNode::Kind::kString);
    if (node == nullptr) return false;
    node->text = Held(text);
    return true;
  }
  bool binary(std::vector<std::uint8_t>& /*bytes*/) { return false; }
  bool key(std::string& name) {
    open_.back()->names.push_back(Held(name));
    return true;
  }
  bool start_object(std::size_t /*count*/) { return Open(JsonNode::Kind::kObject); }
  bool start_array(std::size_t /*count*/) { return Open(JsonNode::Kind::kArray); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  template <typename Error>
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Error& /*error*/) {
    return false;
  }

 private:
  std::string Held(std::string text) const {
    if (prepared_.has_lone_surrogates) ReplaceAll(kMarker, kLoneSurrogate, text);
    return text;
  }

  // Null where it would be a root that is no object or array.
  JsonNode* Add(JsonNode::Kind kind) {
    if (open_.empty()) return nullptr;
    JsonNode& node = open_.back()->children.emplace_back();
    node.kind = kind;
    return &node;
  }

  // A node is complete before its parent grows, so pointers to those that are open stay valid.
  bool Open(JsonNode::Kind kind) {
    if (open_.size() == kMaxDepth) return false;
    JsonNode* const node = open_.empty() ? &root_ : Add(kind);
    node->kind = kind;
    open_.push_back(node);
    return true;
  }
  bool Close() {
    open_.pop_back();
    return true;
  }

  const Prepared& prepared_;
  std::size_t number_ = 0;
  JsonNode root_;
  std::vector<JsonNode*> open_;
};

bool HasVerdict(const Prepared& prepared, NumberText::Verdict verdict) {
  return std::any_of(prepared.numbers.begin(), prepared.numbers.end(),
                     [verdict](const NumberText& number) { return number.verdict == verdict; });
}

int CutToInt(double value) {
  const double whole = std::trunc(value);
  constexpr double kLimit = 2147483648.0;
  return whole >= -kLimit && whole < kLimit ? static_cast<int>(whole) : 0;
}

}  // namespace

JsonNode* JsonNode::Find(std::string_view name) {
  if (kind != Kind::kObject) return nullptr;
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? nullptr
                              : &children[static_cast<std::size_t>(found - names.begin())];
}

const JsonNode* JsonNode::Find(std::string_view name) const {
  return const_cast<JsonNode*>(this)->Find(name);
}

JsonText ReadJson(std::string_view utf8) {
  utf8 = utf8.substr(0, utf8.find('\0'));
  JsonText read;
  if (utf8.substr(0, 3) == "\xEF\xBB\xBF") return read;
  const Prepared prepared = Preparer(utf8).Prepare();
  TreeBuilder builder(prepared);
  if (HasVerdict(prepared, NumberText::Verdict::kRefused) ||
      !nlohmann::json::sax_parse(prepared.text, &builder)) {
    return read;
  }
  const bool unclear = HasVerdict(prepared, NumberText::Verdict::kEither) ||
                       (prepared.has_lone_surrogates && prepared.has_markers);
  read.verdict = unclear ? JsonText::Verdict::kEither : JsonText::Verdict::kTaken;
  read.root = builder.TakeRoot();
  return read;
}

std::string Shown(const std::string& held) {
  std::string shown = held.substr(0, held.find('\0'));
  ReplaceAll(kLoneSurrogate, kThreeReplacements, shown);
  return shown;
}

bool IsNear(double value, const JsonNode& node) {
  if (std::isinf(node.number)) {
    return std::signbit(value) == std::signbit(node.number) &&
           std::abs(value) >= std::numeric_limits<double>::max() - node.error;
  }
  if (node.error == 0 || std::isnan(node.number)) {
    return value == node.number || (std::isnan(value) && std::isnan(node.number));
  }
  if (std::isinf(value)) {
    return std::abs(node.number) >= std::numeric_limits<double>::max() - node.error &&
           std::signbit(value) == std::signbit(node.number);
  }
  return std::abs(value - node.number) <= node.error;
}

void TakeText(const JsonNode& object, std::string_view name, std::string& field) {
  const JsonNode* const member = object.Find(name);
  if (member != nullptr && member->kind == JsonNode::Kind::kString) field = Shown(member->text);
}

void TakeBool(const JsonNode& object, std::string_view name, bool& field) {
  const JsonNode* const member = object.Find(name);
  if (member == nullptr) return;
  if (member->kind == JsonNode::Kind::kTrue) field = true;
  if (member->kind == JsonNode::Kind::kFalse) field = false;
}

void TakeInt(const JsonNode& object, std::string_view name, IntRange& field) {
  const JsonNode* const member = object.Find(name);
  if (member == nullptr || !member->IsNumber()) return;
  if (member->kind == JsonNode::Kind::kInteger) {
    // The lowest 32 bits.
    const auto bits = static_cast<std::uint32_t>(member->integer);
    field.low = field.high = static_cast<int>(bits);
  } else {
    field.low = CutToInt(member->number - member->error);
    field.high = CutToInt(member->number + member->error);
  }
}

}  // namespace stowra_fuzz
