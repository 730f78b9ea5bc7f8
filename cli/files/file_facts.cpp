// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/file_facts.h"

#include <algorithm>
#include <utility>

#include "cli/files/dsd_container.h"
#include "cli/files/dsd_input.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_tags.h"

namespace corvin::cli {
namespace {

FileFacts read_file_facts(DsdInput& input) {
  const corvin_file_info& info = input.info();
  FileFacts facts{.is_dsd = true,
                  .kind = input.is_wavpack() ? "WavPack with DSD" : container_name(info.container),
                  .rate_hz = info.dsd_rate,
                  .channels = info.channels,
                  .speakers = info.speakers,
                  .samples = info.samples,
                  .tags = {},
                  .warnings = input.oddities(),
                  .problem = input.problem(),
                  .compression = info.compression,
                  .stated_samples = info.stated_samples,
                  .sound_bytes = info.sound_bytes,
                  .block_bytes = info.block_bytes,
                  .is_lsb_first = info.bit_order == CORVIN_LSB_FIRST};
  if (facts.problem.empty()) {
    const uint64_t samples = info.samples;
    facts.sound_bytes = (samples / 8 + (samples % 8 != 0)) * info.channels;
    facts.padding_bytes = info.sound_bytes - std::min(info.sound_bytes, facts.sound_bytes);
  } else {
    facts.samples = info.stated_samples;
  }
  if (!input.is_wavpack()) facts.chunks = input.file().chunks();
  try {
    TagSet tags = input.file().all_tags();
    for (const std::string& warning : tags.warnings()) facts.warnings.push_back(warning);
    if (!tags.empty()) facts.tags = std::move(tags);
  } catch (const Error& error) {
    facts.warnings.push_back(std::string("its tags cannot be read: ") + error.what());
  }
  return facts;
}

FileFacts read_file_facts(const PcmInput& input) {
  FileFacts facts{.kind = input.kind(),
                  .rate_hz = input.rate_hz(),
                  .channels = input.channels(),
                  .speakers = input.speakers(),
                  .samples = input.declared_frames(),
                  .tags = {},
                  .bits = input.bits(),
                  .is_float = input.is_float()};
  if (std::string damage = input.damage(); !damage.empty())
    facts.warnings.push_back(std::move(damage));
  TagSet tags = read_pcm_tags(input);
  if (!tags.empty()) facts.tags = std::move(tags);
  return facts;
}

}  // namespace

FileFacts read_file_facts(const std::string& path) {
  if (auto dsd = DsdInput::open(path)) return read_file_facts(*dsd);
  return read_file_facts(PcmInput(path));
}

}  // namespace corvin::cli
