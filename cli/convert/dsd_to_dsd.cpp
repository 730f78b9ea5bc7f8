// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to another one: of another rate or level through the studio engine,
// else bit for bit.

#include <string>

#include "cli/classic/dsd_source.h"
#include "cli/convert/convert.h"
#include "cli/convert/studio_settings.h"
#include "cli/files/dsd_output.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/exit_code.h"
#include "corvin.h"

namespace corvin::cli {

ExitCode convert_dsd_to_dsd(const ConvertOptions& options, StudioSource& source) {
  const corvin_file_info& info = source.info();
  if (const char* option = options.wav_option())
    return report(option, {kUsage, "is for WAV files"});
  uint32_t dsd_rate = info.dsd_rate;
  if (!options.rate.empty()) {
    dsd_rate = studio_dsd_rate_hz(options.rate, is_48k_family(info.dsd_rate));
    if (dsd_rate == 0)
      return report("--rate",
                    {kUsage, options.rate + " is not dsd64, dsd128, dsd256 or dsd512, nor "
                                            "one of these rates in Hz"});
  }
  if (const auto problem = source.problem()) return report(options.input, {kBadInput, *problem});

  DsdOutput output({.path = options.output,
                    .input_path = options.input,
                    .overwrite = options.overwrite,
                    .dsd_rate = dsd_rate,
                    .channels = info.channels,
                    .speakers = info.speakers});
  if (const auto failure = output.open()) return report(options.output, *failure);
  Tags tags;
  if (corvin_file_get_tags(source.handle(), &tags) == CORVIN_OK)
    corvin_writer_set_tags(output.writer(), &tags);

  const bool is_copied = dsd_rate == info.dsd_rate && options.gain_db.empty();
  corvin_convert_report result{};
  result.size = sizeof result;
  int status = CORVIN_OK;
  {
    ProgressLine line;
    const corvin_convert_settings settings = studio_settings(options, line);
    status = is_copied
                 ? corvin_convert_copy(source.handle(), output.writer(), &settings)
                 : corvin_convert_dsd_rate(source.handle(), output.writer(), &settings, &result);
  }
  if (status == CORVIN_E_UNSUPPORTED)
    return report(options.input, {kBadInput, "has a rate of " + std::to_string(info.dsd_rate) +
                                                 " Hz, which the studio engine does not convert"});
  const ExitCode code = output.finish(status, result, duration_text(info.samples, info.dsd_rate),
                                      is_copied ? "" : ", " + level_text(result.peak));
  if (code != kDone) return code;
  source.note_warnings(options.input);
  if (info.samples == 0) note(options.input, "holds no sound");
  return kDone;
}

}  // namespace corvin::cli
