// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/modulator_stream.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "formats/bytes/bit_order.h"
#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {
namespace {

// Largest absolute value; four side by side hide the comparisons' latency.
double peak_of(const double* in, std::size_t samples) {
  constexpr std::size_t kWidth = 4;
  double peak[kWidth] = {};
  std::size_t i = 0;
  for (; i + kWidth <= samples; i += kWidth) {
    for (std::size_t way = 0; way < kWidth; ++way) {
      const double size = std::fabs(in[i + way]);
      peak[way] = size > peak[way] ? size : peak[way];
    }
  }
  for (; i < samples; ++i) peak[0] = std::max(peak[0], std::fabs(in[i]));
  return std::max(std::max(peak[0], peak[1]), std::max(peak[2], peak[3]));
}

// Counts only where a part's peak says that there is something to count.
void measure(const double* in, std::size_t samples, double knee, ModulationTally& tally) {
  constexpr std::size_t kPart = 64;
  for (std::size_t at = 0; at < samples; at += kPart) {
    const std::size_t count = std::min(kPart, samples - at);
    const double peak = peak_of(in + at, count);
    tally.peak = std::max(tally.peak, peak);
    if (peak <= knee) continue;
    for (std::size_t i = at; i < at + count; ++i)
      tally.limited += std::fabs(in[i]) > knee ? 1u : 0u;
  }
}

// The last values.size() of `values` and `more`.
void append(std::vector<std::uint8_t>& values, const std::uint8_t* more, std::size_t count) {
  const std::size_t stay = values.size() - std::min(count, values.size());
  std::copy(values.end() - static_cast<std::ptrdiff_t>(stay), values.end(), values.begin());
  std::copy_n(more + count - (values.size() - stay), values.size() - stay, values.data() + stay);
}

}  // namespace

ModulatorStream::ModulatorStream(const ModulatorConfig& config, const RestSearch& search,
                                 bool low_latency)
    : channels_(static_cast<std::size_t>(config.channels)),
      held_(low_latency ? kShortHeld : kHeld),
      delay_(delay(low_latency)),
      interpolation_(config.wide_band),
      search_(&search),
      modulator_(config),
      scratch_(search),
      errors_(search.history() + RestSearch::kWindow + RestSearch::kBehind) {
  const ShaperDesign& shaper = shaper_design(config.grade, config.oversampling);
  limiter_ = {shaper.knee, shaper.ceiling};
  for (std::size_t c = 0; c < channels_; ++c) {
    lines_[c].samples.resize(kPast + held_);
    lines_[c].past.resize(kPast, formats::kSilence);
    lines_[c].early.resize(delay_);
  }
}

std::size_t ModulatorStream::run(const double* const* in, std::size_t samples, std::uint64_t length,
                                 std::uint8_t* const* out, ModulationTally& tally) {
  std::uint8_t* places[2] = {};
  const auto kept = static_cast<std::size_t>(made_ - written_);
  for (std::size_t c = 0; c < channels_; ++c) {
    tally.overload -= modulator_.overload_events(static_cast<int>(c));
    places[c] = std::copy_n(lines_[c].early.data(), kept, out[c]);
  }
  const std::uint64_t in_sight = formats::BytesOf(length) + kBehind;
  if (fed_ < in_sight) {
    take(in, static_cast<std::size_t>(std::min<std::uint64_t>(samples, in_sight - fed_)), places,
         tally);
    if (fed_ + samples >= in_sight) end(length, places, tally);
  }
  fed_ += samples;
  const auto due =
      static_cast<std::size_t>(fed_ - std::min<std::uint64_t>(fed_, delay_) - written_);
  written_ += due;
  for (std::size_t c = 0; c < channels_; ++c) {
    std::copy_n(out[c] + due, made_ - written_, lines_[c].early.data());
    tally.overload += modulator_.overload_events(static_cast<int>(c));
  }
  return due;
}

// Adds samples to those held, and modulates what is too much.
void ModulatorStream::take(const double* const* in, std::size_t samples, std::uint8_t** places,
                           ModulationTally& tally) {
  const auto held = static_cast<std::size_t>(fed_ - modulated_);
  const std::size_t ready = held + samples - std::min(held + samples, held_);
  const std::size_t from_held = std::min(ready, held);
  const double* first[2] = {};
  for (std::size_t c = 0; c < channels_; ++c) first[c] = &lines_[c].samples[kPast];
  for (const auto& [from, count] : {std::pair{static_cast<const double* const*>(first), from_held},
                                    std::pair{in, ready - from_held}}) {
    const std::size_t bytes = modulate(from, count, places, tally);
    for (std::size_t c = 0; c < channels_; ++c) {
      append(lines_[c].past, places[c], bytes);
      places[c] += bytes;
    }
    made_ += bytes;
  }
  const std::size_t old = kPast + held - std::min(ready, kPast + held);
  const std::size_t fresh = kPast + held + samples - ready - old;
  for (std::size_t c = 0; c < channels_; ++c) {
    double* const line = lines_[c].samples.data();
    std::copy(line + kPast + held - old, line + kPast + held, line);
    std::copy_n(in[c] + samples - fresh, fresh, line + old);
  }
  modulated_ += ready;
}

std::size_t ModulatorStream::modulate(const double* const* in, std::size_t samples,
                                      std::uint8_t* const* out, ModulationTally& tally) {
  for (std::size_t c = 0; c < channels_; ++c) measure(in[c], samples, limiter_.knee, tally);
  return modulator_.modulate(in, samples, out);
}

