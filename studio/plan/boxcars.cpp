// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/boxcars.h"

#include <cmath>
#include <cstddef>

#include "studio/math/exact_math.h"

namespace corvin::studio {
namespace {

std::vector<double> convolve(const std::vector<double>& a, const std::vector<double>& b) {
  std::vector<double> out(a.size() + b.size() - 1);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) out[i + j] += a[i] * b[j];
  }
  return out;
}

// sin(length x) / (length sin x), the response of a boxcar at the half angle x.
double dirichlet(double length, double x) {
  const double sine = sine_cosine(x).sine;
  if (std::fabs(sine) < 1e-9) return 1.0;  // the filters' angles keep away from the other poles
  return sine_cosine(length * x).sine / (length * sine);
}

}  // namespace

Boxcars::Boxcars(unsigned decimation, unsigned order, double pass)
    : decimation_(decimation), order_(order) {
  for (unsigned i = 1; i <= order / 2; ++i) {
    const double node = sine_cosine(kPi * pass).sine * turn(2 * i - 1, 4 * order).cosine;
    angles_.push_back(2.0 / decimation * arc_sine(node));
  }
}

std::vector<double> Boxcars::taps() const {
  const unsigned d = decimation_;
  std::vector<double> taps = {1.0};
  if (order_ % 2 != 0) taps.assign(d, 1.0 / d);
  for (double angle : angles_) {
    std::vector<double> pair(2 * d - 1);
    for (unsigned i = 0; i < d; ++i) {
      for (unsigned k = 0; k < d; ++k) {
        const double difference = static_cast<double>(i) - static_cast<double>(k);
        pair[i + k] += sine_cosine(difference * angle).cosine / (static_cast<double>(d) * d);
      }
    }
    taps = convolve(taps, pair);
  }
  return taps;
}

double Boxcars::amplitude(double frequency) const {
  const double half = kPi * frequency;
  double product = order_ % 2 != 0 ? dirichlet(decimation_, half) : 1.0;
  for (double angle : angles_) {
    product *= dirichlet(decimation_, half - angle / 2) * dirichlet(decimation_, half + angle / 2);
  }
  return product;
}

}  // namespace corvin::studio
