// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_kind.h"

#include <algorithm>

namespace corvin::cli {
namespace {

struct Ending {
  const char* ending;
  PcmKind kind;
};

constexpr Ending kEndings[] = {
    {".flac", PcmKind::kFlac}, {".wav", PcmKind::kWav},    {".rf64", PcmKind::kRf64},
    {".w64", PcmKind::kW64},   {".aiff", PcmKind::kAiff},  {".aif", PcmKind::kAiff},
    {".caf", PcmKind::kCaf},   {".wv", PcmKind::kWavPack},
};

// In the order of PcmKind.
constexpr struct Name {
  const char* in_options;
  const char* in_words;
} kNames[] = {
    {"flac", "FLAC"}, {"wav", "WAV"}, {"rf64", "RF64"},       {"w64", "W64"},
    {"aiff", "AIFF"}, {"caf", "CAF"}, {"wavpack", "WavPack"},
};

}  // namespace

std::optional<PcmKind> pcm_kind_of(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  const size_t dot = name.rfind('.');
  if (dot == std::string::npos) return PcmKind::kWav;
  std::string ending = name.substr(dot);
  for (char& c : ending)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  for (const Ending& known : kEndings)
    if (ending == known.ending) return known.kind;
  return {};
}

std::optional<PcmKind> pcm_kind_named(std::string_view name) {
  const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                   [&](const Name& one) { return name == one.in_options; });
  if (found == std::end(kNames)) return {};
  return static_cast<PcmKind>(found - std::begin(kNames));
}

const char* pcm_kind_name(PcmKind kind) { return kNames[static_cast<size_t>(kind)].in_words; }

std::string pcm_endings() {
  std::string all;
  for (const Ending& one : kEndings) all += (all.empty() ? "" : ", ") + std::string(one.ending);
  return all;
}

}  // namespace corvin::cli
