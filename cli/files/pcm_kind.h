// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The kinds of PCM files that the tool writes: their names, the endings of their files, and what
// samples they hold.

#ifndef CORVIN_CLI_FILES_PCM_KIND_H_
#define CORVIN_CLI_FILES_PCM_KIND_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "corvin.h"

namespace corvin::cli {

enum class PcmKind { kFlac, kWav, kRf64, kW64, kAiff, kCaf, kWavPack };

/** The kind that the ending of a file name stands for, in letters of either case. A name without a
 *  dot stands for WAV; no value: the ending is that of no kind. */
std::optional<PcmKind> pcm_kind_of(const std::string& path);

/** The kind of a name as options have it: "flac", "wav", "rf64", "w64", "aiff", "caf", "wavpack". */
std::optional<PcmKind> pcm_kind_named(std::string_view name);

/** "FLAC", "WAV", ... */
const char* pcm_kind_name(PcmKind kind);

/** ".flac, .wav, ...": all endings that stand for a kind, for messages. */
std::string pcm_endings();

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
