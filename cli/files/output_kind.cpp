// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/output_kind.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "cli/words/letters.h"

namespace corvin::cli {
namespace {

struct Ending {
  const char* ending;
  OutputKind kind;
};

// Of several endings of a kind the first is that of new files.
constexpr Ending kEndings[] = {
    {".dsf", CORVIN_DSF},      {".dff", CORVIN_DSDIFF},    {".1bit", CORVIN_ONE_BIT},
    {".flac", PcmKind::kFlac}, {".wav", PcmKind::kWav},    {".rf64", PcmKind::kRf64},
    {".w64", PcmKind::kW64},   {".aiff", PcmKind::kAiff},  {".aif", PcmKind::kAiff},
    {".caf", PcmKind::kCaf},   {".wv", PcmKind::kWavPack},
};

// What else is read.
constexpr const char* kOtherPcm[] = {".ogg", ".oga", ".opus", ".mp3", ".au", ".snd", ".aifc"};

// A name that is nothing but an ending has none.
bool ends_in(std::string_view lower, std::string_view ending) {
  return lower.size() > ending.size() && lower.ends_with(ending) &&
         lower[lower.size() - ending.size() - 1] != '/';
}

const Ending* ending_in(const std::string& lower) {
  const auto found = std::find_if(std::begin(kEndings), std::end(kEndings),
                                  [&](const Ending& one) { return ends_in(lower, one.ending); });
  return found == std::end(kEndings) ? nullptr : found;
}

}  // namespace

std::optional<OutputKind> output_kind_of(const std::string& path) {
  const Ending* found = ending_in(lower_case(path));
  return found ? std::optional(found->kind) : std::nullopt;
}

std::optional<OutputKind> output_kind_named(const std::string& name) {
  return name.starts_with('.') ? std::nullopt : output_kind_of("x." + name);
}

const char* ending_of(const OutputKind& kind) {
  return std::find_if(std::begin(kEndings), std::end(kEndings),
                      [&](const Ending& one) { return one.kind == kind; })
      ->ending;
}

InputEnding input_ending_of(const std::string& path) {
  const std::string lower = lower_case(path);
  if (const Ending* found = ending_in(lower))
    return is_dsd(found->kind) ? InputEnding::kDsd : InputEnding::kPcm;
  const bool is_pcm = std::any_of(std::begin(kOtherPcm), std::end(kOtherPcm),
                                  [&](const char* ending) { return ends_in(lower, ending); });
  return is_pcm ? InputEnding::kPcm : InputEnding::kOther;
}

}  // namespace corvin::cli
