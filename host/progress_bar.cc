// SPDX-License-Identifier: MIT
#include "host/progress_bar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace stowra {

using ovrant::internet::TransferEvent;

namespace {

constexpr std::chrono::milliseconds kPause(100);
constexpr std::chrono::seconds kRateFrom(1);
constexpr std::chrono::seconds kRateSpan(5);
constexpr std::size_t kBarWidth = 20;

std::string FormatBytes(double amount) {
  constexpr double kStep = 1000;
  constexpr const char* kUnits[] = {"KB", "MB", "GB", "TB"};
  if (amount < kStep) return fmt::format("{:.0f} bytes", amount);
  std::size_t unit = 0;
  for (amount /= kStep; amount >= kStep && unit + 1 < std::size(kUnits); ++unit) amount /= kStep;
  return fmt::format("{:.1f} {}", amount, kUnits[unit]);
}

bool IsUpload(const TransferEvent& event) { return event.bytes_to_send > 0; }

unsigned long BytesDone(const TransferEvent& event) {
  return IsUpload(event) ? event.bytes_sent : event.bytes_received;
}

// "0:07" or "1:02:03". Nobody waits for more than 99 hours.
std::string FormatTime(double seconds) {
  const auto whole = static_cast<long>(std::min(std::ceil(seconds), 99.0 * 3600));
  if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
  return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string FormatRate(double rate, double left) {
  if (rate <= 0) return {};
  const std::string text = fmt::format("  {}/s", FormatBytes(rate));
  return left > 0 ? fmt::format("{}  {} left", text, FormatTime(left / rate)) : text;
}

}  // namespace

std::string ProgressText(const TransferEvent& event, double rate) {
  const auto whole =
      static_cast<double>(IsUpload(event) ? event.bytes_to_send : event.bytes_expected);
  const auto done = static_cast<double>(BytesDone(event));
  if (whole == 0) return FormatBytes(done) + FormatRate(rate, 0);
  const double part = std::min(done / whole, 1.0);
  const std::string bar(static_cast<std::size_t>(part * static_cast<double>(kBarWidth)), '#');
  return fmt::format("[{:<{}}] {:>3}%  {} of {}{}", bar, kBarWidth, static_cast<int>(part * 100),
                     FormatBytes(done), FormatBytes(whole), FormatRate(rate, whole - done));
}

ProgressBar::ProgressBar(std::FILE* stream, Clock clock)
    : stream_(stream), clock_(std::move(clock)) {}

ProgressBar::~ProgressBar() { Erase(); }

void ProgressBar::Show(const TransferEvent& event) {
  if (event.kind == TransferEvent::Kind::kEnded) {
    Erase();
    older_mark_.reset();
  } else if (event.kind == TransferEvent::Kind::kProgress) {
    const auto now = clock_();
    if (width_ > 0 && now - drawn_at_ < kPause) return;
    drawn_at_ = now;
    Draw(ProgressText(event, Rate(event, now)));
  }
}

// Measured from a mark that is one to two spans old. A redirect begins with fewer bytes again.
double ProgressBar::Rate(const TransferEvent& event, Moment now) {
  const Mark mark = {now, BytesDone(event)};
  if (!older_mark_ || mark.bytes < newer_mark_.bytes) older_mark_ = newer_mark_ = mark;
  if (now - newer_mark_.time >= kRateSpan) {
    older_mark_ = newer_mark_;
    newer_mark_ = mark;
  }
  const std::chrono::duration<double> span = now - older_mark_->time;
  if (span < kRateFrom) return 0;
  return static_cast<double>(mark.bytes - older_mark_->bytes) / span.count();
}

void ProgressBar::Draw(const std::string& text) {
  Write(fmt::format("\r{:<{}}", text, width_));
  width_ = text.size();
}

void ProgressBar::Erase() {
  if (width_ == 0) return;
  Draw("");
  Write("\r");
}

// Ignores errors: the transfer goes on without its terminal.
void ProgressBar::Write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stream_);
  std::fflush(stream_);
}

}  // namespace stowra
