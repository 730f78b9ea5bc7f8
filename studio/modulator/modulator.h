// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The one-bit modulator: samples at an eighth of the DSD rate to DSD bytes.
//
// Conventions: samples are doubles, +-1.0 = all ones or all zeros (0 dBFS is 0.5); a byte holds the
// eight bits of one sample and channel, the earliest in the most significant place. Any input is
// allowed: what is louder than the loop can follow meets a soft limiter (DSD64: 0.7075 to 0.72,
// the standard grade 0.6 to 0.608),
// anything that is no number counts as 0. The same input gives the same bytes on every processor,
// in any chunks, and whether a channel is alone or one of two.

#ifndef CORVIN_STUDIO_MODULATOR_MODULATOR_H_
#define CORVIN_STUDIO_MODULATOR_MODULATOR_H_

#include <cstddef>
#include <cstdint>
#include <memory>

namespace corvin::studio {

/// How hard the modulator works: noise from 20 Hz to 20 kHz at DSD64, re +-1, under a sine of 0.5.
enum class ModulatorGrade {
  kStandard,  ///< one path: -147 dB
  kHigh,      ///< a search over four paths: -148 dB, and 1.4 dB louder sines
  kBest,      ///< a search over eight: -151 dB
};

struct ModulatorConfig {
  ModulatorGrade grade = ModulatorGrade::kStandard;
  int oversampling = 64;   ///< DSD rate / 44100 or 48000: 64, 128, 256, 512; at 256 and 512 the
                           ///< grades are the same
  bool wide_band = false;  ///< for sources of 88.2 kHz and more: a longer last interpolation
  int channels = 2;        ///< 1 or 2; more channels take more modulators
  std::uint32_t kernel_mask = ~std::uint32_t{0};  ///< processor features that it may use
};

/// Threads: one caller at a time; objects are independent.
class Modulator {
 public:
  /// No byte waits for more than this number of samples behind its own. As many zeros at the end
  /// of a stream bring out all its bytes.
  static constexpr std::size_t kLookAhead = 72;

  /// Throws std::bad_alloc and nothing else.
  explicit Modulator(const ModulatorConfig& config);
  ~Modulator();
  Modulator(Modulator&&) noexcept;
  Modulator& operator=(Modulator&&) noexcept;

  /// Takes samples of each channel and writes the bytes that they complete.
  /// @param in   in[channels][samples]
  /// @param out  out[channels] with place for samples + kLookAhead bytes each
  /// @return     bytes written per channel. Byte k of the stream belongs to sample k: nothing is
  ///             dropped or shifted, bytes only come later.
  /// Real time: never allocates, locks or blocks.
  std::size_t modulate(const double* const* in, std::size_t samples, std::uint8_t* const* out);

  /// As newly made.
  void reset();

  /// Times that the loop of a channel lost lock and was caught. Sines up to 0.7071 never do
  /// it, at DSD64 in the standard grade up to 0.6.
  std::uint64_t overload_events(int channel) const;

 private:
  struct Stream;
  std::unique_ptr<Stream> stream_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_MODULATOR_H_
