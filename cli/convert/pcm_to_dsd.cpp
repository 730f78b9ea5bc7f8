// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from PCM to a DSD file, by the studio engine.

#include <span>
#include <string>

#include "cli/classic/dsd_source.h"
#include "cli/convert/convert.h"
#include "cli/convert/studio_settings.h"
#include "cli/files/dsd_output.h"
#include "cli/files/pcm_source.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/exit_code.h"
#include "corvin.h"

namespace corvin::cli {
namespace {

int64_t read_frames(void* user, void* frames, size_t count) {
  auto& source = *static_cast<PcmSource*>(user);
  const size_t samples = count * static_cast<size_t>(source.channels());
  return static_cast<int64_t>(source.read(std::span(static_cast<double*>(frames), samples)));
}

}  // namespace

ExitCode convert_to_dsd(const ConvertOptions& options) {
  PcmSource source;
  if (const auto failure = source.open(options.input)) return report(options.input, *failure);
  if (container_of(options.output) == 0)
    return report(options.output,
                  {kUsage, "PCM is converted to DSD, so the name must end in .dsf, .dff or .1bit"});
  if (const char* option = options.wav_option())
    return report(option, {kUsage, "is for WAV files"});
  const std::string rate = options.rate.empty() ? "dsd64" : options.rate;
  const auto pcm_rate = static_cast<uint32_t>(source.rate_hz());
  const uint32_t dsd_rate = studio_dsd_rate_hz(rate, is_48k_family(pcm_rate));
  if (dsd_rate == 0)
    return report("--rate", {kUsage, rate + " is not dsd64, dsd128, dsd256 or dsd512, nor one of "
                                            "these rates in Hz; --engine classic takes others"});

  DsdOutput output({.path = options.output,
                    .input_path = options.input,
                    .overwrite = options.overwrite,
                    .dsd_rate = dsd_rate,
                    .channels = static_cast<uint32_t>(source.channels()),
                    .speakers = source.speakers()});
  if (const auto failure = output.open()) return report(options.output, *failure);
  Tags tags;
  read_pcm_tags(options.input, source, tags);
  corvin_writer_set_tags(output.writer(), &tags);

  const auto declared = source.declared_frames();
  corvin_pcm_source pcm{};
  pcm.size = sizeof pcm;
  pcm.pcm_rate = pcm_rate;
  pcm.channels = static_cast<uint32_t>(source.channels());
  pcm.format = CORVIN_F64;
  pcm.frames = declared.value_or(0);
  pcm.user = &source;
  pcm.read = read_frames;
  corvin_convert_report result{};
  result.size = sizeof result;
  int status = CORVIN_OK;
  {
    ProgressLine line;
    const corvin_convert_settings settings = studio_settings(options, line);
    status = corvin_convert_to_dsd(&pcm, output.writer(), &settings, &result);
  }
  if (status == CORVIN_E_UNSUPPORTED)
    return report(options.input, {kBadInput, "has a rate of " + std::to_string(pcm_rate) +
                                                 " Hz, which the studio engine does not convert"});
  if (status == CORVIN_OK && result.frames == 0 && declared)
    return report(options.input, {kBadInput, "holds no sound that can be converted"});
  const ExitCode code = output.finish(status, result, duration_text(result.frames, pcm_rate),
                                      ", " + level_text(result.peak));
  if (code != kDone) return code;
  if (result.frames == 0) note(options.input, "holds no sound");
  if (result.frames < declared.value_or(0))
    note(options.input, "is cut short: it declares more sound than it holds");
  return kDone;
}

}  // namespace corvin::cli
