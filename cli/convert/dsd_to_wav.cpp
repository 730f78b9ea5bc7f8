// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to PCM.

#include <memory>
#include <string>

#include "cli/convert/engine_run.h"
#include "cli/convert/ways.h"
#include "cli/files/pcm_writer.h"
#include "cli/files/tagged_file.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

std::string format_name(corvin_sample_format format) {
  const std::string bits = std::to_string(bits_of(format));
  return is_float(format) ? bits + "-bit float" : bits + " bits";
}

// The frames are close enough to tell whether they fit.
PcmWriterConfig config_of(const WavRequest& request, const corvin_file_info& info) {
  const double seconds = static_cast<double>(info.samples) / info.dsd_rate;
  return {.kind = request.kind,
          .rate_hz = request.settings.pcm_rate,
          .channels = info.channels,
          .speakers = info.speakers,
          .format = static_cast<corvin_sample_format>(request.settings.format),
          .expected_frames = static_cast<uint64_t>(seconds * request.settings.pcm_rate)};
}

// Tags that cannot be had are no reason to lose the sound.
TagSet tags_of(DsdInput& input) {
  try {
    return input.file().all_tags();
  } catch (const Error& error) {
    note_damage(input.path(), std::string("its tags are left out: ") + error.what());
    return {};
  }
}

}  // namespace

void convert_dsd_to_wav(const WavRequest& request, DsdInput& input) {
  input.require_sound();
  const TagSet tags = tags_of(input);
  PcmWriterConfig config = config_of(request, input.info());
  config.tags = &tags;
  if (const std::string why = why_not_writable(config); !why.empty())
    throw Failure(kUsage, request.output.path, why);
  OutputFile output(request.output);
  const auto failure = [&](const std::string& why) {
    return Failure(kWriteError, request.output.path, why);
  };

  const corvin_file_info& info = input.info();
  const uint32_t rate_hz = config.rate_hz;
  const size_t bytes_per_frame = config.channels * bytes_of(config.format);
  std::unique_ptr<PcmWriter> writer;
  const auto begin = [&](const corvin_pcm_format& pcm) {
    config.descriptor = output.descriptor();
    config.expected_frames = pcm.frames;
    writer = make_pcm_writer(config);
    return writer->error().empty();
  };
  const auto write = [&](const void* frames, size_t count) {
    return writer->write({static_cast<const uint8_t*>(frames), count * bytes_per_frame});
  };
  const auto convert = [&](const ConvertSettings& settings, const Progress& progress) {
    return convert_to_pcm(input.file(), PcmSink{begin, write}, settings, progress);
  };
  const corvin_convert_report result = run_engine(
      request.settings, convert,
      {.input_path = input.path(),
       .input_rate_hz = info.dsd_rate,
       .why_writing = [&] { return failure(writer ? writer->error() : "out of memory"); },
       .advice = "; --engine classic may"});
  if (result.frames == 0 && info.stated_samples != 0) throw no_convertible_sound(input.path());
  if (!writer->finish()) throw failure(writer->error());
  output.commit();

  input.note_warnings();
  note_left_out(request.output.path, config.kind, tags);
  if (result.frames == 0) note_no_sound(input.path());
  note_clips(input.path(), result.clips, "; a lower --gain avoids that");
  print_summary(request.output.path,
                {std::to_string(rate_hz) + " Hz", format_name(config.format),
                 counted(info.channels, "channel"), duration_text(result.frames, rate_hz),
                 level_text(result.peak)});
}

}  // namespace corvin::cli
