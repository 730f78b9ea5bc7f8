// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The instruction sets that this library has builds for. They are listed once, a line each, in the
// folder of their processor; what walks them all, tests and benchmarks too, takes them from here.

#ifndef CORVIN_STUDIO_KERNELS_INSTRUCTION_SETS_H_
#define CORVIN_STUDIO_KERNELS_INSTRUCTION_SETS_H_

#include <cstdint>
#include <span>

namespace corvin::studio {

struct InstructionSet {
  const char* name = "";
  std::uint32_t feature = 0;  ///< a bit of masks, the higher the stronger; 0: needs nothing

  /// Allows this set and every weaker one.
  constexpr std::uint32_t mask() const { return feature == 0 ? 0 : feature | (feature - 1); }
};

inline constexpr InstructionSet kPortable = {"portable", 0};
#define CORVIN_INSTRUCTION_SET(constant, bit, name, supported) \
  inline constexpr InstructionSet constant = {name, bit};
#include "instruction_sets.inc"
#undef CORVIN_INSTRUCTION_SET

/// Portable first, then from the weakest to the strongest.
std::span<const InstructionSet> instruction_sets();

/// Bits of the sets that this processor has and its operating system lets programs use.
std::uint32_t detected_features();

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_KERNELS_INSTRUCTION_SETS_H_
