// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/math/fft_plan.h"

#include "studio/math/exact_math.h"

namespace corvin::studio {
namespace {

std::vector<unsigned> radices_of(std::size_t points) {
  std::vector<unsigned> radices;
  for (unsigned odd : {7u, 5u, 3u}) {
    for (; points % odd == 0; points /= odd) radices.push_back(odd);
  }
  // Eights as long as what they leave is not a lone 2.
  while (points > 1) {
    const unsigned radix = points == 2 ? 2 : points % 8 == 0 && points != 16 ? 8 : 4;
    radices.push_back(radix);
    points /= radix;
  }
  return radices;
}

// Operations of a pass for each point, twiddle factors included.
std::size_t pass_work(unsigned radix) {
  switch (radix) {
    case 2:
      return 5;
    case 3:
    case 4:
      return 9;
    case 5:
      return 15;
    case 7:
      return 22;
    default:
      return 12;
  }
}

}  // namespace

bool has_fft_plan(std::size_t points) {
  for (std::size_t prime : {2u, 3u, 5u, 7u}) {
    while (points != 0 && points % prime == 0) points /= prime;
  }
  return points == 1;
}

std::size_t fft_work(std::size_t points) {
  std::size_t work = 0;
  for (unsigned radix : radices_of(points)) work += pass_work(radix) * points;
  return work;
}

std::size_t FftPlan::position(std::size_t bin) const {
  std::size_t place = 0;
  for (const FftStage& stage : stages) {
    place += bin % stage.radix * stage.sub_size;
    bin /= stage.radix;
  }
  return place;
}

FftPlan make_fft_plan(std::size_t points) {
  FftPlan plan;
  plan.points = points;
  std::vector<SineCosine> circle(points);
  for (std::size_t i = 0; i < points; ++i) {
    circle[i] = turn(static_cast<std::int64_t>(i), static_cast<std::int64_t>(points));
  }
  std::size_t size = points;
  for (unsigned radix : radices_of(points)) {
    const std::size_t sub_size = size / radix;
    plan.stages.push_back({radix, size, sub_size, plan.twiddles.size()});
    for (std::size_t j = 0; j < sub_size; ++j) {
      for (std::size_t q = 1; q < radix; ++q) {
        const SineCosine& w = circle[j * q * (points / size)];
        plan.twiddles.push_back(w.cosine);
        plan.twiddles.push_back(-w.sine);
      }
    }
    size = sub_size;
  }
  return plan;
}

}  // namespace corvin::studio
