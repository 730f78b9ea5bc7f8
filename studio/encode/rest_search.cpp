// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/encode/rest_search.h"

#include <algorithm>
#include <cmath>

#include "formats/bytes/bit_order.h"
#include "studio/math/exact_math.h"
#include "studio/plan/steep_filter.h"

namespace corvin::studio {
namespace {

// The band, in parts of the DSD rate: to 22.5 kHz at DSD64, and as far as the loops keep the noise
// low at the higher rates, 45, 46 and 50 kHz. Steep enough that their noise above it counts for
// nothing, which takes the same number of bits at each.
double band_edge(int oversampling) {
  if (oversampling >= 512) return 50.0 / 44.1 / 512;
  if (oversampling >= 256) return 46.0 / 44.1 / 256;
  return 22.5 / 44.1 / 64;
}
constexpr double kHalfTransition = 1 / 44.1 / 64;
constexpr double kAttenuationDb = 100;

// What the energy of e costs beside that of r. Less: the shaper asks for more than bits can do, and
// loses its way. More: it leaves too much of r. 10 times either way costs 2 and 6 dB.
constexpr double kEffort = 1e-12;

// The same where bits before the end shall make up for a sound that goes on behind it: bends it in
// its last bits. A loud tone, not faded, is then wrong by 8 dB less in all than without; 1e-3 gives
// 5 dB, 1e-5 another one, but asks for more than bits can follow where full scale is cut.
constexpr double kSoftEffort = 1e-4;

// Directions in which even a bit moves r by less than -130 dBFS are left out.
constexpr double kLeastReach = 1e-5;
constexpr std::size_t kNodes = 64;

double dot(const double* a, const double* b, std::size_t count) {
  // Four sums side by side hide the additions' latency.
  double sums[4] = {};
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    for (std::size_t way = 0; way < 4; ++way) sums[way] += a[i + way] * b[i + way];
  }
  for (; i < count; ++i) sums[0] += a[i] * b[i];
  return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

void subtract(double factor, const double* from, double* to, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] -= factor * from[i];
}

// C(p, k).
double binomial(double p, std::size_t k) { return k == 0 ? 1 : k == 1 ? p : p * (p - 1) / 2; }

double weighted_sum(const double* values, std::size_t k) {
  double sum = 0;
  for (std::size_t n = 0; n < RestSearch::kWindow; ++n) {
    sum += values[n] * binomial(static_cast<double>(RestSearch::kWindow - 1 - n), k);
  }
  return sum;
}

}  // namespace

double silence_at(std::uint64_t n) { return (formats::kSilence >> (7 - n % 8) & 1) != 0 ? 1 : -1; }

double beyond_even(double x) { return x - 2 * std::floor(x / 2 + 0.5); }

double fade(double x) { return 1 - x * x * x * (10 - x * (15 - 6 * x)); }

RestSearch::Scratch::Scratch(const RestSearch& search)
    : rows(search.rows_), sound(kWindow), origin(kWindow * kPaths) {
  for (auto& state : states) state.resize(search.dimensions_ * kPaths);
}

RestSearch::RestSearch(int oversampling) {
  const double edge = band_edge(oversampling);
  low_pass_ = kaiser_low_pass(1, edge - kHalfTransition, edge + kHalfTransition, kAttenuationDb);
  reach_ = low_pass_.size() / 2;
  rows_ = (kWindow + 2 * reach_) / kStep + 1;
  make_basis();
  make_gains(kEffort, gains_, costs_);
  std::vector<double> unused;
  make_gains(kSoftEffort, soft_gains_, unused);
  make_bends();
}

// ---- Tables -------------------------------------------------------------------------------------

