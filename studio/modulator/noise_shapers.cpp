// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/modulator/noise_shapers.h"

#include <algorithm>
#include <iterator>

namespace corvin::studio {
namespace {

#include "studio/modulator/noise_shaper_weights.inc"

constexpr double kZeros10[] = {0x1.708fe1e2d4c44p-15, 0x1.866cccf6c6dacp-12, 0x1.dfb6e0522b30dp-11,
                               0x1.84d59b05ade3dp-10, 0x1.ecd21fceb5580p-10};

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

// 2.2 to 2.5 times the largest |c_i x_i| under the loudest signals that the loops follow for ever.
// 1.6 times gave a false alarm, each of which is a click.
constexpr double kBounds10[] = {3.61, 8.51, 12.81, 19.87, 21.2, 15.78, 12.65, 2.81, 2.34, 0.86};
constexpr double kBoundsTree[] = {4.4, 12.5, 18.2, 31.5, 32.2, 25.5, 20.3, 6.2, 4.5, 1.05};
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

// With a ceiling 0.01 higher, clipped loud signals already throw the loops out of lock.
constexpr ShaperDesign kStandard = shaper(kPlain10, kZeros10, kBounds10, 0.7075, 0.72);
constexpr ShaperDesign kHigh = shaper(kTree4, kZeros10, kBoundsTree, 0.7075, 0.72);
constexpr ShaperDesign kBest = shaper(kTree8, kZeros10, kBoundsTree, 0.7075, 0.72);
constexpr ShaperDesign kQuadruple = shaper(kWeights8, kZeros8, kBounds8, 0.79, 0.82);
constexpr ShaperDesign kOctuple = shaper(kWeights6, kZeros6, kBounds6, 0.83, 0.86);

}  // namespace

const ShaperDesign& shaper_design(ModulatorGrade grade, int oversampling) {
  if (oversampling >= 512) return kOctuple;
  if (oversampling >= 256) return kQuadruple;
  if (grade == ModulatorGrade::kBest) return kBest;
  return grade == ModulatorGrade::kHigh ? kHigh : kStandard;
}

int search_paths(ModulatorGrade grade, int oversampling) {
  if (oversampling >= 256 || grade == ModulatorGrade::kStandard) return 1;
  return grade == ModulatorGrade::kHigh ? 4 : 8;
}

}  // namespace corvin::studio
