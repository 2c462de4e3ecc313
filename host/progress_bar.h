// SPDX-License-Identifier: MIT
// Shows the progress of a transfer on a terminal.

#ifndef HOST_PROGRESS_BAR_H_
#define HOST_PROGRESS_BAR_H_

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "common_stowraapi/platform/transfer_types.h"

namespace stowra {

// The progress of the request's body if it has one, else of the response's. Without a known total,
// the bytes alone. With `rate`, in bytes a second and above 0, adds it and the time that is left.
// ASCII, at most 79 characters below 1000 TB.
std::string ProgressText(const ovrant::internet::TransferEvent& event, double rate = 0);

// One line, redrawn at most ten times a second and erased when the transfer ends. Shows the rate of
// the last five to ten seconds, from the first second on. For one thread at a time.
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
  using Moment = std::chrono::steady_clock::time_point;

  // How many bytes there were, and when.
  struct Mark {
    Moment time;
    unsigned long bytes = 0;
  };

  double Rate(const ovrant::internet::TransferEvent& event, Moment now);
  void Draw(const std::string& text);
  void Erase();
  void Write(const std::string& text);

  std::FILE* const stream_;
  const Clock clock_;
  std::size_t width_ = 0;  // characters on the line
  Moment drawn_at_;
  std::optional<Mark> older_mark_;  // none before the first bytes of a transfer
  Mark newer_mark_;
};

}  // namespace stowra

#endif  // HOST_PROGRESS_BAR_H_
