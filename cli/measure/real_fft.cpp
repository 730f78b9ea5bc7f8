// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/real_fft.h"

#include <bit>
#include <kissfft/kissfft.hh>

namespace corvin::cli {

struct RealFft::Transform {
  kissfft<double> fft;
};

RealFft::RealFft(size_t length)
    : transform_(new Transform{kissfft<double>(length / 2, false)}), bins_(length / 2 + 1) {}

RealFft::~RealFft() = default;

std::span<const std::complex<double>> RealFft::run(std::span<const double> samples) {
  transform_->fft.transform_real(samples.data(), bins_.data());
  bins_.back() = bins_.front().imag();
  bins_.front() = bins_.front().real();
  return bins_;
}

std::vector<double> correlation_of(std::span<const double> a, std::span<const double> b) {
  // What wraps around is at places where `a` is not within `b`.
  const size_t length = std::bit_ceil(b.size());
  std::vector<std::complex<double>> in(length), spectrum(length), other(length);
  const kissfft<double> fft(length, false), inverse(length, true);
  for (size_t i = 0; i < a.size(); ++i) in[i] = a[i];
  fft.transform(in.data(), spectrum.data());
  in.assign(length, 0);
  for (size_t i = 0; i < b.size(); ++i) in[i] = b[i];
  fft.transform(in.data(), other.data());
  for (size_t i = 0; i < length; ++i) in[i] = std::conj(spectrum[i]) * other[i];
  inverse.transform(in.data(), other.data());
  std::vector<double> sums(b.size() - a.size() + 1);
  for (size_t i = 0; i < sums.size(); ++i) sums[i] = other[i].real() / static_cast<double>(length);
  return sums;
}

}  // namespace corvin::cli
