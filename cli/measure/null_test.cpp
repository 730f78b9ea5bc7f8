// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/null_test.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "cli/words/failure.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 12;
constexpr size_t kBytesAtOnce = 1 << 14;
// Of what differs between two bits: 1 and -1 in place of each other, at a full scale of 0.5, by its sine.
constexpr double kDifferingPower = 32;

void refuse_others(const NullTest& test, const std::string& name_a, const std::string& name_b) {
  const auto kind = [](const SoundFacts& facts) {
    return facts.is_dsd ? rate_name(facts.rate_hz) : "PCM of " + hz_text(facts.rate_hz);
  };
  const SoundFacts &a = test.a, &b = test.b;
  if (a.is_dsd != b.is_dsd || a.rate_hz != b.rate_hz)
    throw Failure(kUsage, name_b,
                  "is " + kind(b) + " and " + name_a + " " + kind(a) +
                      ": two of one kind and rate are compared");
  if (a.channels != b.channels)
    throw Failure(kUsage, name_b,
                  "has " + counted(b.channels, "channel") + " and " + name_a + " " +
                      std::to_string(a.channels));
}

/** The two files, or stretches of them, read side by side. */
class Pair {
 public:
  Pair(const std::string& a, const std::string& b, const SoundFacts& facts)
      : a_(a), b_(b), facts_(facts) {}

  void lay(int64_t shift, uint64_t count) {
    stretch_a_ = {.begin = static_cast<uint64_t>(std::max<int64_t>(0, -shift)), .count = count};
    stretch_b_ = {.begin = static_cast<uint64_t>(std::max<int64_t>(0, shift)), .count = count};
  }

  /** Calls take(a, b, count) with frames of both; returns their number. */
  template <class Take>
  uint64_t for_frames(FramesFor use, Take take) {
    const auto a = open_frames(a_, facts_, use, stretch_a_);
    const auto b = open_frames(b_, facts_, use, stretch_b_);
    std::vector<double> from_a(kFramesAtOnce * facts_.channels), from_b(from_a.size());
    uint64_t frames = 0;
    while (true) {
      const size_t got =
          std::min(a->read(from_a.data(), kFramesAtOnce), b->read(from_b.data(), kFramesAtOnce));
      if (got == 0) return frames;
      take(from_a, from_b, got);
      frames += got;
    }
  }

  /** How many bits differ in each channel. */
  std::vector<uint64_t> differing_bits() {
    DsdBits a(a_, stretch_a_), b(b_, stretch_b_);
    std::vector<std::vector<uint8_t>> from_a, from_b;
    std::vector<uint64_t> differing(facts_.channels);
    uint64_t left = std::min(a.samples(), b.samples());
    while (left > 0) {
      const size_t got = std::min(a.read(from_a, kBytesAtOnce), b.read(from_b, kBytesAtOnce));
      if (got == 0) break;
      const uint64_t now = std::min<uint64_t>(left, 8 * uint64_t{got});
      for (uint32_t channel = 0; channel < facts_.channels; ++channel)
        for (size_t i = 0; 8 * i < now; ++i) {
          auto other = static_cast<uint8_t>(from_a[channel][i] ^ from_b[channel][i]);
          if (now - 8 * i < 8) other = static_cast<uint8_t>(other & ~(0xffu >> (now - 8 * i)));
          differing[channel] += static_cast<unsigned>(std::popcount(other));
        }
      left -= now;
    }
    return differing;
  }

 private:
  const std::string a_, b_;
  const SoundFacts facts_;
  Stretch stretch_a_, stretch_b_;
};

Difference difference_of(Pair& pair, const SoundFacts& facts, int64_t shift, uint64_t count,
                         const std::string& name) {
  pair.lay(shift, count);
  SoundMeter meter(facts);
  JobProgress progress(name, facts.level_rate_hz);
  Difference result{.shift = shift, .differing = std::vector<uint64_t>(facts.channels), .left = {}};
  uint64_t done = 0;
  const uint64_t total = count == UINT64_MAX ? 0 : count / (facts.rate_hz / facts.level_rate_hz);
  const auto take_away = [&](std::vector<double>& a, const std::vector<double>& b, size_t frames) {
    for (size_t i = 0; i < frames * facts.channels; ++i) a[i] -= b[i];
  };
  done = pair.for_frames(FramesFor::kLevels, [&](auto& a, auto& b, size_t frames) {
    take_away(a, b, frames);
    meter.add_levels(a.data(), frames);
    if (!facts.is_dsd) {
      meter.add_spectra(a.data(), frames);
      for (size_t i = 0; i < frames * facts.channels; ++i)
        if (a[i] != 0) ++result.differing[i % facts.channels];
    }
    progress.show(done += frames, total);
  });
  result.compared = done;
  std::vector<double> power;
  if (facts.is_dsd) {
    pair.for_frames(FramesFor::kSpectra, [&](auto& a, auto& b, size_t frames) {
      take_away(a, b, frames);
      meter.add_spectra(a.data(), frames);
    });
    result.compared = count;
    result.differing = pair.differing_bits();
    for (const uint64_t bits : result.differing)
      power.push_back(kDifferingPower * static_cast<double>(bits) /
                      static_cast<double>(std::max<uint64_t>(count, 1)));
  }
  result.left = meter.finish(power);
  return result;
}

