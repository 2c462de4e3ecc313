// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/internet_data_delegate.h"

#include "common_stowraapi/platform/http/background_worker.h"
#include "common_stowraapi/platform/notify/delivery_gate.h"

namespace ovrant::internet {

InternetDataDelegate::InternetDataDelegate(void* context, unsigned int returned_message,
                                           const char* returned_notification,
                                           unsigned int failed_message,
                                           const char* failed_notification)
    : context_(context),
      returned_message_(returned_message),
      returned_notification_(returned_notification),
      failed_message_(failed_message),
      failed_notification_(failed_notification),
      gate_(std::make_shared<DeliveryGate>()) {}

InternetDataDelegate::~InternetDataDelegate() {
  gate_->Close();
  BackgroundWorker::NoteAbandoned();
}

}  // namespace ovrant::internet
