// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Turns a hang into a failure: ends the test program when its scope lasts too long.

#ifndef CORVIN_TESTS_SUPPORT_WATCHDOG_H_
#define CORVIN_TESTS_SUPPORT_WATCHDOG_H_

#include <unistd.h>

namespace corvin::testing {

class Watchdog {
 public:
  explicit Watchdog(unsigned seconds) { alarm(seconds); }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog() { alarm(0); }
};

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_WATCHDOG_H_
