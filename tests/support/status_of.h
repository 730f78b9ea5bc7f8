// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The status that a call through corvin.hpp ends with.

#ifndef CORVIN_TESTS_SUPPORT_STATUS_OF_H_
#define CORVIN_TESTS_SUPPORT_STATUS_OF_H_

#include "corvin.hpp"

namespace corvin {

template <class Call>
int status_of(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error.status();
  }
  return CORVIN_OK;
}

}  // namespace corvin

#endif  // CORVIN_TESTS_SUPPORT_STATUS_OF_H_
