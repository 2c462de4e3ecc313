// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "host/waterfall_text.h"

namespace stowra {

namespace {

constexpr int kWidth = 1200;
constexpr int kLabelWidth = 520;
constexpr int kRowHeight = 22;
constexpr int kTop = 56;
constexpr int kMargin = 16;
constexpr int kMarks = 5;
constexpr std::size_t kMostLetters = 52;

const char* ColourOf(Phase phase) {
  switch (phase) {
    case Phase::kQueued:
      return "#b8bcc4";
    case Phase::kName:
      return "#2a9d8f";
    case Phase::kConnect:
      return "#e9a23b";
    case Phase::kTls:
      return "#9b5fc0";
    case Phase::kWait:
      return "#7cb342";
    case Phase::kReceive:
      break;
  }
  return "#2f7ed8";
}

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    escaped += c == '&'   ? "&amp;"
               : c == '<' ? "&lt;"
               : c == '>' ? "&gt;"
               : c == '"' ? "&quot;"
                          : std::string(1, c);
  }
  return escaped;
}

std::string Text(double x, int y, const std::string& attributes, const std::string& text) {
  return fmt::format("<text x=\"{:.1f}\" y=\"{}\"{}>{}</text>\n", x, y, attributes, Escaped(text));
}

// Seconds to the right of the labels.
class Scale {
 public:
  explicit Scale(const std::vector<RequestRow>& rows) {
    if (!rows.empty()) begin_ = end_ = rows.front().begin;
    for (const RequestRow& row : rows) {
      begin_ = std::min(begin_, row.begin);
      end_ = std::max(end_, row.end);
    }
    end_ = std::max(end_, begin_ + 1e-6);
  }

  double length() const { return end_ - begin_; }
  double X(double seconds) const {
    return kLabelWidth + (seconds - begin_) / length() * (kWidth - kLabelWidth - kMargin);
  }
  double AtMark(int mark) const { return begin_ + length() * mark / kMarks; }

 private:
  double begin_ = 0;
  double end_ = 0;
};

std::string Legend() {
  std::string svg;
  int x = kMargin;
  for (const Phase phase : kPhases) {
    svg += fmt::format("<rect x=\"{}\" y=\"12\" width=\"12\" height=\"12\" fill=\"{}\"/>\n", x,
                       ColourOf(phase));
    svg += Text(x + 18, 22, "", NameOf(phase));
    x += 90;
  }
  return svg;
}

std::string Marks(const Scale& scale, int bottom) {
  std::string svg;
  for (int mark = 0; mark <= kMarks; ++mark) {
    const double at = scale.AtMark(mark);
    const double x = scale.X(at);
    svg += fmt::format(
        "<line x1=\"{0:.1f}\" y1=\"{1}\" x2=\"{0:.1f}\" y2=\"{2}\" stroke=\"#dddddd\"/>\n", x,
        kTop - 8, bottom);
    const char* anchor = mark == 0 ? "start" : mark == kMarks ? "end" : "middle";
    svg += Text(x, kTop - 12, fmt::format(R"( text-anchor="{}" fill="#666666")", anchor),
                FormatSeconds(at - scale.AtMark(0)));
  }
  return svg;
}

std::string Row(const RequestRow& row, const Scale& scale, int y) {
  const std::string whole = fmt::format("{} {} {}", row.transfer, row.method, row.url);
  const std::string label =
      whole.size() > kMostLetters ? whole.substr(0, kMostLetters - 3) + "..." : whole;
  const int base = y + kRowHeight - 7;
  std::string svg = fmt::format("<g><title>{}{}</title>\n", Escaped(whole),
                                row.is_reused ? " (kept connection)" : "");
  svg += Text(kMargin, base, row.has_failed ? " fill=\"#c62828\"" : "", label);
  svg += Text(kLabelWidth - 80, base,
              fmt::format(" text-anchor=\"end\"{}", row.has_failed ? " fill=\"#c62828\"" : ""),
              row.result);
  svg += Text(kLabelWidth - 12, base, " text-anchor=\"end\"", FormatSeconds(row.end - row.begin));
  for (const PhaseBar& bar : row.bars) {
    svg += fmt::format(
        "<rect x=\"{:.2f}\" y=\"{}\" width=\"{:.2f}\" height=\"{}\" fill=\"{}\">"
        "<title>{} {}</title></rect>\n",
        scale.X(bar.begin), y + 3, std::max(scale.X(bar.end) - scale.X(bar.begin), 0.5),
        kRowHeight - 6, ColourOf(bar.phase), NameOf(bar.phase), FormatSeconds(bar.end - bar.begin));
  }
  return svg + "</g>\n";
}

}  // namespace

std::string ToSvg(const std::vector<RequestRow>& rows) {
  const Scale scale(rows);
  const int bottom = kTop + static_cast<int>(rows.size()) * kRowHeight;
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
      "viewBox=\"0 0 {0} {1}\" font-family=\"monospace\" font-size=\"12\">\n"
      "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n",
      kWidth, bottom + kMargin);
  svg += Legend() + Marks(scale, bottom);
  int y = kTop;
  for (const RequestRow& row : rows) {
    svg += Row(row, scale, y);
    y += kRowHeight;
  }
  return svg + "</svg>\n";
}

}  // namespace stowra
