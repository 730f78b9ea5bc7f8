// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to PCM, by the classic engine.

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "cli/classic/level_meter.h"
#include "cli/classic/pcm_pipe.h"
#include "cli/classic/ways.h"
#include "cli/files/pcm_writer.h"
#include "cli/words/failure.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

// What the conversion's progress callback works on.
struct Watch {
  JobProgress progress;
  const PcmDrain& drain;
};

bool go_on(int percent, void* data) {
  auto* watch = static_cast<Watch*>(data);
  watch->progress.show(static_cast<uint64_t>(percent), 100);
  return !watch->drain.refused();
}

uint64_t expected_frames(const DSD_INFO& info, uint32_t rate_hz) {
  // In two parts, as the product of a long file's length and a high rate may pass 64 bits.
  const uint64_t seconds = info.sampleCount / info.samplingFrequency;
  const uint64_t rest = info.sampleCount % info.samplingFrequency;
  return seconds * rate_hz + rest * rate_hz / info.samplingFrequency;
}

}  // namespace

void convert_dsd_to_wav_classic(const ClassicWavRequest& request, const DsdHeaders& input) {
  const DSD_INFO& info = input.info;
  const uint32_t channels = info.channels == 1 ? 1 : 2;
  const int bits = bits_of(request.format);
  const size_t bytes_per_frame = channels * bytes_of(request.format);
  const uint64_t expected = expected_frames(info, request.rate_hz);
  const auto rate_hz = static_cast<int>(request.rate_hz);

  PcmWriterConfig config{.kind = request.kind,
                         .rate_hz = request.rate_hz,
                         .channels = channels,
                         .format = request.format,
                         .expected_frames = expected};
  if (const std::string why = why_not_writable(config); !why.empty())
    throw Failure(kUsage, request.output.path, why);
  OutputFile output(request.output);
  config.descriptor = output.descriptor();
  const auto writer = make_pcm_writer(config);
  const auto require_written = [&](bool is_written) {
    if (!is_written) throw Failure(kWriteError, request.output.path, writer->error());
  };
  require_written(writer->error().empty());

  LevelMeter level(bits);
  uint64_t frames = 0;
  int result = 0;
  {
    PcmDrain drain;
    const double seconds = static_cast<double>(expected) / rate_hz;
    Watch watch{{input.path, seconds > 0 ? 100 / seconds : 0}, drain};
    watch.progress.show(0, 100);
    drain.run(
        bytes_per_frame,
        [&](std::FILE* stream) {
          result = DSDtoPCM(input.path.c_str(), stream, go_on, &watch, 0, 0, rate_hz, bits, false);
        },
        [&](std::span<const uint8_t> pcm) {
          level.add(pcm);
          frames += pcm.size() / bytes_per_frame;
          return writer->write(pcm);
        });
  }
  require_written(writer->error().empty());
  if (result != 0) throw Failure(kBadInput, input.path, "cannot be converted");
  if (frames == 0 && expected != 0) throw no_convertible_sound(input.path);
  require_written(writer->finish());
  output.commit();

  if (info.channels > 2)
    note(input.path, "has " + std::to_string(info.channels) +
                         " channels, of which the first two are converted");
  if (expected == 0) note_no_sound(input.path);
  if (input.is_cut_short() || frames < expected) note_cut_short(input.path);
  print_summary(request.output.path, {std::to_string(rate_hz) + " Hz",
                                      std::to_string(bits) + " bits", counted(channels, "channel"),
                                      duration_text(frames, request.rate_hz), level.text()});
}

}  // namespace corvin::cli
