// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from PCM to a DSD file, by the classic engine.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/classic/dsd_header_repair.h"
#include "cli/classic/dsd_source.h"
#include "cli/classic/level_meter.h"
#include "cli/classic/pcm_feed.h"
#include "cli/convert/convert.h"
#include "cli/files/output_file.h"
#include "cli/files/pcm_source.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/exit_code.h"
#include "cli/words/progress_line.h"
#include "corvin.h"

namespace corvin::cli {
namespace {

constexpr int kMinDsdRateHz = 64 * 44100;
constexpr int kMaxDsdRateHz = 256 * 48000;
constexpr int kMaxChannels = 8;

bool go_on(int percent, void* data) {
  static_cast<ProgressLine*>(data)->show(percent);
  return true;
}

// 0: the rate is none of those that --help lists.
int dsd_rate_hz(const std::string& text, int pcm_rate_hz) {
  const int base_hz = is_48k_family(static_cast<uint32_t>(pcm_rate_hz)) ? 48000 : 44100;
  for (const int multiple : {64, 128, 256})
    if (text == "dsd" + std::to_string(multiple)) return multiple * base_hz;
  const int rate_hz = parse_rate_hz(text, kMaxDsdRateHz);
  return rate_hz >= kMinDsdRateHz ? rate_hz : 0;
}

// Whether rate / base_hz is a power of two.
bool is_octave_of(int base_hz, int rate_hz) {
  return rate_hz % base_hz == 0 && std::has_single_bit(static_cast<unsigned>(rate_hz / base_hz));
}

// The library converts every pair of rates, but others than these at a level that is far off.
bool is_planned(int pcm_rate_hz, int dsd_rate_hz) {
  const auto is_of_a_family = [](int rate_hz) {
    return is_octave_of(44100, rate_hz) || is_octave_of(48000, rate_hz);
  };
  return is_of_a_family(pcm_rate_hz) && pcm_rate_hz <= 768000 && is_of_a_family(dsd_rate_hz);
}

std::optional<Failure> check_source(const PcmSource& source, int kind, int dsd_rate_hz) {
  const int most = std::min(max_channels(kind), kMaxChannels);
  const std::string name = kind_name(static_cast<uint32_t>(kind));
  if (source.channels() > most)
    return Failure{source.channels() > kMaxChannels ? kBadInput : kUsage,
                   "has " + std::to_string(source.channels()) + " channels; " + name +
                       " takes up to " + std::to_string(most)};
  if (!is_planned(source.rate_hz(), dsd_rate_hz))
    return Failure{kBadInput, "has a rate of " + std::to_string(source.rate_hz()) +
                                  " Hz, for which there is no filter to " +
                                  std::to_string(dsd_rate_hz) + " Hz"};
  return {};
}

// The library does not tell why it failed; one more write to the same file does.
std::string why_writing_failed(int descriptor) {
  char block[4096] = {};
  struct stat status {};
  errno = 0;
  if (fstat(descriptor, &status) != 0 ||
      pwrite(descriptor, block, sizeof block, status.st_size) >= 0 || errno == 0)
    return "cannot be written";
  return std::strerror(errno);
}

}  // namespace

ExitCode convert_to_dsd_classic(const ConvertOptions& options) {
  PcmSource source;
  if (const auto failure = source.open(options.input)) return report(options.input, *failure);
  const int kind = container_of(options.output);
  if (kind == 0)
    return report(options.output,
                  {kUsage, "PCM is converted to DSD, so the name must end in .dsf, .dff or .1bit"});
  if (const char* option = options.wav_option())
    return report(option, {kUsage, "is for WAV files"});
  if (const char* option = options.studio_option())
    return report(option, {kUsage, "needs the studio engine"});
  const std::string rate = options.rate.empty() ? "dsd64" : options.rate;
  const int rate_hz = dsd_rate_hz(rate, source.rate_hz());
  if (rate_hz == 0)
    return report("--rate", {kUsage, rate +
                                         " is neither dsd64, dsd128 nor dsd256, nor a whole "
                                         "number from " +
                                         std::to_string(kMinDsdRateHz) + " to " +
                                         std::to_string(kMaxDsdRateHz)});
  if (const auto failure = check_source(source, kind, rate_hz))
    return report(options.input, *failure);

  OutputFile output(
      {.path = options.output, .input_path = options.input, .overwrite = options.overwrite});
  if (const auto failure = output.open()) return report(options.output, *failure);

  AudioStreamBasicDescription format{};
  format.mSampleRate = source.rate_hz();
  format.mChannelsPerFrame = static_cast<uint32_t>(source.channels());
  format.mBitsPerChannel = static_cast<uint32_t>(source.bits());
  LevelMeter level(source.bits(), true);
  const auto declared = source.declared_frames();
  uint64_t frames = declared ? *declared : source.count_frames();
  Tags tags;
  if (kind == 2) read_pcm_tags(options.input, source, tags);
  bool is_cut_short = false;
  int result = 0;
  for (;;) {
    if (const auto failure = source.open(options.input)) return report(options.input, *failure);
    level = LevelMeter(source.bits(), true);
    uint64_t held = 0;
    {
      ProgressLine progress;
      progress.show(0);
      feed_pcm(
          [&](std::span<uint8_t> buffer) {
            const size_t bytes = source.read(buffer);
            level.add(buffer.first(bytes));
            held += bytes / source.bytes_per_frame();
            return bytes;
          },
          [&](std::FILE* pcm) {
            result = PCMtoDSD(kind, static_cast<long long>(frames * source.bytes_per_frame()), pcm,
                              output.path().c_str(), rate_hz, go_on, format, &progress, &tags);
          });
    }
    if (result != 0)
      return report(options.output, {kWriteError, why_writing_failed(output.descriptor())});
    if (held >= frames) break;
    // The header is written first, by the length that the source declares: once more, by what it
    // turned out to hold.
    is_cut_short = true;
    frames = held;
  }
  if (is_cut_short && frames == 0)
    return report(options.input, {kBadInput, "holds no sound that can be converted"});
  if (!repair_header(output.descriptor(), kind, source.channels()))
    return report(options.output, {kWriteError, std::strerror(errno)});
  if (const auto failure = output.commit()) return report(options.output, *failure);

  if (frames == 0) note(options.input, "holds no sound");
  if (is_cut_short) note(options.input, "is cut short: it declares more sound than it holds");
  if (source.clipped() != 0)
    note(options.input, std::to_string(source.clipped()) + " sample" +
                            (source.clipped() == 1 ? "" : "s") + " beyond full scale clipped");
  std::printf(
      "%s: %s, %s, %d channel%s, %s, %s\n", options.output.c_str(),
      kind_name(static_cast<uint32_t>(kind)), rate_name(static_cast<uint32_t>(rate_hz)).c_str(),
      source.channels(), source.channels() == 1 ? "" : "s",
      duration_text(frames, static_cast<uint32_t>(source.rate_hz())).c_str(), level.text().c_str());
  return kDone;
}

}  // namespace corvin::cli
