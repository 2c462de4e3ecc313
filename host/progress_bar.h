// SPDX-License-Identifier: MIT
// Shows the progress of a transfer on a terminal.

#ifndef HOST_PROGRESS_BAR_H_
#define HOST_PROGRESS_BAR_H_

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

// The progress of the request's body if it has one, else of the response's. Without a known total,
// the bytes alone. ASCII, at most 60 characters.
std::string ProgressText(const ovrant::internet::TransferEvent& event);

// One line, redrawn at most ten times a second and erased when the transfer ends. For one thread at
// a time.
class ProgressBar {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  // `stream` should be one that MayRedraw allows, and must outlive the bar.
  explicit ProgressBar(std::FILE* stream, Clock clock = std::chrono::steady_clock::now);
  ~ProgressBar();

  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // Takes the next event of the transfer.
  void Show(const ovrant::internet::TransferEvent& event);

 private:
  void Draw(const std::string& text);
  void Erase();
  void Write(const std::string& text);

  std::FILE* const stream_;
  const Clock clock_;
  std::size_t width_ = 0;  // characters on the line
  std::chrono::steady_clock::time_point drawn_at_;
};

}  // namespace stowra

#endif  // HOST_PROGRESS_BAR_H_
