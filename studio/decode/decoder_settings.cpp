// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/decoder_settings.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "studio/pcm/sample_format.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {

corvin_decoder_settings default_decoder_settings() {
  corvin_decoder_settings settings = {};
  settings.size = sizeof settings;
  settings.dsd_rate = 2822400;
  settings.pcm_rate = 44100;
  settings.channels = 2;
  settings.block_bytes = 1;
  settings.format = CORVIN_S24;
  settings.dither = CORVIN_DITHER_TPDF;
  settings.kernel_mask = std::numeric_limits<std::uint32_t>::max();
  return settings;
}

bool in_range(const corvin_decoder_settings& s) {
  // Comparisons that a NaN fails.
  return s.channels >= 1 && s.channels <= kMostChannels && s.bit_order <= CORVIN_LSB_FIRST &&
         s.block_bytes >= 1 && s.block_bytes <= kLargestBlock && s.format <= kLastFormat &&
         s.dither <= CORVIN_DITHER_SHAPED && s.phase <= CORVIN_MINIMUM_PHASE &&
         s.threads <= kMostThreads && s.first_sample <= kLastPlace &&
         s.context <= CORVIN_CONTEXT_BOTH && s.gain_db >= kLeastGainDb &&
         s.gain_db <= kMostGainDb && s.pass_hz >= 0 && s.stop_hz >= 0 && std::isfinite(s.pass_hz) &&
         std::isfinite(s.stop_hz);
}

}  // namespace corvin::studio
