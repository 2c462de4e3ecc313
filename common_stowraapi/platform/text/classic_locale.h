// SPDX-License-Identifier: MIT
// The C library's numbers without the host's locale.

#ifndef COMMON_STOWRAAPI_PLATFORM_TEXT_CLASSIC_LOCALE_H_
#define COMMON_STOWRAAPI_PLATFORM_TEXT_CLASSIC_LOCALE_H_

#include <locale.h>  // NOLINT(modernize-deprecated-headers): for newlocale
#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include <new>

namespace ovrant::utils {

// While it lives, this thread is in the "C" locale: "." is the decimal point. Other threads keep
// theirs.
class ClassicLocale {
 public:
  ClassicLocale() : classic_(newlocale(LC_ALL_MASK, "C", nullptr)) {
    if (classic_ == nullptr) throw std::bad_alloc();
    previous_ = uselocale(classic_);
  }
  ~ClassicLocale() {
    uselocale(previous_);
    freelocale(classic_);
  }

  ClassicLocale(const ClassicLocale&) = delete;
  ClassicLocale& operator=(const ClassicLocale&) = delete;

 private:
  locale_t classic_;
  locale_t previous_;
};

}  // namespace ovrant::utils

#endif  // COMMON_STOWRAAPI_PLATFORM_TEXT_CLASSIC_LOCALE_H_
