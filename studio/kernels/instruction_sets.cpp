// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/kernels/instruction_sets.h"

namespace corvin::studio {

std::span<const InstructionSet> instruction_sets() {
  static constexpr InstructionSet kSets[] = {
      kPortable,
#define CORVIN_INSTRUCTION_SET(constant, bit, name, supported) constant,
#include "instruction_sets.inc"
#undef CORVIN_INSTRUCTION_SET
  };
  return kSets;
}

std::uint32_t detected_features() {
  std::uint32_t features = 0;
#define CORVIN_INSTRUCTION_SET(constant, bit, name, supported) \
  if (supported) features |= (constant).feature;
#include "instruction_sets.inc"
#undef CORVIN_INSTRUCTION_SET
  return features;
}

}  // namespace corvin::studio