// What bits at a few places make of r, orthogonalised, those first that add most: r changes so
// smoothly with the place that the others add nothing.
void RestSearch::make_basis() {
  std::vector<std::vector<double>> open(kNodes, std::vector<double>(rows_));
  for (std::size_t i = 0; i < kNodes; ++i) {
    const double place = (1 - turn(static_cast<std::int64_t>(i), 2 * (kNodes - 1)).cosine) / 2;
    add(static_cast<std::size_t>(std::floor(place * (kWindow - 1) + 0.5)), 1, open[i].data());
  }
  double most = 0;
  while (dimensions_ < kMostDimensions && !open.empty()) {
    std::size_t best = 0;
    double energy = 0;
    for (std::size_t i = 0; i < open.size(); ++i) {
      const double own = dot(open[i].data(), open[i].data(), rows_);
      if (own > energy) {
        energy = own;
        best = i;
      }
    }
    most = std::max(most, energy);
    if (energy <= kLeastReach * kLeastReach * most) break;
    std::vector<double> next = std::move(open[best]);
    open.erase(open.begin() + static_cast<std::ptrdiff_t>(best));
    // Again, since what is left of it may be little.
    for (std::size_t i = 0; i < dimensions_; ++i) {
      const double* before = &basis_[i * rows_];
      subtract(dot(before, next.data(), rows_), before, next.data(), rows_);
    }
    const double size = std::sqrt(dot(next.data(), next.data(), rows_));
    for (double& value : next) value /= size;
    for (auto& other : open) {
      subtract(dot(next.data(), other.data(), rows_), next.data(), other.data(), rows_);
    }
    basis_.insert(basis_.end(), next.begin(), next.end());
    ++dimensions_;
  }
  vectors_.resize(kWindow * dimensions_);
  std::vector<double> rows(rows_);
  for (std::size_t n = 0; n < kWindow; ++n) {
    std::fill(rows.begin(), rows.end(), 0.0);
    add(n, 1, rows.data());
    Point z;
    project(rows.data(), z);
    std::copy_n(z.begin(), dimensions_, &vectors_[n * dimensions_]);
  }
}

// The least that z, which starts at the last bits and goes on with the best e, ends with: z' P z, P
// going from 1 behind the last bit backwards.
void RestSearch::make_gains(double effort, std::vector<double>& gains,
                            std::vector<double>& costs) const {
  const std::size_t d = dimensions_;
  gains.resize(kWindow * d);
  costs.resize(kWindow);
  std::vector<double> least(d * d);
  for (std::size_t i = 0; i < d; ++i) least[i * d + i] = 1;
  Point weighted;
  for (std::size_t n = kWindow; n-- > 0;) {
    const double* vector = &vectors_[n * d];
    for (std::size_t i = 0; i < d; ++i) weighted[i] = dot(&least[i * d], vector, d);
    costs[n] = effort + dot(weighted.data(), vector, d);
    for (std::size_t i = 0; i < d; ++i) {
      const double gain = weighted[i] / costs[n];
      gains[n * d + i] = gain;
      subtract(gain, weighted.data(), &least[i * d], d);
    }
  }
}

// Slow shapes, each of which changes its own sum by 1 and those before it not at all.
void RestSearch::make_bends() {
  bends_.resize(kSums * kWindow);
  for (std::size_t k = 0; k < kSums; ++k) {
    double* shape = &bends_[k * kWindow];
    for (std::size_t n = 0; n < kWindow; ++n) {
      const double t = (2.0 * static_cast<double>(n) + 1) / kWindow - 1;
      const double slope = 1 - t * t;
      shape[n] = slope * slope * slope * (k == 0 ? 1 : k == 1 ? t : t * t);
    }
    for (std::size_t before = 0; before < k; ++before) {
      subtract(weighted_sum(shape, before), &bends_[before * kWindow], shape, kWindow);
    }
    const double own = weighted_sum(shape, k);
    for (std::size_t n = 0; n < kWindow; ++n) shape[n] /= own;
  }
}

// ---- Coordinates --------------------------------------------------------------------------------

