// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Decimation filters in closed form: a product of boxcars whose zeros are turned from the centre of
// each alias band to spread over it like Chebyshev nodes, so that all bands which fold onto the
// pass band are treated and nothing is spent elsewhere.

#ifndef CORVIN_STUDIO_PLAN_BOXCARS_H_
#define CORVIN_STUDIO_PLAN_BOXCARS_H_

#include <vector>

namespace corvin::studio {

class Boxcars {
 public:
  /// @param decimation  length of each boxcar, in samples of the input
  /// @param order       number of boxcars
  /// @param pass        edge of the pass band as a part of the output rate, below 0.3
  Boxcars(unsigned decimation, unsigned order, double pass);

  unsigned decimation() const { return decimation_; }
  unsigned order() const { return order_; }

  /// order x (decimation - 1) + 1 taps, symmetric.
  std::vector<double> taps() const;

  /// Amplitude at `frequency`, a part of the input rate, of exactly taps().
  double amplitude(double frequency) const;

 private:
  unsigned decimation_;
  unsigned order_;
  std::vector<double> angles_;  // one for each pair of boxcars
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_PLAN_BOXCARS_H_
