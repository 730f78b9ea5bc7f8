// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The kinds of PCM files that the tool writes, and the samples that they hold.

#ifndef CORVIN_CLI_FILES_PCM_KIND_H_
#define CORVIN_CLI_FILES_PCM_KIND_H_

#include <cstddef>

#include "corvin.h"

namespace corvin::cli {

enum class PcmKind { kFlac, kWav, kRf64, kW64, kAiff, kCaf, kWavPack };

/** "FLAC", "WAV", ... */
const char* pcm_kind_name(PcmKind kind);

/** Bytes of a sample. */
constexpr size_t bytes_of(corvin_sample_format format) {
  constexpr size_t kBytes[] = {2, 3, 4, 4, 8, 3};
  return kBytes[format];
}

constexpr bool is_float(corvin_sample_format format) {
  return format == CORVIN_F32 || format == CORVIN_F64;
}

constexpr int bits_of(corvin_sample_format format) {
  return 8 * static_cast<int>(bytes_of(format));
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PCM_KIND_H_
