// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/modulator/noise_shapers.h"

#include <algorithm>
#include <iterator>

namespace corvin::studio {
namespace {

#include "studio/modulator/noise_shaper_weights.inc"

// Zeros up to the DSD rate / 225.8: 50 kHz at DSD256.
constexpr double kWeights8[] = {0x1.6794dc96095d4p-1,  0x1.04ad9f74a6f43p-2,  0x1.60bbdcf41fdfdp-6,
                                0x1.6ba6b123ea87bp-9,  0x1.fb5cff60045c9p-14, 0x1.1669df1ea13b1p-17,
                                0x1.6d916742f1ebep-23, 0x1.ad5c655e5654dp-28};
constexpr double kZeros8[] = {0x1.b524ced086a10p-16, 0x1.c0805c75791e2p-13, 0x1.01a916d11c12ep-11,
                              0x1.765c975a832a2p-11};

// Zeros up to the DSD rate / 451.6: 50 kHz at DSD512.
constexpr double kWeights6[] = {0x1.59a551d5ea02cp-1,  0x1.be82255024916p-3,
                                0x1.fdce0e42ff0e9p-7,  0x1.8376593b860eep-10,
                                0x1.6a23ec7a92ab0p-15, 0x1.fd24e5d25da48p-20};
constexpr double kZeros6[] = {0x1.71dd5b7a7ad04p-17, 0x1.62fdbaf148032p-14, 0x1.61003769607a6p-13};

// 2.2 times the largest |c_i x_i| under the loudest signals that the loops follow for ever, or
// somewhat more. 1.6 times gave a false alarm, each of which is a click.
constexpr double kBoundsStandard64[] = {5.3, 8.1, 9.1, 9.5, 7.7, 4.2, 1.3, 2.0, 0.85, 0.32};
constexpr double kBoundsHigh64[] = {3.6, 6.0, 6.8, 7.9, 5.9, 3.5, 1.4, 2.0, 0.94, 0.37};
constexpr double kBoundsStandard128[] = {5.4, 10.7, 7.8, 10.0, 5.4, 11.2, 0.8, 21.6, 1.9, 9.1};
constexpr double kBoundsHigh128[] = {3.8, 6.3, 7.3, 8.1, 6.3, 3.5, 1.4, 1.7, 0.94, 0.37};
constexpr double kBoundsBest[] = {4.2, 8.2, 11.7, 14.1, 13.4, 6.8, 2.8, 1.4, 0.93, 0.49};
constexpr double kBounds8[] = {3.4, 6.9, 8.3, 15.8, 11.3, 12.2, 4.8, 3.1};
constexpr double kBounds6[] = {3.0, 3.3, 2.2, 2.8, 1.4, 1.4};

template <int kOrder>
constexpr ShaperDesign shaper(const double (&weights)[kOrder], const double* zeros,
                              const double (&bounds)[kOrder], double knee, double ceiling) {
  ShaperDesign made;
  made.order = kOrder;
  std::copy(std::begin(weights), std::end(weights), made.c);
  std::copy(zeros, zeros + kOrder / 2, made.g);
  std::copy(std::begin(bounds), std::end(bounds), made.bound);
  made.knee = knee;
  made.ceiling = ceiling;
  return made;
}

// Knees and ceilings: what the loops lose lock at lies 0.004 above the ceiling or more. One path at
// DSD64 gives up headroom, or it could not be quiet from 20 to 50 kHz.
constexpr ShaperDesign kStandard64 =
    shaper(kWeightsStandard64, kZerosStandard64, kBoundsStandard64, 0.6, 0.608);
constexpr ShaperDesign kHigh64 = shaper(kWeightsHigh64, kZerosHigh64, kBoundsHigh64, 0.7075, 0.72);
constexpr ShaperDesign kStandard128 =
    shaper(kWeightsStandard128, kZerosStandard128, kBoundsStandard128, 0.7075, 0.72);
constexpr ShaperDesign kHigh128 =
    shaper(kWeightsHigh128, kZerosHigh128, kBoundsHigh128, 0.7075, 0.72);
constexpr ShaperDesign kBest = shaper(kWeightsBest, kZerosBest, kBoundsBest, 0.7075, 0.72);
constexpr ShaperDesign kQuadruple = shaper(kWeights8, kZeros8, kBounds8, 0.79, 0.82);
constexpr ShaperDesign kOctuple = shaper(kWeights6, kZeros6, kBounds6, 0.83, 0.86);

}  // namespace

const ShaperDesign& shaper_design(ModulatorGrade grade, int oversampling) {
  if (oversampling >= 512) return kOctuple;
  if (oversampling >= 256) return kQuadruple;
  const bool twice = oversampling >= 128;
  if (grade == ModulatorGrade::kBest) return kBest;
  if (grade == ModulatorGrade::kHigh) return twice ? kHigh128 : kHigh64;
  return twice ? kStandard128 : kStandard64;
}

int search_paths(ModulatorGrade grade, int oversampling) {
  if (oversampling >= 256 || grade == ModulatorGrade::kStandard) return 1;
  return grade == ModulatorGrade::kHigh ? 4 : 8;
}

}  // namespace corvin::studio