void ModulatorStream::end(std::uint64_t length, std::uint8_t* const* places,
                          ModulationTally& tally) {
  const double* in[2] = {};
  for (std::size_t c = 0; c < channels_; ++c) {
    bend(lines_[c], length);
    in[c] = &lines_[c].samples[kPast];
  }
  const std::uint64_t bytes = formats::BytesOf(length);
  modulate(in, static_cast<std::size_t>(bytes + Modulator::kLookAhead - modulated_), places, tally);
  for (std::size_t c = 0; c < channels_; ++c) rest(lines_[c], length, places[c]);
  made_ = bytes;
}

// ---- The end ------------------------------------------------------------------------------------

// The sound that the modulator aims at.
double ModulatorStream::sound_at(const Channel& channel, std::int64_t bit) const {
  const std::int64_t sample = (bit >> 3) - static_cast<std::int64_t>(modulated_);
  const double* const in = &channel.samples[static_cast<std::size_t>(
      static_cast<std::int64_t>(kPast) + sample - interpolation_.history())];
  double sum = 0;
  for (int j = 0; j < interpolation_.taps(); ++j) {
    sum += interpolation_.tap(static_cast<int>(bit & 7), j) * limiter_(in[j]);
  }
  return sum;
}

// What a bit is wrong by. `made`: the bytes that are not in the past yet.
double ModulatorStream::error_at(const Channel& channel, const std::uint8_t* made,
                                 std::int64_t bit) const {
  const std::int64_t byte = (bit >> 3) - static_cast<std::int64_t>(made_);
  const unsigned bits =
      byte < 0 ? channel.past[static_cast<std::size_t>(static_cast<std::int64_t>(kPast) + byte)]
               : made[byte];
  return ((bits >> (7 - (bit & 7)) & 1) != 0 ? 1 : -1) - sound_at(channel, bit);
}

void ModulatorStream::bend(Channel& channel, std::uint64_t length) {
  const auto samples = static_cast<std::size_t>(formats::BytesOf(length) - modulated_);
  if (samples < kLeastBent) return;
  const auto first = static_cast<std::int64_t>(8 * made_);
  const auto last = static_cast<std::int64_t>(length);
  const auto history = static_cast<std::int64_t>(search_->history());
  for (std::int64_t i = 0; i < history; ++i) {
    errors_[static_cast<std::size_t>(i)] = error_at(channel, nullptr, first - history + i);
  }
  // All that is still to come, with every bit a 1: others differ by even numbers.
  double missing = search_->charge(errors_.data(), scratch_) + static_cast<double>(last - first);
  for (std::int64_t bit = first; bit < last; ++bit) missing -= sound_at(channel, bit);
  for (std::uint64_t bit = length; bit % 8 != 0; ++bit) missing += silence_at(bit);
  missing = beyond_even(missing);

  const std::size_t slope = samples / 10;
  // The slopes' mean is one half.
  const double top = missing / 8 / static_cast<double>(samples - slope);
  for (std::size_t i = 0; i < samples; ++i) {
    const double from_end = static_cast<double>(std::min(i, samples - 1 - i)) + 0.5;
    channel.samples[kPast + i] +=
        top * fade(1 - std::min(1.0, from_end / static_cast<double>(slope)));
  }
}

void ModulatorStream::rest(const Channel& channel, std::uint64_t length, std::uint8_t* made) {
  constexpr auto kWindow = static_cast<std::int64_t>(RestSearch::kWindow);
  const auto last = static_cast<std::int64_t>(length);
  const std::int64_t start = last - kWindow;
  double* error = errors_.data();
  for (std::int64_t bit = start - static_cast<std::int64_t>(search_->history()); bit < last;
       ++bit) {
    *error++ = error_at(channel, made, bit);
  }
  for (std::size_t i = 0; i < RestSearch::kBehind; ++i) {
    *error++ = sound_at(channel, last + static_cast<std::int64_t>(i));
  }
  std::int8_t bits[RestSearch::kWindow];
  const std::int64_t first = std::max<std::int64_t>(0, -start);
  const std::uint8_t* const from = made - made_;
  for (std::int64_t i = 0; i < kWindow; ++i) {
    const std::int64_t bit = start + i;
    bits[i] = bit < 0 ? 1 : (from[bit >> 3] >> (7 - (bit & 7)) & 1) != 0 ? 1 : -1;
  }
  search_->run(errors_.data(), bits, static_cast<std::size_t>(first), length, scratch_);
  for (std::int64_t i = first; i < kWindow; ++i) {
    const std::int64_t bit = start + i;
    std::uint8_t& byte = made[(bit >> 3) - static_cast<std::int64_t>(made_)];
    const auto place = static_cast<std::uint8_t>(0x80 >> (bit & 7));
    byte = static_cast<std::uint8_t>(bits[i] > 0 ? byte | place : byte & ~place);
  }
}

void ModulatorStream::reset() {
  modulator_.reset();
  fed_ = modulated_ = made_ = written_ = 0;
  for (std::size_t c = 0; c < channels_; ++c) {
    std::fill(lines_[c].samples.begin(), lines_[c].samples.end(), 0.0);
    std::fill(lines_[c].past.begin(), lines_[c].past.end(), formats::kSilence);
  }
}

}  // namespace corvin::studio
