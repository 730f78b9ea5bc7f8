// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator of a stream with an end, at which the stream comes to rest (rest_search.h), with a
// fixed delay of its bytes, so that every modulator of an encoder gives the same number whatever it
// looks ahead, and with the tally of what it was fed.
//
// It holds back the last kHeld samples. When the end comes in sight, it bends them by what is
// missing for a charge that bits can pay, at most 1: over 96640 bits, with soft beginning and end,
// that is a swell of at most -92.7 dBFS from DC to 50 Hz at DSD64. In shorter streams it is louder,
// and over the kShortHeld samples that low latency has time for, at most -77 dBFS up to 300 Hz.

#ifndef CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_
#define CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "studio/encode/rest_search.h"
#include "studio/modulator/input_limiter.h"
#include "studio/modulator/interpolation.h"
#include "studio/modulator/modulator.h"

namespace corvin::studio {

struct ModulationTally {
  double peak = 0;             ///< largest absolute sample
  std::uint64_t limited = 0;   ///< samples beyond the limiter's knee
  std::uint64_t overload = 0;  ///< times that the loop lost lock
};

class ModulatorStream {
 public:
  static constexpr std::size_t kHeld = 12288;
  static constexpr std::size_t kShortHeld = 2264;
  /// Samples whose bytes are still to come, from the moment on that as many were fed.
  static constexpr std::size_t delay(bool low_latency) {
    return (low_latency ? kShortHeld : kHeld) + Modulator::kLookAhead;
  }
  /// A length that is not known yet.
  static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();

  /// `search` is for the DSD rate of `config` and outlives the stream.
  ModulatorStream(const ModulatorConfig& config, const RestSearch& search, bool low_latency);

  /// Feeds samples and writes the bytes of those that are delay() samples back, each in its place of
  /// the stream.
  /// @param in      in[channels][samples]
  /// @param length  of the whole stream in bits; known before a sample behind it is fed. delay()
  ///                samples behind its last byte complete it
  /// @param out     out[channels] with place for samples + 2 x delay() bytes each
  /// @param tally   is added to
  /// @return        bytes written of each channel
  std::size_t run(const double* const* in, std::size_t samples, std::uint64_t length,
                  std::uint8_t* const* out, ModulationTally& tally);

  void reset();

 private:
  // Samples behind the end that its last bytes and the search look at.
  static constexpr std::size_t kBehind = Modulator::kLookAhead + RestSearch::kBehind / 8 + 8;
  // Samples before those held that the search, or the interpolation, may look at.
  static constexpr std::size_t kPast = 1280;

  // A swell over fewer samples would be louder than -77 dBFS at DSD64.
  static constexpr std::size_t kLeastBent = 2048;
  static_assert(kShortHeld >= kLeastBent + kBehind);

  struct Channel {
    std::vector<double> samples;      // [kPast + held_]: modulated ones, then those held
    std::vector<std::uint8_t> past;   // [kPast]: the last bytes made before the end
    std::vector<std::uint8_t> early;  // [delay_]: bytes that came before their turn
  };

  void take(const double* const* in, std::size_t samples, std::uint8_t** places,
            ModulationTally& tally);
  std::size_t modulate(const double* const* in, std::size_t samples, std::uint8_t* const* out,
                       ModulationTally& tally);
  void end(std::uint64_t length, std::uint8_t* const* places, ModulationTally& tally);
  double sound_at(const Channel& channel, std::int64_t bit) const;
  double error_at(const Channel& channel, const std::uint8_t* made, std::int64_t bit) const;
  void bend(Channel& channel, std::uint64_t length);
  void rest(const Channel& channel, std::uint64_t length, std::uint8_t* made);

  std::size_t channels_;
  std::size_t held_;
  std::size_t delay_;
  Interpolation interpolation_;
  InputLimiter limiter_;
  const RestSearch* search_;
  Modulator modulator_;
  std::uint64_t fed_ = 0;
  std::uint64_t modulated_ = 0;  // before the end
  std::uint64_t made_ = 0;       // bytes
  std::uint64_t written_ = 0;    // bytes
  std::array<Channel, 2> lines_;
  RestSearch::Scratch scratch_;
  std::vector<double> errors_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_MODULATOR_STREAM_H_
