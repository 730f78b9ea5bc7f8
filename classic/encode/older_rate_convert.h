// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The single-phase converter and its worker, from before the polyphase ones. No job builds them;
// hosts that were compiled against their destructors still link.

#ifndef CORVIN_CLASSIC_ENCODE_OLDER_RATE_CONVERT_H_
#define CORVIN_CLASSIC_ENCODE_OLDER_RATE_CONVERT_H_

#include "corvin.h"

class CORVIN_API CLpfCPU {
 public:
  virtual ~CLpfCPU();

 protected:
  CLpfCPU() = default;
};

class CORVIN_API CRateConvert {
 public:
  ~CRateConvert();

 protected:
  CRateConvert() = default;
};

#endif  // CORVIN_CLASSIC_ENCODE_OLDER_RATE_CONVERT_H_
