// SPDX-License-Identifier: MIT
#include "host/progress_bar.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace stowra {

using ovrant::internet::TransferEvent;

namespace {

constexpr std::chrono::milliseconds kPause(100);
constexpr std::size_t kBarWidth = 20;

std::string FormatBytes(unsigned long bytes) {
  constexpr double kStep = 1000;
  constexpr const char* kUnits[] = {"KB", "MB", "GB", "TB"};
  auto amount = static_cast<double>(bytes);
  if (amount < kStep) return fmt::format("{} bytes", bytes);
  std::size_t unit = 0;
  for (amount /= kStep; amount >= kStep && unit + 1 < std::size(kUnits); ++unit) amount /= kStep;
  return fmt::format("{:.1f} {}", amount, kUnits[unit]);
}

}  // namespace

std::string ProgressText(const TransferEvent& event) {
  const bool is_upload = event.bytes_to_send > 0;
  const unsigned long whole = is_upload ? event.bytes_to_send : event.bytes_expected;
  const unsigned long done = is_upload ? event.bytes_sent : event.bytes_received;
  if (whole == 0) return FormatBytes(done);
  const double part = std::min(static_cast<double>(done) / static_cast<double>(whole), 1.0);
  const std::string bar(static_cast<std::size_t>(part * static_cast<double>(kBarWidth)), '#');
  return fmt::format("[{:<{}}] {:>3}%  {} of {}", bar, kBarWidth, static_cast<int>(part * 100),
                     FormatBytes(done), FormatBytes(whole));
}

ProgressBar::ProgressBar(std::FILE* stream, Clock clock)
    : stream_(stream), clock_(std::move(clock)) {}

ProgressBar::~ProgressBar() { Erase(); }

void ProgressBar::Show(const TransferEvent& event) {
  if (event.kind == TransferEvent::Kind::kEnded) {
    Erase();
  } else if (event.kind == TransferEvent::Kind::kProgress) {
    const auto now = clock_();
    if (width_ > 0 && now - drawn_at_ < kPause) return;
    drawn_at_ = now;
    Draw(ProgressText(event));
  }
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
