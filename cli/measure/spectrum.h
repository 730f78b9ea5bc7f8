// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The average spectrum of one channel, by overlapping windows (P. Welch, "The use of fast Fourier
// transform for the estimation of power spectra", 1967). All levels are powers in relation to that of
// a sine of full scale.

#ifndef CORVIN_CLI_MEASURE_SPECTRUM_H_
#define CORVIN_CLI_MEASURE_SPECTRUM_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "cli/measure/real_fft.h"

namespace corvin::cli {

/** Bins that a tone is spread over on each side of its own. */
constexpr int kLobeBins = 7;

struct Spectrum {
  double bin_hz = 0;
  /** Bins that white noise counts in each one: sums of bins are divided by it. */
  double noise_bins = 1;
  /** Bins that a tone reaches to on each side of its own. */
  double lobe_bins = kLobeBins;
  /** bins[k] is around k * bin_hz, up to half the rate; a sine of full scale makes 1. */
  std::vector<double> bins;

  double highest_hz() const { return bins.empty() ? 0 : bin_hz * double(bins.size() - 1); }

  /** What is from `from_hz` up to, and without, `to_hz`. */
  double power(double from_hz, double to_hz) const;
};

/** Window and transform, which the channels of a file share. */
class SpectrumWindow {
 public:
  explicit SpectrumWindow(double rate_hz);

  size_t length() const { return window_.size(); }

  /** The spectrum of `samples`, at most length() of them; the window is as long as they are. */
  const Spectrum& spectrum_of(std::span<const double> samples);

 private:
  void make_window(size_t length);

  double rate_hz_;
  std::vector<double> window_;
  size_t made_for_ = 0;
  std::vector<double> windowed_;
  RealFft fft_;
  Spectrum spectrum_;
};

class SpectrumMeter {
 public:
  explicit SpectrumMeter(std::shared_ptr<SpectrumWindow> window);

  /** Takes samples[0], samples[stride]... */
  void add(const double* samples, size_t count, size_t stride);

  /** Completes the average; nothing can be added afterwards. */
  void finish();

  /** Of all. */
  const Spectrum& average() const { return all_; }

  /** Of the windows in which there is near to no sound: below -60 dBFS from 20 Hz to 20 kHz. */
  const Spectrum& quiet() const { return quiet_; }
  uint64_t quiet_windows() const { return quiet_windows_; }

  /** Whether all windows, several, have the same power from 20 Hz to 20 kHz within 1 dB. */
  bool is_standing() const;

 private:
  void take(std::span<const double> samples);

  std::shared_ptr<SpectrumWindow> window_;
  std::vector<double> heard_;  // the last one and a half windows
  size_t filled_ = 0;          // of the last window
  uint64_t windows_ = 0, quiet_windows_ = 0;
  double least_ = 0, most_ = 0;  // power of a window
  Spectrum all_, quiet_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_SPECTRUM_H_
