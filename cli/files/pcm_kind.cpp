// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_kind.h"

namespace corvin::cli {

const char* pcm_kind_name(PcmKind kind) {
  constexpr const char* kNames[] = {"FLAC", "WAV", "RF64", "W64", "AIFF", "CAF", "WavPack"};
  return kNames[static_cast<size_t>(kind)];
}

}  // namespace corvin::cli