// Row i of r lies at i x kStep - reach_, counted in bits of the window.
void RestSearch::add(std::size_t bit, double error, double* rows) const {
  for (std::size_t i = (bit + kStep - 1) / kStep; i < rows_ && i * kStep <= bit + 2 * reach_; ++i) {
    rows[i] += error * low_pass_[i * kStep - bit];
  }
}

void RestSearch::add_history(const double* errors, double* rows) const {
  for (std::size_t i = 0; i * kStep < history(); ++i) {
    rows[i] += dot(low_pass_.data(), errors + i * kStep, history() - i * kStep);
  }
}

void RestSearch::project(const double* rows, Point& z) const {
  for (std::size_t i = 0; i < dimensions_; ++i) z[i] = dot(&basis_[i * rows_], rows, rows_);
}

void RestSearch::step(std::size_t bit, double error, Point& z) const {
  subtract(-error, &vectors_[bit * dimensions_], z.data(), dimensions_);
}

double RestSearch::gain(std::size_t bit, const Point& z) const {
  return dot(&gains_[bit * dimensions_], z.data(), dimensions_);
}

// ---- The search ---------------------------------------------------------------------------------

double RestSearch::charge(const double* errors, Scratch& scratch) const {
  std::fill(scratch.rows.begin(), scratch.rows.end(), 0.0);
  add_history(errors, scratch.rows.data());
  double sum = 0;
  for (const double row : scratch.rows) sum += row;
  return sum * kStep;
}

// `z`: what the sound behind the end would have added. Bits before the end can make up for a part.
void RestSearch::prepay(Point z, double* sound) const {
  for (std::size_t n = 0; n < kWindow; ++n) {
    const double error = -dot(&soft_gains_[n * dimensions_], z.data(), dimensions_);
    step(n, error, z);
    sound[n] += error;
  }
}

// `z`: without the window's errors. The sums of those that would bring it to 0 are the errors' to
// come, if the bits' allow it.
void RestSearch::bend(Point z, double* sound) const {
  double wanted[kSums] = {};
  for (std::size_t n = 0; n < kWindow; ++n) {
    const double error = -gain(n, z);
    step(n, error, z);
    for (std::size_t k = 0; k < kSums; ++k) {
      wanted[k] += error * binomial(static_cast<double>(kWindow - 1 - n), k);
    }
  }
  for (std::size_t k = 0; k < kSums; ++k) {
    double of_bits = 0;
    for (std::size_t p = 0; p < kWindow; ++p) of_bits += binomial(static_cast<double>(p), k);
    const double missing = beyond_even(of_bits - weighted_sum(sound, k) - wanted[k]);
    subtract(-missing, &bends_[k * kWindow], sound, kWindow);
  }
}

// Looks for the bits that bring z from `start` nearest to -`rest`. Returns that distance squared;
// the path stays in the scratch memory.
RestSearch::Found RestSearch::search(const Point& start, const Point& rest, const double* sound,
                                     std::size_t first, Scratch& scratch) const {
  double* states = scratch.states[0].data();
  double* next = scratch.states[1].data();
  std::fill_n(states, dimensions_ * kPaths, 0.0);
  for (std::size_t i = 0; i < dimensions_; ++i) states[i * kPaths] = start[i];
  double costs[kPaths] = {};
  std::size_t paths = 1;
  for (std::size_t n = first; n < kWindow; ++n) {
    const double* const gains = &gains_[n * dimensions_];
    double corrections[kPaths] = {};
    for (std::size_t i = 0; i < dimensions_; ++i) {
      for (std::size_t path = 0; path < kPaths; ++path) {
        corrections[path] += gains[i] * states[i * kPaths + path];
      }
    }
    // Choice 2 x path + bit.
    double choices[2 * kPaths];
    for (std::size_t path = 0; path < paths; ++path) {
      for (std::size_t bit = 0; bit < 2; ++bit) {
        const double off = (bit != 0 ? 1 : -1) - sound[n] + corrections[path];
        choices[2 * path + bit] = costs[path] + costs_[n] * off * off;
      }
    }
    std::uint8_t* const origin = &scratch.origin[n * kPaths];
    paths = choose(choices, 2 * paths, origin);
    double errors[kPaths] = {};
    for (std::size_t path = 0; path < paths; ++path) {
      costs[path] = choices[origin[path]];
      errors[path] = ((origin[path] & 1) != 0 ? 1 : -1) - sound[n];
    }
    const double* const vector = &vectors_[n * dimensions_];
    for (std::size_t i = 0; i < dimensions_; ++i) {
      for (std::size_t path = 0; path < paths; ++path) {
        next[i * kPaths + path] = states[i * kPaths + origin[path] / 2] + vector[i] * errors[path];
      }
    }
    std::swap(states, next);
  }
  Found found;
  for (std::size_t path = 0; path < paths; ++path) {
    double energy = 0;
    for (std::size_t i = 0; i < dimensions_; ++i) {
      const double value = states[i * kPaths + path] + rest[i];
      energy += value * value;
    }
    if (path == 0 || energy < found.energy) found = {energy, path};
  }
  return found;
}

