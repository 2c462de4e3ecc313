// SPDX-License-Identifier: MIT
// Fixture for the tests on the substitute platform.

#ifndef TESTS_SUBSTITUTE_FIXTURE_H_
#define TESTS_SUBSTITUTE_FIXTURE_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "common_stowraapi/platform/notification_center.h"
#include "common_stowraapi/platform/observer.h"
#include "tests/substitute/effects.h"
#include "tests/substitute/transport.h"

namespace stowra_substitute {

// Starts without effects. After a test and its fixture no object may be left, and every scripted
// transfer must have happened.
class SubstituteTest : public testing::Test {
 protected:
  SubstituteTest() { TakeEffects(); }

  ~SubstituteTest() override {
    SetStartsInBackground(true);
    SetFailsAtOnce(false);
    EXPECT_EQ(CountTransports(), 0);
    EXPECT_EQ(CountDelegates(), 0);
    EXPECT_EQ(CountRegistrations(), 0);
    EXPECT_EQ(CountScripted(), 0);
  }
};

// The effects since the last call, joined by " | ".
inline std::string TakeText() {
  std::string text;
  for (const std::string& effect : TakeEffects()) text += (text.empty() ? "" : " | ") + effect;
  return text;
}

// A context or payload: an address that must not be read.
inline void* Address(unsigned long number) { return reinterpret_cast<void*>(number); }

// Posts a copy of `name`, since names are compared by content.
inline void Post(const std::string& name) {
  CNotificationCenter::Default()->SendNotification(name.c_str(), Address(0x99));
}

// An observer of the host. Runs `act` for each notification of that name.
class Host : public ovrant::IObserver {
 public:
  Host(const char* name, std::function<void()> act) : act_(std::move(act)) {
    CNotificationCenter::Default()->AddObserver(name, this);
    TakeEffects();
  }
  ~Host() override { CNotificationCenter::Default()->RemoveObserver(this); }

  void OnNotification(const char*, void*) override {
    ++count_;
    act_();
  }
  using IObserver::OnNotification;

  int count() const { return count_; }

 private:
  const std::function<void()> act_;
  int count_ = 0;
};

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_FIXTURE_H_
