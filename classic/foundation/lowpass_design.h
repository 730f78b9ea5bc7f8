// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Low-pass FIR design by the Kaiser window for the classic engine: `CFIRFilter` for DSD to PCM,
// `CFIRFilterEnc` for PCM to DSD. They design a prototype of L phases in double precision and copy
// it out as single precision; they do not split it into phases.

#ifndef CORVIN_CLASSIC_FOUNDATION_LOWPASS_DESIGN_H_
#define CORVIN_CLASSIC_FOUNDATION_LOWPASS_DESIGN_H_

#include <cstdint>

#include "corvin.h"

/// sin(x) / x, and 1 for |x| < 1e-5.
CORVIN_API double Sinc(double x);

class CORVIN_API CFIRFilter {
 public:
  /// @param maxTaps  taps budget of the whole prototype
  explicit CFIRFilter(int maxTaps);
  CFIRFilter(const CFIRFilter&) = delete;
  CFIRFilter& operator=(const CFIRFilter&) = delete;
  ~CFIRFilter();

  /// Designs the prototype.
  /// @param dsdRate      DSD rate of the job in Hz
  /// @param rate         rate in Hz that normalises the frequencies
  /// @param cutoff       pass-band edge in Hz
  /// @param phases       L, at least 1
  /// @param attenuation  stop-band attenuation in dB
  /// @return (tapsPerPhase + 1) x L, the length of the single-precision copy to allocate.
  /// Throws std::invalid_argument when there are no phases, std::bad_alloc without memory.
  int Init(int dsdRate, double rate, double cutoff, int phases, double attenuation);
  /// Returns the taps per phase that the stored fields ask for, without storing it.
  int DetectFilterLength();
  /// Fills `coeffs` from the stored fields.
  void CalcCoefficients();
  /// Writes out[i] = coeffs[i] * gain for i = 0..tapsPerPhase * L.
  void CreateCoeffs(float* out, float gain);

  double rate = 0;
  double cutoff = 0;
  double transition = 0;          ///< normalised transition width of the length estimate
  std::int32_t tapsPerPhase = 0;  ///< always odd, so that the prototype is centred on a tap
  double attenuation = 0;
  double* coeffs = nullptr;  ///< tapsPerPhase * L + 1 taps, symmetric about the middle one
  std::int32_t phases = 0;
  std::int32_t maxTaps = 0;
  std::int32_t dsdRate = 0;
};

class CORVIN_API CFIRFilterEnc {
 public:
  CFIRFilterEnc();
  CFIRFilterEnc(const CFIRFilterEnc&) = delete;
  CFIRFilterEnc& operator=(const CFIRFilterEnc&) = delete;
  ~CFIRFilterEnc();

  /// As CFIRFilter::Init, but `attenuation` is ignored: it is always 90 dB. Hosts pass anything.
  int Init(int dsdRate, double rate, double cutoff, int phases, double attenuation);
  int DetectFilterLength();
  void CalcCoefficients();
  void CreateCoeffs(float* out, float gain);

  double rate = 0;
  double cutoff = 0;
  double transition = 0;
  std::int32_t tapsPerPhase = 0;
  double attenuation = 0;
  double* coeffs = nullptr;
  std::int32_t phases = 0;
  std::int32_t dsdRate = 0;
};

#endif  // CORVIN_CLASSIC_FOUNDATION_LOWPASS_DESIGN_H_