// Which of up to 2 x kPaths choices go on: the cheapest, of equals the first ones, so that every
// library chooses alike.
std::size_t RestSearch::choose(const double* costs, std::size_t count, std::uint8_t* chosen) {
  const std::size_t places = std::min(count, kPaths);
  double sorted[2 * kPaths] = {};
  std::copy_n(costs, count, sorted);
  std::nth_element(sorted, sorted + places - 1, sorted + count);
  const double limit = sorted[places - 1];
  auto equals = static_cast<std::ptrdiff_t>(places) -
                std::count_if(costs, costs + count, [&](double cost) { return cost < limit; });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (costs[i] > limit || (costs[i] == limit && equals-- <= 0)) continue;
    chosen[kept++] = static_cast<std::uint8_t>(i);
  }
  return kept;
}

void RestSearch::run(const double* errors, std::int8_t* bits, std::size_t first,
                     std::uint64_t length, Scratch& scratch) const {
  const double* const own = errors + history();
  const double* const behind = own + kWindow;
  double* const rows = scratch.rows.data();
  const auto project_behind = [&](auto value, Point& z) {
    for (std::size_t n = 0; n < kBehind; ++n) {
      add(kWindow + n, value(n) * fade(static_cast<double>(n) / kBehind), rows);
    }
    project(rows, z);
    std::fill(scratch.rows.begin(), scratch.rows.end(), 0.0);
  };
  Point start, cut;
  std::fill(scratch.rows.begin(), scratch.rows.end(), 0.0);
  add_history(errors, rows);
  project_behind([&](std::size_t n) { return silence_at(length + n); }, start);
  project_behind([&](std::size_t n) { return -behind[n]; }, cut);
  for (std::size_t n = 0; n < first; ++n) step(n, own[n], start);

  double original[kWindow];
  for (std::size_t n = 0; n < kWindow; ++n) original[n] = bits[n] - own[n];
  double least = 0;
  {
    Point plain = start;
    for (std::size_t n = first; n < kWindow; ++n) step(n, own[n], plain);
    for (std::size_t i = 0; i < dimensions_; ++i)
      least += (plain[i] + cut[i]) * (plain[i] + cut[i]);
  }
  double* const sound = scratch.sound.data();
  std::copy_n(original, kWindow, sound);
  if (first == 0) {
    prepay(cut, sound);
    bend(start, sound);
  }
  for (std::size_t n = first; n < kWindow; ++n) step(n, sound[n] - original[n], cut);
  const Found found = search(start, cut, sound, first, scratch);
  if (found.energy >= least) return;
  std::size_t path = found.path;
  for (std::size_t n = kWindow; n-- > first;) {
    const std::uint8_t origin = scratch.origin[n * kPaths + path];
    bits[n] = (origin & 1) != 0 ? 1 : -1;
    path = origin / 2;
  }
}

}  // namespace corvin::studio
