// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert: a DSD file to a WAV file.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/dsd_source.h"
#include "cli/exit_code.h"
#include "cli/level_meter.h"
#include "cli/output_file.h"
#include "cli/pcm_pipe.h"
#include "cli/progress_line.h"
#include "cli/wav_writer.h"
#include "corvin.h"

namespace corvin::cli {
namespace {

constexpr int kMaxRateHz = 768000;

struct Options {
  std::string input;
  std::string output;
  int rate_hz = 0;  // 0: chosen by the source's
  int bits = 24;
  bool overwrite = false;
};

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

int default_rate_hz(uint32_t source_rate_hz) {
  return is_48k_family(source_rate_hz) ? 96000 : 88200;
}

uint64_t expected_frames(const DSD_INFO& info, int rate_hz) {
  // In two parts, as the product of a long file's length and a high rate may pass 64 bits.
  const uint64_t seconds = info.sampleCount / info.samplingFrequency;
  const uint64_t rest = info.sampleCount % info.samplingFrequency;
  return seconds * rate_hz + rest * rate_hz / info.samplingFrequency;
}

int run(Options options) {
  DsdSource source;
  if (const auto failure = read_source(options.input, source))
    return report(options.input, *failure);
  const DSD_INFO& info = source.info;
  if (options.rate_hz == 0) options.rate_hz = default_rate_hz(info.samplingFrequency);
  if (static_cast<uint32_t>(options.rate_hz) > info.samplingFrequency)
    return report(options.input, {kUsage, "its rate of " + std::to_string(info.samplingFrequency) +
                                              " Hz is below the " +
                                              std::to_string(options.rate_hz) + " Hz asked for"});

  OutputFile output(
      {.path = options.output, .input_path = options.input, .overwrite = options.overwrite});
  if (const auto failure = output.open()) return report(options.output, *failure);

  const int channels = info.channels == 1 ? 1 : 2;
  const size_t bytes_per_frame = static_cast<size_t>(channels * options.bits / 8);
  WavWriter writer({.descriptor = output.descriptor(),
                    .rate_hz = options.rate_hz,
                    .channels = channels,
                    .bits = options.bits,
                    .expected_bytes = expected_frames(info, options.rate_hz) * bytes_per_frame});
  if (!writer.error().empty()) return report(options.output, {kWriteError, writer.error()});

  LevelMeter level(options.bits);
  uint64_t frames = 0;
  int result = 0;
  {
    PcmPipe pipe;
    Watch watch{{}, pipe};
    watch.line.show(0);
    pipe.run(
        bytes_per_frame,
        [&](std::FILE* stream) {
          result = DSDtoPCM(options.input.c_str(), stream, go_on, &watch, 0, 0, options.rate_hz,
                            options.bits, false);
        },
        [&](std::span<const uint8_t> pcm) {
          level.add(pcm);
          frames += pcm.size() / bytes_per_frame;
          return writer.write(pcm);
        });
  }
  if (!writer.error().empty()) return report(options.output, {kWriteError, writer.error()});
  const uint64_t expected = expected_frames(info, options.rate_hz);
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
  std::printf("%s: %d Hz, %d bits, %d channel%s, %s, %s\n", options.output.c_str(), options.rate_hz,
              options.bits, channels, channels == 1 ? "" : "s",
              duration_text(frames, static_cast<uint32_t>(options.rate_hz)).c_str(),
              level.text().c_str());
  return kDone;
}

}  // namespace

void add_convert_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("convert", "Convert a DSD file to a WAV file");
  auto options = std::make_shared<Options>();
  command->add_option("IN", options->input, "DSDIFF, DSF or 1bit file")->required();
  command->add_option("-o,--output", options->output, "WAV file to write (RF64 above 4 GiB)")
      ->required()
      ->type_name("OUT.wav");
  command
      ->add_option("-r,--rate", options->rate_hz,
                   "PCM rate in Hz, 1 to 768000, not above the DSD rate; by default 96000 for "
                   "multiples of 48 kHz, 88200 for all others")
      ->type_name("HZ")
      ->check([](const std::string& text) {
        int rate_hz = 0;
        return CLI::detail::lexical_cast(text, rate_hz) && rate_hz >= 1 && rate_hz <= kMaxRateHz
                   ? std::string()
                   : text + " is no whole number from 1 to " + std::to_string(kMaxRateHz);
      });
  command->add_option("-b,--bits", options->bits, "Bits per sample, 16, 24 or 32; by default 24")
      ->type_name("N")
      ->check([](const std::string& text) {
        return text == "16" || text == "24" || text == "32" ? std::string()
                                                            : text + " is not 16, 24 or 32";
      });
  command->add_flag("-y,--overwrite", options->overwrite, "Replace OUT.wav if it exists");
  command->callback([options, &exit_code] { exit_code = run(*options); });
}

}  // namespace corvin::cli
