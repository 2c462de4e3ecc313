// SPDX-License-Identifier: MIT
#include "fuzz/json/document_text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/support/check.h"

namespace stowra_fuzz {
namespace {

using Kind = JsonNode::Kind;

// Goes through a written text beside the tree that it should spell.
class TextChecker {
 public:
  explicit TextChecker(std::string_view text) : rest_(text) {}

  void Check(const JsonNode& root) {
    Begin(root);
    while (!open_.empty() && !at_end_) Step();
    FUZZ_CHECK(rest_.empty());
  }

 private:
  struct Level {
    const JsonNode* node;
    std::size_t begun;
  };

  void Take(std::string_view expected) {
    FUZZ_CHECK(rest_.substr(0, expected.size()) == expected);
    rest_.remove_prefix(expected.size());
  }

  void Begin(const JsonNode& node) {
    switch (node.kind) {
      case Kind::kNull:
        return Take("null");
      case Kind::kFalse:
        return Take("false");
      case Kind::kTrue:
        return Take("true");
      case Kind::kString:
        return TakeText(node.text);
      case Kind::kInteger:
        return Take(node.negative ? std::to_string(static_cast<std::int64_t>(node.integer))
                                  : std::to_string(node.integer));
      case Kind::kDouble:
        return TakeDouble(node.number);
      case Kind::kObject:
      case Kind::kArray:
        Take(node.kind == Kind::kObject ? "{" : "[");
        open_.push_back({&node, 0});
    }
  }

  void Step() {
    const Level level = open_.back();
    const bool is_object = level.node->kind == Kind::kObject;
    if (level.begun == level.node->children.size()) {
      Take(is_object ? "}" : "]");
      open_.pop_back();
      return;
    }
    ++open_.back().begun;
    if (level.begun > 0) Take(",");
    if (is_object) {
      TakeText(level.node->names[level.begun]);
      Take(":");
    }
    Begin(level.node->children[level.begun]);
  }

  void TakeText(const std::string& text) {
    std::string spelling = "\"";
    for (const char c : text) {
      const std::string_view plain = "\"\\\b\f\n\r\t";
      const std::string_view letters = "\"\\bfnrt";
      const std::size_t found = plain.find(c);
      if (found != std::string_view::npos) {
        spelling += {'\\', letters[found]};
      } else if (static_cast<unsigned char>(c) < 0x20) {
        spelling += c < 0x10 ? "\\u000" : "\\u001";
        spelling += "0123456789ABCDEF"[c & 15];
      } else {
        spelling += c;
      }
    }
    // NULs are spelled out by now.
    Take(Shown(spelling + '"'));
  }

  // The shortest digits may be spelled in several ways: they have to read back as the same double.
  void TakeDouble(double number) {
    if (!std::isfinite(number)) {
      at_end_ = true;
      return;
    }
    const std::size_t end = std::min(rest_.find_first_not_of("+-.eE0123456789"), rest_.size());
    const std::string spelling(rest_.substr(0, end));
    rest_.remove_prefix(end);
    constexpr std::size_t kLongest = 25;
    FUZZ_CHECK(spelling.size() <= kLongest);
    FUZZ_CHECK(spelling.find_first_of(".e") != std::string::npos);
    const double back = std::strtod(spelling.c_str(), nullptr);
    FUZZ_CHECK(back == number && std::signbit(back) == std::signbit(number));
  }

  std::string_view rest_;
  std::vector<Level> open_;
  bool at_end_ = false;  // behind a number that has no spelling
};

}  // namespace

void CheckText(std::string_view text, const JsonNode& root) { TextChecker(text).Check(root); }

}  // namespace stowra_fuzz
