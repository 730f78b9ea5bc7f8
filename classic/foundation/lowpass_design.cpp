// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Kaiser window design. Length estimate and beta: J. F. Kaiser, "Nonrecursive digital filter design
// using the I0-sinh window function", 1974.

#include "classic/foundation/lowpass_design.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kEncoderAttenuation = 90.0;
constexpr int kEncoderMaxTaps = 3072;

/// Modified Bessel function of order 0 of 2 * half. The factorials are 32-bit products, wrapped
/// from 13! on: the levels of both directions are tuned to the window that this gives.
double BesselI0(double half) {
  double sum = 1.0;
  std::uint32_t factorial = 1;
  for (int k = 1; k <= 20; ++k) {
    factorial *= static_cast<std::uint32_t>(k);
    const double term =
        std::pow(half, k) / static_cast<double>(static_cast<std::int32_t>(factorial));
    sum += term * term;
  }
  return sum;
}

double KaiserBeta(double attenuation) {
  if (attenuation >= 50.0) return 0.1102 * (attenuation - 8.7);
  if (attenuation <= 21.0) return 0.0;
  return 0.5842 * std::pow(attenuation - 21.0, 0.4) + 0.07886 * (attenuation - 21.0);
}

/// Taps per phase for a transition width, odd and within the budget.
int LengthFor(double attenuation, double transition, int max_taps, int phases) {
  const double estimate = attenuation > 21.0
                              ? std::ceil((attenuation - 7.95) / (14.36 * transition) + 1.0)
                              : std::ceil(0.9222 / transition + 1.0);
  const int budget = (max_taps / phases) | 1;
  // A transition of 0 asks for an endless filter: it gets the budget.
  if (!(estimate <= static_cast<double>(budget))) return budget;
  return std::max(1, static_cast<int>(std::max(estimate, 1.0))) | 1;
}

int CentreOf(int taps_per_phase, int phases) { return phases * taps_per_phase / 2; }

double* NewCoefficients(int taps_per_phase, int phases) {
  return new double[static_cast<std::size_t>(taps_per_phase) * static_cast<std::size_t>(phases) +
                    1]();
}

/// Windowed sinc around the middle tap: sin(angular * k) / (k * pi / phases) * window(k).
void FillSymmetric(double* coeffs, int taps_per_phase, int phases, double middle, double angular,
                   double attenuation) {
  const int centre = CentreOf(taps_per_phase, phases);
  const double beta = KaiserBeta(attenuation);
  const double scale = BesselI0(beta / 2.0);
  coeffs[centre] = middle;
  for (int k = 1; k <= centre; ++k) {
    const double x = static_cast<double>(k) / centre;
    const double window = BesselI0(beta / 2.0 * std::sqrt(1.0 - x * x)) / scale;
    const double tap = std::sin(angular * k) / (k * kPi / phases) * window;
    coeffs[centre + k] = tap;
    coeffs[centre - k] = tap;
  }
}

void CopyScaled(const double* coeffs, int taps_per_phase, int phases, float* out, float gain) {
  const int last = taps_per_phase * phases;
  for (int i = 0; i <= last; ++i)
    out[i] = static_cast<float>(coeffs[i] * static_cast<double>(gain));
}

void RequirePhases(int phases) {
  if (phases < 1) throw std::invalid_argument("filter phases");
}

}  // namespace

double Sinc(double x) { return x > -1e-5 && x < 1e-5 ? 1.0 : std::sin(x) / x; }

// ---- DSD to PCM -------------------------------------------------------------------------------

CFIRFilter::CFIRFilter(int max_taps) : maxTaps(max_taps) {}

CFIRFilter::~CFIRFilter() { delete[] coeffs; }

int CFIRFilter::Init(int dsd_rate, double sampling_rate, double edge, int phase_count,
                     double stop_band) {
  RequirePhases(phase_count);
  dsdRate = dsd_rate;
  rate = sampling_rate;
  cutoff = edge;
  phases = phase_count;
  attenuation = stop_band;
  transition = cutoff >= 352800.0 ? cutoff / rate : 2.0 * cutoff / rate;
  if (cutoff == 22050.0 || cutoff == 24000.0) transition = 0.1;
  tapsPerPhase = DetectFilterLength();
  delete[] coeffs;
  coeffs = nullptr;
  coeffs = NewCoefficients(tapsPerPhase, phases);
  CalcCoefficients();
  return (tapsPerPhase + 1) * phases;
}

int CFIRFilter::DetectFilterLength() { return LengthFor(attenuation, transition, maxTaps, phases); }

void CFIRFilter::CalcCoefficients() {
  // Wide pass bands stop at 43.75 kHz for each multiple of DSD64: above it lies shaped noise.
  const int multiple = std::max(1, dsdRate / 2822400);
  double scaled = cutoff * phases;
  if (scaled / phases >= 88200.0 * multiple) scaled = std::min(scaled, 43750.0 * multiple * phases);
  const double f = scaled / rate;
  FillSymmetric(coeffs, tapsPerPhase, phases, 2.0 * f, 2.0 * kPi * f / phases, attenuation);
}

void CFIRFilter::CreateCoeffs(float* out, float gain) {
  CopyScaled(coeffs, tapsPerPhase, phases, out, gain);
}

// ---- PCM to DSD -------------------------------------------------------------------------------

CFIRFilterEnc::CFIRFilterEnc() = default;

CFIRFilterEnc::~CFIRFilterEnc() { delete[] coeffs; }

int CFIRFilterEnc::Init(int dsd_rate, double sampling_rate, double edge, int phase_count, double) {
  RequirePhases(phase_count);
  dsdRate = dsd_rate;
  rate = sampling_rate;
  cutoff = edge;
  phases = phase_count;
  attenuation = kEncoderAttenuation;
  transition = cutoff > 24000.0 ? cutoff / rate : 0.1;
  tapsPerPhase = DetectFilterLength();
  delete[] coeffs;
  coeffs = nullptr;
  coeffs = NewCoefficients(tapsPerPhase, phases);
  CalcCoefficients();
  return (tapsPerPhase + 1) * phases;
}

int CFIRFilterEnc::DetectFilterLength() {
  return LengthFor(attenuation, transition, kEncoderMaxTaps, phases);
}

void CFIRFilterEnc::CalcCoefficients() {
  const double f = cutoff * 0.125 * phases / rate;
  FillSymmetric(coeffs, tapsPerPhase, phases, f, kPi * f / phases, attenuation);
}

void CFIRFilterEnc::CreateCoeffs(float* out, float gain) {
  CopyScaled(coeffs, tapsPerPhase, phases, out, gain);
}
