// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/real_fft.h"

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

}  // namespace corvin::cli
