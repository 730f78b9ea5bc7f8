// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to a WAV file, by the studio engine.

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <memory>
#include <string>

#include "cli/convert/convert.h"
#include "cli/convert/studio_settings.h"
#include "cli/files/output_file.h"
#include "cli/files/wav_writer.h"
#include "cli/words/progress_line.h"

namespace corvin::cli {
namespace {

struct Encoding {
  const char* name;  // as given
  const char* words;
  uint32_t format;
  WavEncoding wav;
  size_t bytes;
};

constexpr Encoding kEncodings[] = {
    {"24", "24 bits", CORVIN_S24, WavEncoding::k24, 3},
    {"16", "16 bits", CORVIN_S16, WavEncoding::k16, 2},
    {"32", "32 bits", CORVIN_S32, WavEncoding::k32, 4},
    {"float", "32-bit float", CORVIN_F32, WavEncoding::kFloat, 4},
};

const Encoding& encoding_of(const std::string& bits) {
  const auto found = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                                  [&](const Encoding& one) { return bits == one.name; });
  return found == std::end(kEncodings) ? kEncodings[0] : *found;
}

// What the conversion's callbacks work on.
struct Job {
  const ConvertOptions& options;
  const Encoding& encoding;
  OutputFile& output;
  std::unique_ptr<WavWriter> writer = {};
  size_t bytes_per_frame = 0;
  ProgressLine line = {};
};

int begin(void* user, const corvin_pcm_format* format) {
  auto& job = *static_cast<Job*>(user);
  job.bytes_per_frame = format->channels * job.encoding.bytes;
  job.writer = std::make_unique<WavWriter>(
      WavWriter::Config{.descriptor = job.output.descriptor(),
                        .rate_hz = static_cast<int>(format->pcm_rate),
                        .channels = static_cast<int>(format->channels),
                        .speakers = format->speakers,
                        .encoding = job.encoding.wav,
                        .expected_bytes = format->frames * job.bytes_per_frame});
  return job.writer->error().empty() ? 0 : 1;
}

int write(void* user, const void* frames, size_t count) {
  auto& job = *static_cast<Job*>(user);
  const auto* bytes = static_cast<const uint8_t*>(frames);
  return job.writer->write({bytes, count * job.bytes_per_frame}) ? 0 : 1;
}

bool is_studio_rate(int rate_hz) {
  for (int times = 1; times <= 16; times *= 2)
    if (rate_hz == times * 44100 || rate_hz == times * 48000) return true;
  return false;
}

corvin_convert_settings settings_of(const ConvertOptions& options, int rate_hz, Job& job) {
  corvin_convert_settings settings = studio_settings(options, job.line);
  settings.pcm_rate = static_cast<uint32_t>(rate_hz);
  settings.format = job.encoding.format;
  if (options.dither == "none") settings.dither = CORVIN_DITHER_NONE;
  if (options.dither == "shaped") settings.dither = CORVIN_DITHER_SHAPED;
  if (options.phase == "minimum") settings.phase = CORVIN_MINIMUM_PHASE;
  return settings;
}

Failure failure_of(int status, const StudioSource& source) {
  if (status == CORVIN_E_UNSUPPORTED)
    return {kBadInput, "has a rate of " + std::to_string(source.info().dsd_rate) +
                           " Hz, which the studio engine does not convert; --engine classic may"};
  return {kBadInput, corvin_strerror(status)};
}

}  // namespace

ExitCode convert_to_wav(const ConvertOptions& options, StudioSource& source) {
  const corvin_file_info& info = source.info();
  if (!options.modulator.empty()) return report("--modulator", {kUsage, "is for DSD files"});
  int rate_hz = default_pcm_rate_hz(info.dsd_rate);
  if (!options.rate.empty()) {
    rate_hz = parse_rate_hz(options.rate, 16 * 48000);
    if (!is_studio_rate(rate_hz))
      return report("--rate", {kUsage, options.rate + " is not 44100 or 48000 times 1, 2, 4, 8 or "
                                                      "16; --engine classic takes other rates"});
  }
  if (const auto problem = source.problem()) return report(options.input, {kBadInput, *problem});

  OutputFile output(
      {.path = options.output, .input_path = options.input, .overwrite = options.overwrite});
  if (const auto failure = output.open()) return report(options.output, *failure);

  const Encoding& encoding = encoding_of(options.bits);
  corvin_convert_report result{};
  result.size = sizeof result;
  Job job{.options = options, .encoding = encoding, .output = output};
  const corvin_convert_settings settings = settings_of(options, rate_hz, job);
  const corvin_pcm_sink sink = {sizeof sink, &job, begin, write};
  job.line.show(0);
  const int status = corvin_convert_to_pcm(source.handle(), &settings, &sink, &result);
  job.line.clear();
  if (status == CORVIN_E_WRITE) return report(options.output, {kWriteError, job.writer->error()});
  if (status != CORVIN_OK) return report(options.input, failure_of(status, source));
  if (result.frames == 0 && info.stated_samples != 0)
    return report(options.input, {kBadInput, "holds no sound that can be converted"});
  if (!job.writer->finish()) return report(options.output, {kWriteError, job.writer->error()});
  if (const auto failure = output.commit()) return report(options.output, *failure);

  source.note_warnings(options.input);
  if (result.frames == 0) note(options.input, "holds no sound");
  if (result.clips != 0)
    note(options.input, std::to_string(result.clips) + " sample" + (result.clips == 1 ? "" : "s") +
                            " beyond full scale clipped; a lower --gain avoids that");
  std::printf("%s: %d Hz, %s, %" PRIu32 " channel%s, %s, %s\n", options.output.c_str(), rate_hz,
              encoding.words, info.channels, info.channels == 1 ? "" : "s",
              duration_text(result.frames, static_cast<uint32_t>(rate_hz)).c_str(),
              level_text(result.peak).c_str());
  return kDone;
}

}  // namespace corvin::cli
