// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/encode_chain.h"

#include <utility>

#include "studio/modulator/interpolation.h"
#include "studio/plan/rate_family.h"

namespace corvin::studio {

std::optional<EncodeChain> make_encode_chain(std::uint32_t pcm_rate, std::uint32_t dsd_rate,
                                             ModulatorGrade grade, std::uint32_t kernel_mask) {
  const auto family = dsd_family(dsd_rate);
  if (!family || !pcm_family(pcm_rate)) return std::nullopt;
  ModulatorConfig modulator;
  modulator.grade = grade;
  modulator.oversampling = 1 << family->doublings;
  // The short form of its interpolation is flat up to 0.068 of its input rate; 95 % of half the PCM
  // rate lies below that for up to a seventh of it.
  modulator.wide_band = pcm_rate > dsd_rate / 8 / 7;
  modulator.channels = 1;
  modulator.kernel_mask = kernel_mask;

  EncodePlanConfig config;
  config.pcm_rate = pcm_rate;
  config.dsd_rate = dsd_rate;
  config.response = [last = Interpolation(modulator.wide_band)](double frequency) {
    return last.response(frequency);
  };
  auto plan = make_encode_plan(config);
  return EncodeChain{modulator, std::move(*plan)};
}

}  // namespace corvin::studio
