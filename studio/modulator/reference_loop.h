// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A noise-shaping loop of one channel, sample by sample in double, as its definition reads. The
// fast loops are measured against it, and it is what brings a channel back after an overload.

#ifndef CORVIN_STUDIO_MODULATOR_REFERENCE_LOOP_H_
#define CORVIN_STUDIO_MODULATOR_REFERENCE_LOOP_H_

#include <algorithm>
#include <cmath>

#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {

class ReferenceLoop {
 public:
  explicit ReferenceLoop(const ShaperDesign& shaper) : shaper_(&shaper) {}

  /// Takes the input at one bit and returns the bit: +1 or -1.
  double step(double u) {
    const double v = output(u) < 0 ? -1.0 : 1.0;
    advance(u - v);
    return v;
  }

  /// What the quantiser sees.
  double output(double u) const {
    double y = u;
    for (int i = 0; i < shaper_->order; ++i) y += shaper_->c[i] * x[i];
    return y;
  }

  void advance(double in) {
    for (int k = 0; k < shaper_->order / 2; ++k) {
      double& a = x[2 * k];
      double& b = x[2 * k + 1];
      const double out = b;
      a += in - shaper_->g[k] * b;
      b += a;
      in = out;
    }
  }

  bool lost_lock() const {
    for (int i = 0; i < shaper_->order; ++i) {
      // Written so that a state that is no number counts as lost.
      if (!(std::fabs(shaper_->c[i] * x[i]) <= shaper_->bound[i])) return true;
    }
    return false;
  }

  /// Back into lock: the first state is what the bits still owe the signal, and keeping it keeps
  /// the click small. Keeping more ends in relapses.
  void catch_up() {
    const double most = shaper_->bound[0] / shaper_->c[0];
    x[0] = std::min(std::max(x[0], -most), most);
    std::fill(x + 1, x + kMaxOrder, 0.0);
  }

  double x[kMaxOrder] = {};  ///< a_1, b_1, a_2, b_2, ...

 private:
  const ShaperDesign* shaper_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_REFERENCE_LOOP_H_
