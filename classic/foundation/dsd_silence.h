// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The byte that stands for silence in a DSD stream: four ones and four zeros in either bit order.

#ifndef CORVIN_CLASSIC_FOUNDATION_DSD_SILENCE_H_
#define CORVIN_CLASSIC_FOUNDATION_DSD_SILENCE_H_

inline constexpr unsigned char kDsdSilence = 0x69;

#endif  // CORVIN_CLASSIC_FOUNDATION_DSD_SILENCE_H_
