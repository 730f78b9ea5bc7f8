// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to PCM.

#include <memory>
#include <string>
#include <vector>

#include "cli/convert/engine_run.h"
#include "cli/convert/pcm_chain.h"
#include "cli/convert/true_peak.h"
#include "cli/convert/verify.h"
#include "cli/convert/ways.h"
#include "cli/files/pcm_writer.h"
#include "cli/files/tagged_file.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

std::string format_name(corvin_sample_format format) {
  if (format == CORVIN_S20) return "20 bits";
  const std::string bits = std::to_string(bits_of(format));
  return is_float(format) ? bits + "-bit float" : bits + " bits";
}

// The frames are close enough to tell whether they fit.
PcmWriterConfig config_of(const PcmRequest& request, const DsdInput& input) {
  const uint64_t count = request.settings.sample_count;
  const double seconds =
      static_cast<double>(count ? count : input.info().samples) / input.info().dsd_rate;
  const auto format = static_cast<corvin_sample_format>(request.settings.format);
  return {.kind = request.kind,
          .rate_hz = request.rate_hz,
          .channels = input.channels_of(request.settings),
          .speakers = input.speakers_of(request.settings),
          .format = format == CORVIN_S20 ? CORVIN_S24 : format,
          .significant_bits = format == CORVIN_S20 ? 20u : 0u,
          .expected_frames = static_cast<uint64_t>(seconds * request.rate_hz)};
}

// The files around an input, as the engine takes them.
class Neighbours {
 public:
  Neighbours(const PcmRequest& request, ConvertSettings& settings) {
    open(request.previous, previous_);
    open(request.next, next_);
    settings.previous = previous_.data();
    settings.previous_count = previous_.size();
    settings.next = next_.data();
    settings.next_count = next_.size();
  }

 private:
  void open(const std::vector<std::string>& paths, std::vector<corvin_file*>& handles) {
    for (const std::string& path : paths) {
      files_.push_back(std::make_unique<DsdInput>(DsdInput::open_dsd(path)));
      handles.push_back(files_.back()->file().handle());
    }
  }

  std::vector<std::unique_ptr<DsdInput>> files_;
  std::vector<corvin_file*> previous_, next_;
};

}  // namespace

Converted convert_dsd_to_pcm(const PcmRequest& request, DsdInput& input) {
  input.require_sound();
  if (request.care.strict) input.require_whole();
  const TagSet tags = input.tags();
  PcmWriterConfig config = config_of(request, input);
  config.tags = &tags;
  if (const std::string why = why_not_writable(config); !why.empty())
    throw Failure(kUsage, request.output.path, why);
  OutputFile output(request.output);
  const auto failure = [&](const std::string& why) {
    return Failure(kWriteError, request.output.path, why);
  };

  const corvin_file_info& info = input.info();
  ConvertSettings settings = request.settings;
  const Neighbours neighbours(request, settings);
  PcmChain chain({.engine_rate_hz = settings.pcm_rate,
                  .rate_hz = request.rate_hz,
                  .channels = config.channels,
                  .settings = settings});
  settings.format = chain.engine_format();
  std::unique_ptr<PcmWriter> writer;
  PayloadHash payload;
  const auto write_bytes = [&](std::span<const uint8_t> frames) {
    if (request.care.verify) payload.add(frames);
    return writer->write(frames);
  };
  const auto begin = [&](const corvin_pcm_format& pcm) {
    config.descriptor = output.descriptor();
    config.expected_frames = chain.frames_for(pcm.frames);
    writer = make_pcm_writer(config);
    return writer->error().empty();
  };
  const auto write = [&](const void* frames, size_t count) {
    return write_bytes(chain.run(frames, count));
  };
  const auto convert = [&](const ConvertSettings& all, const Progress& progress) {
    return convert_to_pcm(input.file(), PcmSink{begin, write}, all, progress);
  };
  const corvin_convert_report result =
      run_engine(settings, convert,
                 {.input_path = input.path(), .input_rate_hz = info.dsd_rate, .why_writing = [&] {
                    return failure(writer ? writer->error() : "out of memory");
                  }});
  if (result.frames == 0 && info.stated_samples != 0) throw no_convertible_sound(input.path());
  if (!write_bytes(chain.finish()) || !writer->finish()) throw failure(writer->error());
  if (request.care.verify)
    verify_pcm({.path = output.path(),
                .name = request.output.path,
                .format = config.format,
                .frames = chain.level(result).frames,
                .hash = payload.value()});
  output.commit();

  const PcmLevel level = chain.level(result);
  input.note_warnings();
  note_left_out(request.output.path, config.kind, tags);
  if (level.frames == 0) note_no_sound(input.path());
  note_clips(input.path(), level.clips, "; a lower --gain, or --gain auto, avoids that");
  print_summary(request.output.path,
                {std::to_string(request.rate_hz) + " Hz",
                 format_name(static_cast<corvin_sample_format>(request.settings.format)),
                 counted(config.channels, "channel"), duration_text(level.frames, request.rate_hz),
                 level_text(level.peak)});
  return {.seconds = static_cast<double>(level.frames) / request.rate_hz,
          .peak = level.peak,
          .clips = level.clips};
}

double true_peak_of(const PcmRequest& request, DsdInput& input) {
  input.require_sound();
  ConvertSettings settings = request.settings;
  settings.format = CORVIN_F64;
  settings.gain_db = 0;
  TruePeak peak(settings.pcm_rate, input.channels_of(settings));
  const auto write = [&](const void* frames, size_t count) {
    peak.add(static_cast<const double*>(frames), count);
    return true;
  };
  const auto convert = [&](const ConvertSettings& all, const Progress& progress) {
    return convert_to_pcm(input.file(), PcmSink{{}, write}, all, progress);
  };
  run_engine(settings, convert,
             {.input_path = input.path(),
              .input_rate_hz = input.info().dsd_rate,
              .why_writing = [&] { return Failure(kBadInput, input.path(), "out of memory"); }});
  return peak.largest();
}

}  // namespace corvin::cli
