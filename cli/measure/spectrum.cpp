// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/spectrum.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <numbers>
#include <utility>

namespace corvin::cli {
namespace {

// Fine enough to tell 20 Hz from what stands still beside it.
constexpr double kWidestBinHz = 1.5;

constexpr double kQuietPower = 1e-6;     // -60 dBFS
constexpr double kStandingRatio = 1.26;  // 1 dB

// The seven-term Blackman-Harris window: nothing of a tone lies above -180 dB beyond its lobe, so that
// a tone of full scale hides no noise of a good modulator (H. Albrecht, "A family of cosine-sum windows
// for high-resolution measurements", 2001).
constexpr double kTerms[] = {0.27105140069342,  -0.43329793923448, 0.21812299954311,
                             -0.06592544638803, 0.01081174209837,  -0.00077658482522,
                             0.00001388721735};

void add(const Spectrum& one, Spectrum& sum) {
  if (sum.bins.empty()) {
    sum = one;
    return;
  }
  for (size_t i = 0; i < sum.bins.size(); ++i) sum.bins[i] += one.bins[i];
}

void divide(Spectrum& sum, uint64_t count) {
  for (double& bin : sum.bins) bin /= static_cast<double>(count);
}

}  // namespace

double Spectrum::power(double from_hz, double to_hz) const {
  double sum = 0;
  const double last = std::min(std::ceil(to_hz / bin_hz), static_cast<double>(bins.size()));
  for (auto i = static_cast<size_t>(std::ceil(from_hz / bin_hz)); static_cast<double>(i) < last;
       ++i)
    sum += bins[i];
  return sum / noise_bins;
}

SpectrumWindow::SpectrumWindow(double rate_hz)
    : rate_hz_(rate_hz),
      window_(std::max<size_t>(
          256, std::bit_ceil(static_cast<size_t>(std::ceil(rate_hz / kWidestBinHz))))),
      windowed_(window_.size()),
      fft_(window_.size()) {}

void SpectrumWindow::make_window(size_t length) {
  double sum = 0, squares = 0;
  for (size_t n = 0; n < length; ++n) {
    const double turn =
        2 * std::numbers::pi * (static_cast<double>(n) + 0.5) / static_cast<double>(length);
    double value = 0;
    for (int term = 0; term < 7; ++term) value += kTerms[term] * std::cos(term * turn);
    window_[n] = value;
    sum += value;
    squares += value * value;
  }
  // A sine of full scale has half of its sum in each of two bins.
  for (size_t n = 0; n < length; ++n) window_[n] *= 2 / sum;
  made_for_ = length;
  const auto whole = static_cast<double>(window_.size());
  spectrum_.bin_hz = rate_hz_ / whole;
  spectrum_.noise_bins = whole * squares / (sum * sum);
  spectrum_.lobe_bins = kLobeBins * whole / static_cast<double>(length);
}

const Spectrum& SpectrumWindow::spectrum_of(std::span<const double> samples) {
  if (made_for_ != samples.size()) make_window(samples.size());
  for (size_t n = 0; n < samples.size(); ++n) windowed_[n] = samples[n] * window_[n];
  std::fill(windowed_.begin() + static_cast<std::ptrdiff_t>(samples.size()), windowed_.end(), 0.0);
  const auto bins = fft_.run(windowed_);
  spectrum_.bins.resize(bins.size());
  for (size_t i = 0; i < bins.size(); ++i) spectrum_.bins[i] = std::norm(bins[i]);
  // These have no mirror image that would hold the other half.
  spectrum_.bins.front() /= 2;
  spectrum_.bins.back() /= 2;
  return spectrum_;
}

SpectrumMeter::SpectrumMeter(std::shared_ptr<SpectrumWindow> window)
    : window_(std::move(window)), heard_(window_->length() * 3 / 2) {}

void SpectrumMeter::add(const double* samples, size_t count, size_t stride) {
  const size_t whole = window_->length();
  for (size_t i = 0; i < count; ++i) {
    heard_[whole / 2 + filled_] = samples[i * stride];
    if (++filled_ < whole) continue;
    take(std::span<const double>(heard_).last(whole));
    std::copy(heard_.begin() + static_cast<std::ptrdiff_t>(whole / 2), heard_.end(),
              heard_.begin());
    filled_ = whole / 2;
  }
}

void SpectrumMeter::finish() {
  const size_t whole = window_->length();
  const std::span<const double> heard(heard_);
  if (windows_ == 0 && filled_ > 0)
    take(heard.subspan(whole / 2, filled_));
  else if (windows_ > 0 && filled_ > whole / 2)
    take(heard.subspan(filled_ - whole / 2, whole));
  if (windows_ > 0) divide(all_, windows_);
  if (quiet_windows_ > 0) divide(quiet_, quiet_windows_);
  heard_ = {};
}

bool SpectrumMeter::is_standing() const {
  return windows_ > 1 && least_ > 0 && most_ <= kStandingRatio * least_;
}

void SpectrumMeter::take(std::span<const double> samples) {
  const Spectrum& spectrum = window_->spectrum_of(samples);
  const double power = spectrum.power(20, 20000);
  least_ = windows_ == 0 ? power : std::min(least_, power);
  most_ = std::max(most_, power);
  ++windows_;
  cli::add(spectrum, all_);
  if (power > kQuietPower) return;
  ++quiet_windows_;
  cli::add(spectrum, quiet_);
}

}  // namespace corvin::cli
