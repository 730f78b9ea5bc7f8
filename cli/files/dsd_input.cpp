// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/dsd_input.h"

#include <cstring>
#include <utility>

namespace corvin::cli {

Failure no_dsd_file(const std::string& path) {
  return {kBadInput, path, "is no DSDIFF, DSF or 1bit file"};
}

std::optional<DsdInput> DsdInput::open(const std::string& path) {
  try {
    if (auto unpacked = WavPackDsd::open(path)) {
      File file(*unpacked);
      return DsdInput(path, std::move(file), std::move(unpacked));
    }
    return DsdInput(path, File(path.c_str()));
  } catch (const Error& error) {
    if (error.status() == CORVIN_E_FORMAT) return {};
    if (error.status() != CORVIN_E_READ) throw Failure(kBadInput, path, error.what());
    const int why = error.system_error();
    throw Failure(kBadInput, path, why != 0 ? std::strerror(why) : "is not a regular file");
  }
}

DsdInput DsdInput::open_dsd(const std::string& path) {
  if (auto input = open(path)) return std::move(*input);
  throw no_dsd_file(path);
}

DsdInput::DsdInput(const std::string& path, File file, std::unique_ptr<WavPackDsd> unpacked)
    : path_(path), unpacked_(std::move(unpacked)), file_(std::move(file)), info_(file_.info()) {
  if (info_.readable == CORVIN_E_FORMAT) require_sound();
  // Sound that cannot be read anyway may come without a rate, by which durations are reckoned.
  if (info_.dsd_rate == 0)
    throw Failure(kBadInput, path_, problem() + "; its headers declare no rate");
}

void DsdInput::require_sound() const {
  if (!problem().empty()) throw Failure(kBadInput, path_, problem());
}

void DsdInput::require_whole() const {
  if (is_cut_short())
    throw Failure(kBadInput, path_, "is cut short; without --strict what is there is converted");
}

TagSet DsdInput::tags() {
  try {
    return file_.all_tags();
  } catch (const Error& error) {
    note_damage(path_, std::string("its tags are left out: ") + error.what());
    return {};
  }
}

uint32_t DsdInput::channels_of(const ConvertSettings& settings) const {
  return settings.channel_map ? static_cast<uint32_t>(settings.channel_map_count) : info_.channels;
}

uint32_t DsdInput::speakers_of(const ConvertSettings& settings) const {
  if (!settings.channel_map) return info_.speakers;
  return corvin_speakers_mapped(info_.speakers, settings.channel_map, settings.channel_map_count);
}

std::vector<std::string> DsdInput::warnings() const {
  std::vector<std::string> all = file_.warnings();
  if (unpacked_ && !unpacked_->damage().empty()) all.push_back(unpacked_->damage());
  return all;
}

std::vector<std::string> DsdInput::oddities() const {
  std::vector<std::string> all = warnings();
  if (info_.container != CORVIN_DSF || !problem().empty() || is_cut_short()) return all;
  const uint64_t samples_of_block = uint64_t{8} * info_.block_bytes;
  const uint64_t blocks =
      info_.samples / samples_of_block + (info_.samples % samples_of_block != 0);
  const uint64_t whole_bytes = blocks * info_.block_bytes * info_.channels;
  if (info_.sound_bytes < whole_bytes)
    all.push_back("its last blocks lack " + std::to_string(whole_bytes - info_.sound_bytes) +
                  " bytes of padding");
  return all;
}

void DsdInput::note_warnings() const {
  for (const std::string& warning : warnings()) note_damage(path_, warning);
}

}  // namespace corvin::cli
