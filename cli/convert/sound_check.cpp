// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/sound_check.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "cli/convert/engine_run.h"
#include "cli/files/payload.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;

// Of DSD the idle patterns leave less than this behind the decoder's filters; of PCM nothing is
// that quiet but silence with dither of 17 bits or more.
constexpr double kSilence = 1e-5;

// Modulators move their noise up to the highest frequencies, so most bits differ from the one before:
// three of four in silence, 63 % of a full-scale sine and 55 % of a full-scale square wave by the
// library's own. Of random bits, packed data and the like it is half of them, of a stuck channel none.
constexpr double kLeastChange = 0.53;

/** How many neighbouring bits of each channel differ. */
class BitChanges {
 public:
  explicit BitChanges(uint32_t channels) : changes_(channels) {}

  void add(std::span<const uint8_t> interleaved) {
    const size_t channels = changes_.size();
    for (size_t i = 0; i < interleaved.size(); ++i) {
      const uint32_t byte = interleaved[i];
      changes_[i % channels] += static_cast<uint64_t>(std::popcount((byte ^ byte >> 1) & 0x7f));
    }
    pairs_ += 7 * (interleaved.size() / channels);
  }

  /** Of the channel that has the fewest; 1 without sound. */
  double least() const {
    if (pairs_ == 0) return 1;
    const auto least = *std::min_element(changes_.begin(), changes_.end());
    return static_cast<double>(least) / static_cast<double>(pairs_);
  }

 private:
  std::vector<uint64_t> changes_;
  uint64_t pairs_ = 0;
};

void judge_level(double peak, SoundCheck& check) {
  check.peak = peak;
  if (check.samples == 0) return;
  if (peak < kSilence) check.remarks.emplace_back("is silent");
  if (peak > 1)
    check.remarks.push_back("goes beyond full scale: " + level_text(peak) +
                            ", which PCM of integers clips");
}

double decoded_peak(DsdInput& input, const std::string& name) {
  ConvertSettings settings;
  settings.pcm_rate = default_pcm_rate_hz(input.info().dsd_rate);
  settings.format = CORVIN_F64;
  const auto ignore = [](const void*, size_t) { return true; };
  const auto convert = [&](const ConvertSettings& all, const Progress& progress) {
    return convert_to_pcm(input.file(), PcmSink{{}, ignore}, all, progress);
  };
  return run_engine(settings, convert,
                    {.input_path = name,
                     .input_rate_hz = input.info().dsd_rate,
                     .why_writing = [&] { return Failure(kBadInput, name, "out of memory"); }})
      .peak;
}

}  // namespace

SoundCheck check_sound(DsdInput& input, const std::string& name, bool decode) {
  input.require_sound();
  const corvin_file_info& info = input.info();
  SoundCheck check;
  BitChanges changes(info.channels);
  try {
    JobProgress progress(name, info.dsd_rate);
    read_payload(input.file(), [&](std::span<const uint8_t> bytes, uint64_t done) {
      check.samples = done;
      if (decode) changes.add(bytes);
      progress.show(done, info.samples);
    });
  } catch (const Error& error) {
    const int why = error.system_error();
    check.damage.push_back("cannot be read beyond sample " + std::to_string(check.samples) + ": " +
                           (why != 0 ? std::strerror(why) : error.what()));
    return check;
  }
  if (!decode) return check;
  judge_level(decoded_peak(input, name), check);
  if (check.samples > 0 && changes.least() < kLeastChange)
    check.remarks.emplace_back("does not look like DSD: too few of its bits change");
  return check;
}

SoundCheck check_sound(PcmInput& input, const std::string& name, bool decode) {
  SoundCheck check;
  double peak = 0;
  JobProgress progress(name, input.rate_hz());
  std::vector<double> samples(kFramesAtOnce * input.channels());
  while (const size_t frames = input.read(samples)) {
    check.samples += frames;
    progress.show(check.samples, input.declared_frames().value_or(0));
    if (!decode) continue;
    for (const double sample : std::span(samples).first(frames * input.channels()))
      peak = std::max(peak, std::abs(sample));
  }
  if (std::string damage = input.damage(); !damage.empty())
    check.damage.push_back(std::move(damage));
  if (decode) judge_level(peak, check);
  return check;
}

}  // namespace corvin::cli
