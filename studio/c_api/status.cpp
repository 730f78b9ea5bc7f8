// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What needs no object: the words for a status, and the version.

#include "corvin.h"

#define CORVIN_TEXT_OF(number) #number
#define CORVIN_VERSION_TEXT(major, minor, patch) \
  CORVIN_TEXT_OF(major) "." CORVIN_TEXT_OF(minor) "." CORVIN_TEXT_OF(patch)

extern "C" {

const char* corvin_version(void) {
  return CORVIN_VERSION_TEXT(CORVIN_VERSION_MAJOR, CORVIN_VERSION_MINOR, CORVIN_VERSION_PATCH);
}

const char* corvin_strerror(int status) {
  switch (status) {
    case CORVIN_OK:
      return "no error";
    case CORVIN_E_ARGUMENT:
      return "an argument is missing or out of range";
    case CORVIN_E_UNSUPPORTED:
      return "there is no conversion between these rates or edges, or no reader for this sound";
    case CORVIN_E_MEMORY:
      return "out of memory";
    case CORVIN_E_THREAD:
      return "a thread could not be started";
    case CORVIN_E_STATE:
      return "the call is out of order";
    case CORVIN_E_READ:
      return "the file cannot be read";
    case CORVIN_E_WRITE:
      return "the output cannot be written";
    case CORVIN_E_FORMAT:
      return "this is no DSD file that can be read";
    case CORVIN_E_COMPRESSED:
      return "sound in DST compression cannot be read";
    case CORVIN_E_CANCELLED:
      return "cancelled";
    default:
      return "unknown status";
  }
}

}  // extern "C"
