// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the grades of the modulator have in common: limited samples in, whole units of bytes out.

#ifndef CORVIN_STUDIO_MODULATOR_MODULATOR_LOOP_H_
#define CORVIN_STUDIO_MODULATOR_MODULATOR_LOOP_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "studio/modulator/interpolation.h"
#include "studio/modulator/modulator.h"
#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {

class ModulatorLoop {
 public:
  virtual ~ModulatorLoop() = default;

  /// Samples that the loop takes at a time, and samples after those that it reads ahead.
  virtual std::size_t unit() const = 0;
  virtual std::size_t ahead() const = 0;

  /// @param in     in[channels]: `units` x unit() samples, with Interpolation::history() samples
  ///               before them and ahead() after them readable
  /// @param out    out[channels], place for as many bytes as samples taken
  /// @return       bytes written per channel, fewer at the stream's begin
  virtual std::size_t run(const double* const* in, std::size_t units, std::uint8_t* const* out) = 0;

  virtual void reset() = 0;
  virtual std::uint64_t overload_events(int channel) const = 0;
};

/// 4 or 8 paths per channel.
std::unique_ptr<ModulatorLoop> make_search_loop(const ModulatorConfig& config, int paths);
/// One path per channel.
std::unique_ptr<ModulatorLoop> make_pair_loop(const ModulatorConfig& config);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_MODULATOR_LOOP_H_
