// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/encode_chain.h"

#include <utility>

#include "studio/modulator/interpolation.h"
#include "studio/plan/rate_family.h"

namespace corvin::studio {

std::optional<EncodeChain> make_encode_chain(EncodePlanConfig config, ModulatorGrade grade,
                                             std::uint32_t kernel_mask) {
  const auto family = dsd_family(config.dsd_rate);
  if (!family) return std::nullopt;
  ModulatorConfig modulator;
  modulator.grade = grade;
  modulator.oversampling = 1 << family->doublings;
  // The short form of its interpolation is flat up to 0.068 of its input rate; 95 % of half the PCM
  // rate lies below that for up to a seventh of it.
  modulator.wide_band = config.pcm_rate > config.dsd_rate / 8 / 7;
  modulator.channels = 1;
  modulator.kernel_mask = kernel_mask;

  config.response = [last = Interpolation(modulator.wide_band)](double frequency) {
    return last.response(frequency);
  };
  auto plan = make_encode_plan(config);
  if (!plan) return std::nullopt;
  return EncodeChain{modulator, std::move(*plan)};
}

}  // namespace corvin::studio
