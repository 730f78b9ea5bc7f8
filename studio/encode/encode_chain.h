// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator of a conversion and the plan that leads to it.

#ifndef CORVIN_STUDIO_ENCODE_ENCODE_CHAIN_H_
#define CORVIN_STUDIO_ENCODE_ENCODE_CHAIN_H_

#include <cstdint>
#include <optional>

#include "studio/modulator/modulator.h"
#include "studio/plan/encode_plan.h"

namespace corvin::studio {

struct EncodeChain {
  ModulatorConfig modulator;  ///< of one channel
  EncodePlan plan;
};

/// Nothing when a rate or an edge is not supported. The plan is that of `config` with the
/// modulator's response; `kernel_mask` is the modulator's.
std::optional<EncodeChain> make_encode_chain(EncodePlanConfig config, ModulatorGrade grade,
                                             std::uint32_t kernel_mask = ~std::uint32_t{0});

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_ENCODE_CHAIN_H_
