// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/plan/spectral_shape.h"

#include "studio/math/exact_math.h"

namespace corvin::studio {
namespace {

void put(SpectralShape& shape, std::size_t from, std::size_t to, double re, double im) {
  const std::size_t place = shape.inverse.position(to);
  shape.source[place] = static_cast<std::uint32_t>(shape.forward.position(from));
  shape.response[2 * place] = re;
  shape.response[2 * place + 1] = im;
}

}  // namespace

SpectralShape make_spectral_shape(std::size_t forward_points, std::size_t inverse_points) {
  SpectralShape shape;
  shape.forward = make_fft_plan(forward_points);
  shape.inverse = make_fft_plan(inverse_points);
  shape.source.assign(inverse_points, 0);
  shape.response.assign(2 * inverse_points, 0.0);
  return shape;
}

void set_bin(SpectralShape& shape, std::size_t bin, double re, double im, double advance) {
  const std::size_t points = shape.forward.points;
  const SineCosine ramp =
      sine_cosine(2 * kPi * static_cast<double>(bin) * advance / static_cast<double>(points));
  const double turned_re = re * ramp.cosine - im * ramp.sine;
  const double turned_im = re * ramp.sine + im * ramp.cosine;
  put(shape, bin, bin, turned_re, turned_im);
  if (bin > 0) put(shape, points - bin, shape.inverse.points - bin, turned_re, -turned_im);
}

}  // namespace corvin::studio
