// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The modulator's loop and design. The order of its additions is part of the bits.

#include "classic/encode/modulator.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "classic/encode/design_state.h"

ModulatorCoefficients DesignModulator(int interpolation) {
  const double theta = interpolation == 1 ? 0.04908738521234052 : std::numbers::pi / interpolation;
  // (1 - 0.85 z^-1)^7.
  constexpr double kDenominator[8] = {1.0,
                                      -5.95,
                                      15.172499999999998,
                                      -21.494374999999998,
                                      18.270218749999998,
                                      -9.3178115625,
                                      2.6400466093749997,
                                      -0.32057708828124987};
  // (1 - z^-1) times three pairs of zeros on the unit circle.
  double numerator[8] = {1.0, -1.0};
  int order = 1;
  for (const double place : {0.95, 0.74, 0.42}) {
    const double c = 2.0 * std::cos(place * theta);
    order += 2;
    for (int i = order; i >= 0; --i)
      numerator[i] =
          numerator[i] - (i >= 1 ? c * numerator[i - 1] : 0.0) + (i >= 2 ? numerator[i - 2] : 0.0);
  }
  for (int i = 4; i < 8; ++i) numerator[i] = -numerator[7 - i];
  ModulatorCoefficients out{};
  for (int i = 0; i < 7; ++i) {
    out.a[i] = kDenominator[i + 1] - numerator[i + 1];
    out.b[i] = -kDenominator[i + 1];
  }
  return out;
}

namespace {

/// The part of a dot product with the state that is known before its newest value: x[1] .. x[6].
double OlderSum(const double (&c)[8], const double (&x)[8]) {
  return (c[1] * x[1] + c[2] * x[2]) + ((c[3] * x[3] + c[4] * x[4]) + (c[5] * x[5] + c[6] * x[6]));
}

}  // namespace

void Modulate(const float* in, int bytes, const ModulatorCoefficients& coefficients,
              double (&state)[8], bool lsb_first, int stride, char* out) {
  const auto& [a, b] = coefficients;
  double x[8];
  std::copy(std::begin(state), std::end(state), x);
  for (std::ptrdiff_t k = 0; k < bytes; ++k) {
    std::uint32_t byte = 0;
    for (int i = 0; i < 8; ++i) {
      const double f = a[0] * x[0] + OlderSum(a, x);
      const double g = b[0] * x[0] + OlderSum(b, x);
      double v = static_cast<double>(in[8 * k + i]) + f;
      v = std::max(std::min(v, 2.0), -2.0);
      // By the sign bit: +0.0 gives a one, -0.0 a zero.
      const auto sign = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(v) >> 63);
      const double q = std::copysign(1.0, v);
      for (int s = 7; s > 0; --s) x[s] = x[s - 1];
      x[0] = (v - q) + g;
      byte |= (sign ^ 1u) << (lsb_first ? i : 7 - i);
    }
    out[k * stride] = static_cast<char>(byte);
  }
  std::copy(std::begin(x), std::end(x), state);
}

// ---- Stage ------------------------------------------------------------------------------------

CShaper::CShaper(CWriter* writer, int ch, int nb, double* A, double* B, int channels, bool,
                 bool lsbFirst, int L, int M, int blockSamples)
    : channel_(ch), writer_(writer), channels_(channels), lsb_first_(lsbFirst) {
  std::copy_n(A, 8, coefficients_.a);
  std::copy_n(B, 8, coefficients_.b);
  const long long samples =
      blockSamples > 0 ? blockSamples : static_cast<long long>(iSamples) * L / M;
  blocks_.Init(nb, static_cast<int>(samples) * static_cast<int>(sizeof(float)), 1);
  thread_ = std::thread(ShaperThread, this);
}

CShaper::~CShaper() { thread_.join(); }

CBuffer* CShaper::Write1Lock(int n, int) { return blocks_.Write1Lock(n, 0); }

CBuffer* CShaper::Read1Lock(int n, int) { return blocks_.Read1Lock(n, 0); }

void CShaper::Run() {
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBuffer* const in = blocks_.Read1Lock(seq, 0);
    if (in->Abandoned()) return;
    CBuffer* const out = writer_->Write1Lock(seq, channel_);
    if (out->Abandoned()) return;
    const int samples = in->length / static_cast<int>(sizeof(float));
    if (samples > 0)
      Modulate(reinterpret_cast<const float*>(in->data), samples / 8, coefficients_, state_,
               lsb_first_, channels_, out->data + channel_);
    out->Write1Unlock(channel_, samples / 8 * channels_);
    in->Read1Unlock(0);
    if (samples == 0) return;
  }
}

// ---- Packing ----------------------------------------------------------------------------------

unsigned char bits_sse_l(float* p) {
  unsigned byte = 0;
  for (int i = 0; i < 8; ++i) byte |= (p[i] > 0.0f ? 1u : 0u) << i;
  return static_cast<unsigned char>(byte);
}

unsigned char bits_sse_b(float* p) {
  unsigned byte = 0;
  for (int i = 0; i < 8; ++i) byte |= (p[i] > 0.0f ? 1u : 0u) << (7 - i);
  return static_cast<unsigned char>(byte);
}
