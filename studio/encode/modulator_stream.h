// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A modulator with a fixed delay of its bytes, so that every modulator of an encoder gives the same
// number whatever it looks ahead, and with the tally of what it was fed.

#ifndef CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_
#define CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "studio/modulator/modulator.h"

namespace corvin::studio {

struct ModulationTally {
  double peak = 0;             ///< largest absolute sample
  std::uint64_t limited = 0;   ///< samples beyond the limiter's knee
  std::uint64_t overload = 0;  ///< times that the loop lost lock
};

class ModulatorStream {
 public:
  /// Samples whose bytes are still to come, from the moment on that as many were fed.
  static constexpr std::size_t kDelay = Modulator::kLookAhead;

  explicit ModulatorStream(const ModulatorConfig& config);

  /// Feeds samples and writes the bytes of those that are kDelay samples back, each in its place of
  /// the stream.
  /// @param in     in[channels][samples]
  /// @param out    out[channels] with place for samples + 2 x kDelay bytes each
  /// @param tally  is added to
  void run(const double* const* in, std::size_t samples, std::uint8_t* const* out,
           ModulationTally& tally);

  void reset();

 private:
  std::size_t channels_;
  double knee_;
  Modulator modulator_;
  std::uint64_t fed_ = 0;
  std::uint64_t written_ = 0;
  std::size_t kept_ = 0;  // bytes that came before their turn
  std::array<std::array<std::uint8_t, kDelay>, 2> early_ = {};
};

/// Bytes that `fed` samples made, of each channel.
constexpr std::uint64_t bytes_after(std::uint64_t fed) {
  return fed > ModulatorStream::kDelay ? fed - ModulatorStream::kDelay : 0;
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_
