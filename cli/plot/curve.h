// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A spectrum made small enough to be drawn: as many points as a picture has columns.

#ifndef CORVIN_CLI_PLOT_CURVE_H_
#define CORVIN_CLI_PLOT_CURVE_H_

#include <span>
#include <vector>

namespace corvin::cli {

/** The bins of one column of a logarithmic axis. */
struct CurvePoint {
  double hz = 0;
  double mean = 0, most = 0;  // powers
};

/** The lowest frequency of the axis. */
constexpr double kLowestHz = 10;

/** The points from kLowestHz to half the rate; bins wider than a column are points of their own. */
std::vector<CurvePoint> curve_of(std::span<const double> bins, double bin_hz);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_PLOT_CURVE_H_
