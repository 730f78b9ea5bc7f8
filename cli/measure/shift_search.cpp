// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/shift_search.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "cli/measure/real_fft.h"

namespace corvin::cli {
namespace {

constexpr double kLeastLikeness = 0.25;  // square of the correlation
constexpr size_t kBytesCompared = 8192;  // of DSD, for the exact shift

/** Where a file is loudest. */
struct Place {
  uint64_t frame = 0;
  uint32_t channel = 0;
  double energy = 0;
};

// By blocks of half a second.
Place loudest_place(FrameSource& source, const SoundFacts& facts) {
  const size_t block = std::max(1u, facts.level_rate_hz / 2);
  std::vector<double> frames(block * facts.channels);
  Place loudest;
  uint64_t at = 0;
  while (const size_t got = source.read(frames.data(), block)) {
    for (uint32_t channel = 0; channel < facts.channels; ++channel) {
      double energy = 0;
      for (size_t i = 0; i < got; ++i) {
        const double sample = frames[i * facts.channels + channel];
        energy += sample * sample;
      }
      if (energy > loudest.energy) loudest = {.frame = at, .channel = channel, .energy = energy};
    }
    at += got;
  }
  return loudest;
}

// Frames of one channel, from `begin` on, which is in samples of the file.
std::vector<double> frames_at(const std::string& path, const SoundFacts& facts, uint32_t channel,
                              uint64_t begin, size_t count) {
  const auto source = open_frames(path, facts, FramesFor::kLevels, {.begin = begin});
  std::vector<double> frames(count * facts.channels);
  std::vector<double> one(source->read(frames.data(), count));
  for (size_t i = 0; i < one.size(); ++i) one[i] = frames[i * facts.channels + channel];
  return one;
}

double energy_of(std::span<const double> samples) {
  double energy = 0;
  for (const double sample : samples) energy += sample * sample;
  return energy;
}

struct Match {
  size_t lag = 0;
  double likeness = 0;
};

// The best place of `a` in `b`; of equally good ones, as tones have many, the one next to `expected`.
Match best_match(std::span<const double> a, std::span<const double> b, size_t expected) {
  const std::vector<double> sums = correlation_of(a, b);
  const double energy_a = energy_of(a), least = 1e-9 * energy_of(b);
  double energy_b = energy_of(b.first(a.size()));
  Match best;
  for (size_t lag = 0; lag < sums.size(); ++lag) {
    if (lag > 0)
      energy_b += b[lag + a.size() - 1] * b[lag + a.size() - 1] - b[lag - 1] * b[lag - 1];
    const double product = energy_a * energy_b;
    if (energy_b <= least || !(product > 0)) continue;
    const double likeness = sums[lag] * sums[lag] / product;
    const auto distance = [&](size_t one) {
      return one > expected ? one - expected : expected - one;
    };
    const bool is_nearer = distance(lag) < distance(best.lag);
    if (likeness > best.likeness + (is_nearer ? -1e-6 : 1e-6))
      best = {.lag = lag, .likeness = likeness};
  }
  return best;
}

// By least squares, of what both have.
double gain_at(std::span<const double> a, std::span<const double> b, size_t lag) {
  double products = 0, squares = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    if (b[lag + i] == 0) continue;
    products += a[i] * b[lag + i];
    squares += a[i] * a[i];
  }
  return squares > 0 ? products / squares : 0;
}

std::vector<uint8_t> bits_at(const std::string& path, uint64_t begin, size_t bytes) {
  DsdBits source(path, {.begin = begin});
  std::vector<std::vector<uint8_t>> planes;
  source.read(planes, bytes);
  std::vector<uint8_t> bits;
  for (const uint8_t byte : planes[0])
    for (int bit = 7; bit >= 0; --bit) bits.push_back(byte >> bit & 1);
  return bits;
}

// The shift of bits near `samples` at which most of them are the same, or the opposite; `samples` itself
// when they are not the same bits.
int64_t exact_shift(const std::string& path_a, const std::string& path_b, uint64_t begin_a,
                    int64_t samples, int64_t reach) {
  // Where B has bits as well.
  begin_a = static_cast<uint64_t>(std::max(static_cast<int64_t>(begin_a), reach - samples));
  const int64_t from = static_cast<int64_t>(begin_a) + samples - reach;
  const std::vector<uint8_t> a = bits_at(path_a, begin_a, kBytesCompared);
  const std::vector<uint8_t> b =
      bits_at(path_b, static_cast<uint64_t>(from), kBytesCompared + static_cast<size_t>(reach) / 4);
  int64_t best = samples;
  double most = 0.8;
  for (int64_t lag = 0; lag <= 2 * reach && lag < static_cast<int64_t>(b.size()); ++lag) {
    const size_t count = std::min(a.size(), b.size() - static_cast<size_t>(lag));
    size_t same = 0;
    for (size_t i = 0; i < count; ++i) same += a[i] == b[i + static_cast<size_t>(lag)];
    const double part = static_cast<double>(same) / static_cast<double>(std::max<size_t>(count, 1));
    if (std::max(part, 1 - part) <= most) continue;
    most = std::max(part, 1 - part);
    best = from + lag - static_cast<int64_t>(begin_a);
  }
  return best;
}

}  // namespace

std::optional<Shift> find_shift(const std::string& path_a, const std::string& path_b,
                                const SoundFacts& facts) {
  const uint32_t ratio = facts.rate_hz / facts.level_rate_hz;
  const size_t second = facts.level_rate_hz;
  const auto source = open_frames(path_a, facts, FramesFor::kLevels);
  const Place place = loudest_place(*source, facts);
  if (!(place.energy > 0)) return {};
  const uint64_t before = std::min<uint64_t>(place.frame, second);
  const std::vector<double> a =
      frames_at(path_a, facts, place.channel, place.frame * ratio, second);
  const std::vector<double> there =
      frames_at(path_b, facts, place.channel, (place.frame - before) * ratio, before + 2 * second);
  // Zeros stand for what B does not have, on either side.
  std::vector<double> b(second - before);
  b.insert(b.end(), there.begin(), there.end());
  b.resize(2 * second + a.size());
  const Match match = best_match(a, b, second);
  if (match.likeness < kLeastLikeness) return {};
  const int64_t frames = static_cast<int64_t>(match.lag) - static_cast<int64_t>(second);
  const int64_t samples = frames * ratio;
  return Shift{.samples = facts.is_dsd ? exact_shift(path_a, path_b, place.frame * ratio, samples,
                                                     2 * int64_t{ratio})
                                       : samples,
               .gain = gain_at(a, b, match.lag)};
}

}  // namespace corvin::cli
