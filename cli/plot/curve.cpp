// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/plot/curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvin::cli {
namespace {

constexpr double kColumns = 420;  // two units of a picture's width each

}  // namespace

std::vector<CurvePoint> curve_of(std::span<const double> bins, double bin_hz) {
  std::vector<CurvePoint> points;
  if (bins.empty() || !(bin_hz > 0)) return points;
  const double decades = std::log10(static_cast<double>(bins.size()) * bin_hz / kLowestHz);
  double column = -1, count = 0, logs = 0;
  CurvePoint point;
  const auto end_column = [&] {
    if (count == 0) return;
    point.hz = std::pow(10, logs / count);
    point.mean /= count;
    points.push_back(point);
  };
  for (auto i = static_cast<size_t>(std::ceil(kLowestHz / bin_hz)); i < bins.size(); ++i) {
    const double place = std::log10(static_cast<double>(i) * bin_hz);
    const double in = std::floor((place - std::log10(kLowestHz)) / decades * kColumns);
    if (in != column) {
      end_column();
      column = in;
      count = logs = 0;
      point = {};
    }
    point.mean += bins[i];
    point.most = std::max(point.most, bins[i]);
    logs += place;
    ++count;
  }
  end_column();
  return points;
}

}  // namespace corvin::cli
