// SPDX-License-Identifier: MIT
#include "common_stowraapi/request/delivery_check.h"

#ifndef NDEBUG

#include <cstdio>
#include <cstdlib>

namespace ovrant {
namespace {

thread_local const DeliveryCheck* innermost = nullptr;

}  // namespace

DeliveryCheck::DeliveryCheck(const void* object) : object_(object), outer_(innermost) {
  innermost = this;
}

DeliveryCheck::~DeliveryCheck() { innermost = outer_; }

void DeliveryCheck::ExpectOutside(const void* object, const char* what) {
  for (const DeliveryCheck* check = innermost; check != nullptr; check = check->outer_) {
    if (check->object_ != object) continue;
    std::fprintf(stderr, "CommonStowraapi: %s while a notification is being delivered to it\n",
                 what);
    std::abort();
  }
}

}  // namespace ovrant

#endif