// What both have, with one laid on the other.
uint64_t common(const NullTest& test, int64_t shift) {
  const auto from = [](uint64_t samples, int64_t begin) -> uint64_t {
    const auto skipped = static_cast<uint64_t>(std::max<int64_t>(0, begin));
    return samples > skipped ? samples - skipped : 0;
  };
  return std::min(from(test.samples_a, -shift), from(test.samples_b, shift));
}

// Files of PCM may not declare their length.
uint64_t samples_of(const std::string& path, const SoundFacts& facts) {
  if (facts.is_dsd) return facts.samples.value_or(0);
  const auto source = open_frames(path, facts, FramesFor::kLevels);
  std::vector<double> frames(kFramesAtOnce * facts.channels);
  uint64_t samples = 0;
  while (const size_t got = source->read(frames.data(), kFramesAtOnce)) samples += got;
  source->note_damage();
  return samples;
}

std::string shift_text(const NullTest& test, int64_t samples) {
  if (samples == 0) return "none";
  const auto size = static_cast<uint64_t>(std::abs(samples));
  return std::to_string(size) + (test.a.is_dsd ? " samples (" : " frames (") +
         fixed(1000 * static_cast<double>(size) / test.a.rate_hz, 3) + " ms) " +
         (samples > 0 ? "later" : "earlier");
}

}  // namespace

NullTest null_test(const std::string& path_a, const std::string& path_b, const std::string& name_a,
                   const std::string& name_b) {
  NullTest test;
  test.a = facts_of(path_a);
  test.b = facts_of(path_b);
  refuse_others(test, name_a, name_b);
  test.samples_a = samples_of(path_a, test.a);
  test.samples_b = samples_of(path_b, test.b);
  if (common(test, 0) == 0)
    throw Failure(kBadInput, test.samples_a == 0 ? path_a : path_b,
                  "has no sound that could be compared");
  Pair pair(path_a, path_b, test.a);
  test.differences.push_back(difference_of(pair, test.a, 0, common(test, 0), name_a));
  const std::vector<uint64_t>& differing = test.differences[0].differing;
  // What is the same needs no other place.
  if (std::all_of(differing.begin(), differing.end(), [](uint64_t count) { return count == 0; })) {
    test.shift = Shift{};
    return test;
  }
  test.shift = find_shift(path_a, path_b, test.a);
  if (test.shift && test.shift->samples != 0 && common(test, test.shift->samples) > 0)
    test.differences.push_back(difference_of(pair, test.a, test.shift->samples,
                                             common(test, test.shift->samples), name_a));
  return test;
}

std::string null_text(const NullTest& test) {
  const char* unit = test.a.is_dsd ? " samples" : " frames";
  std::string text = report_row("compared", std::to_string(test.differences[0].compared) + unit +
                                                " of " + std::to_string(test.samples_a) + " and " +
                                                std::to_string(test.samples_b));
  text += report_row("shift", test.shift ? shift_text(test, test.shift->samples)
                                         : "not found: the two are not alike");
  if (test.shift)
    text += report_row("gain", fixed(amplitude_db(test.shift->gain), 2) + " dB" +
                                   (test.shift->gain < 0 ? ", of the other polarity" : ""));
  for (const Difference& one : test.differences) {
    text += one.shift == 0
                ? "  what is left:\n"
                : "  what is left with " + std::to_string(one.compared) + unit + " shifted:\n";
    text +=
        left_table(one.left, test.a.is_dsd ? "differing bits" : "differing samples", one.differing);
  }
  return text;
}

Json null_json(const NullTest& test) {
  Json json;
  json["kind"] = test.a.is_dsd ? "dsd" : "pcm";
  json["rate_hz"] = test.a.rate_hz;
  json["samples"] = {test.samples_a, test.samples_b};
  json["shift_samples"] = nullptr;
  json["gain_db"] = nullptr;
  json["inverted"] = nullptr;
  if (test.shift) {
    json["shift_samples"] = test.shift->samples;
    json["gain_db"] = number(amplitude_db(test.shift->gain), 3);
    json["inverted"] = test.shift->gain < 0;
  }
  json["differences"] = Json::array();
  for (const Difference& one : test.differences) {
    Json difference;
    difference["shift_samples"] = one.shift;
    difference["compared_samples"] = one.compared;
    difference["channels"] = Json::array();
    const Json left = report_json(one.left);
    for (size_t i = 0; i < one.differing.size(); ++i) {
      const Json& all = left["channels"][i];
      Json channel;
      channel["name"] = all["name"];
      channel["differing"] = one.differing[i];
      for (const char* key : {"sample_peak_dbfs", "rms_dbfs", "dc", "bands"})
        channel[key] = all[key];
      difference["channels"].push_back(std::move(channel));
    }
    json["differences"].push_back(std::move(difference));
  }
  return json;
}

}  // namespace corvin::cli
