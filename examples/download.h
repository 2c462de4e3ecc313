// SPDX-License-Identifier: MIT
// One download in the background that calls a function at its end.

#ifndef EXAMPLES_DOWNLOAD_H_
#define EXAMPLES_DOWNLOAD_H_

#include <cstring>
#include <functional>
#include <utility>

#include "common_stowraapi/common_stowraapi.h"

// Hands `done` the transport if it has a response with status 200, else null. Deleting a Download
// cancels it, so `done` is not called then. `done` must not delete it.
class Download : public ovrant::IObserver {
 public:
  using Done = std::function<void(const ovrant::internet::InternetData* response)>;

  Download(const ovrant::utils::ovrant_ustring& url, Done done)
      : done_(std::move(done)), transport_(url), delegate_(this, 0, kReturned, 0, kFailed) {
    CNotificationCenter::Default()->AddObserver(kReturned, this);
    CNotificationCenter::Default()->AddObserver(kFailed, this);
    transport_.DownloadWithDelegate(&delegate_, nullptr);
  }
  ~Download() override { CNotificationCenter::Default()->RemoveObserver(this); }

  Download(const Download&) = delete;
  Download& operator=(const Download&) = delete;

  // All downloads share two names. The payload is the context pointer of the delegate, which tells
  // them apart.
  using IObserver::OnNotification;
  void OnNotification(const char* name, void* context) override {
    if (context != this) return;
    const bool is_ok = std::strcmp(name, kReturned) == 0 && transport_.status_code() == 200;
    done_(is_ok ? &transport_ : nullptr);
  }

 private:
  static constexpr char kReturned[] = "ExampleDownloadReturned";
  static constexpr char kFailed[] = "ExampleDownloadFailed";

  const Done done_;
  ovrant::internet::InternetData transport_;
  ovrant::internet::InternetDataDelegate delegate_;
};

#endif  // EXAMPLES_DOWNLOAD_H_
