// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to a WAV file, by the classic engine.

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "cli/classic/dsd_source.h"
#include "cli/classic/level_meter.h"
#include "cli/classic/pcm_pipe.h"
#include "cli/convert/convert.h"
#include "cli/files/output_file.h"
#include "cli/files/wav_writer.h"
#include "cli/words/exit_code.h"
#include "cli/words/progress_line.h"
#include "corvin.h"

namespace corvin::cli {
namespace {

constexpr int kMaxRateHz = 768000;

// What the conversion's progress callback works on.
struct Watch {
  ProgressLine line;
  const PcmPipe& pipe;
};

bool go_on(int percent, void* data) {
  auto* watch = static_cast<Watch*>(data);
  watch->line.show(percent);
  return !watch->pipe.refused();
}

uint64_t expected_frames(const DSD_INFO& info, int rate_hz) {
  // In two parts, as the product of a long file's length and a high rate may pass 64 bits.
  const uint64_t seconds = info.sampleCount / info.samplingFrequency;
  const uint64_t rest = info.sampleCount % info.samplingFrequency;
  return seconds * rate_hz + rest * rate_hz / info.samplingFrequency;
}

}  // namespace

ExitCode convert_to_wav_classic(const ConvertOptions& options, const DsdSource& source) {
  const DSD_INFO& info = source.info;
  if (container_of(options.output) != 0)
    return report(options.output,
                  {kUsage, "a DSD file is converted to WAV, which this name denies"});
  int rate_hz = default_pcm_rate_hz(info.samplingFrequency);
  if (!options.rate.empty()) {
    rate_hz = parse_rate_hz(options.rate, kMaxRateHz);
    if (rate_hz == 0)
      return report("--rate", {kUsage, options.rate + " is no whole number from 1 to " +
                                           std::to_string(kMaxRateHz)});
  }
  if (static_cast<uint32_t>(rate_hz) > info.samplingFrequency)
    return report(options.input,
                  {kUsage, "its rate of " + std::to_string(info.samplingFrequency) +
                               " Hz is below the " + std::to_string(rate_hz) + " Hz asked for"});
  if (const char* option = options.studio_option())
    return report(option, {kUsage, "is not for the classic engine"});
  const int bits = options.bits.empty() ? 24 : std::stoi(options.bits);

  OutputFile output(
      {.path = options.output, .input_path = options.input, .overwrite = options.overwrite});
  if (const auto failure = output.open()) return report(options.output, *failure);

  const int channels = info.channels == 1 ? 1 : 2;
  const size_t bytes_per_frame = static_cast<size_t>(channels * bits / 8);
  WavWriter writer({.descriptor = output.descriptor(),
                    .rate_hz = rate_hz,
                    .channels = channels,
                    .encoding = encoding_of_bits(bits),
                    .expected_bytes = expected_frames(info, rate_hz) * bytes_per_frame});
  if (!writer.error().empty()) return report(options.output, {kWriteError, writer.error()});

  LevelMeter level(bits);
  uint64_t frames = 0;
  int result = 0;
  {
    PcmPipe pipe;
    Watch watch{{}, pipe};
    watch.line.show(0);
    pipe.run(
        bytes_per_frame,
        [&](std::FILE* stream) {
          result =
              DSDtoPCM(options.input.c_str(), stream, go_on, &watch, 0, 0, rate_hz, bits, false);
        },
        [&](std::span<const uint8_t> pcm) {
          level.add(pcm);
          frames += pcm.size() / bytes_per_frame;
          return writer.write(pcm);
        });
  }
  if (!writer.error().empty()) return report(options.output, {kWriteError, writer.error()});
  const uint64_t expected = expected_frames(info, rate_hz);
  if (result != 0) return report(options.input, {kBadInput, "cannot be converted"});
  if (frames == 0 && expected != 0)
    return report(options.input, {kBadInput, "holds no sound that can be converted"});
  if (!writer.finish()) return report(options.output, {kWriteError, writer.error()});
  if (const auto failure = output.commit()) return report(options.output, *failure);

  if (info.channels > 2)
    note(options.input, "has " + std::to_string(info.channels) +
                            " channels, of which the first two are converted");
  if (expected == 0) note(options.input, "holds no sound");
  if (source.is_cut_short() || frames < expected)
    note(options.input, "is cut short: it declares more sound than it holds");
  std::printf("%s: %d Hz, %d bits, %d channel%s, %s, %s\n", options.output.c_str(), rate_hz, bits,
              channels, channels == 1 ? "" : "s",
              duration_text(frames, static_cast<uint32_t>(rate_hz)).c_str(), level.text().c_str());
  return kDone;
}

}  // namespace corvin::cli
