// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/encode/encoder_settings.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "studio/pcm/sample_format.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {

corvin_encoder_settings default_encoder_settings() {
  corvin_encoder_settings settings = {};
  settings.size = sizeof settings;
  settings.pcm_rate = 44100;
  settings.dsd_rate = 2822400;
  settings.channels = 2;
  settings.format = CORVIN_S24;
  settings.modulator = CORVIN_MODULATOR_HIGH;
  settings.block_bytes = 1;
  settings.kernel_mask = std::numeric_limits<std::uint32_t>::max();
  return settings;
}

bool in_range(const corvin_encoder_settings& s) {
  // Comparisons that a NaN fails.
  return s.channels >= 1 && s.channels <= kMostChannels && s.format <= kLastFormat &&
         s.modulator <= CORVIN_MODULATOR_BEST && s.bit_order <= CORVIN_LSB_FIRST &&
         s.block_bytes >= 1 && s.block_bytes <= kLargestBlock && s.threads <= kMostThreads &&
         s.gain_db >= kLeastGainDb && s.gain_db <= kMostGainDb && s.phase <= CORVIN_MINIMUM_PHASE &&
         s.pass_hz >= 0 && s.stop_hz >= 0 && std::isfinite(s.pass_hz) && std::isfinite(s.stop_hz);
}

}  // namespace corvin::studio
