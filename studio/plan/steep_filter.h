// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The steep low-pass of a conversion, as a response on the bins of a span transform.

#ifndef CORVIN_STUDIO_PLAN_STEEP_FILTER_H_
#define CORVIN_STUDIO_PLAN_STEEP_FILTER_H_

#include <cstddef>
#include <vector>

#include "studio/math/fft_plan.h"

namespace corvin::studio {

enum class Phase { kLinear, kMinimum };

/// Taps of the Kaiser low-pass of `rate` that is flat to `pass` and closed from `stop` on by
/// `attenuation_db` (40 or more); odd count, sum 1. Formulas: J. F. Kaiser, "Nonrecursive digital
/// filter design using the I0-sinh window function", ISCAS 1974.
std::vector<double> kaiser_low_pass(double rate, double pass, double stop, double attenuation_db);

/// The response of `taps` on bins 0 .. plan.points / 2 of the transform `plan`, as (real,
/// imaginary) pairs: time 0 is the middle tap for linear phase, and the first sample of the
/// minimum-phase kernel of the same magnitude otherwise.
std::vector<double> bin_response(const std::vector<double>& taps, const FftPlan& plan, Phase phase);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_STEEP_FILTER_H_
