// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from PCM to a DSD file.

#include <span>

#include "cli/convert/engine_run.h"
#include "cli/convert/ways.h"
#include "cli/files/dsd_output.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {

void convert_pcm_to_dsd(const DsdRequest& request, PcmInput& input) {
  DsdOutput output({.file = request.output,
                    .container = request.container,
                    .dsd_rate_hz = request.dsd_rate_hz,
                    .channels = input.channels(),
                    .speakers = input.speakers()});
  output.set_tags(read_pcm_tags(input));

  const auto declared = input.declared_frames();
  const auto read = [&](void* frames, size_t count) {
    const std::span samples(static_cast<double*>(frames), count * input.channels());
    return static_cast<int64_t>(input.read(samples));
  };
  const PcmSource source = {.pcm_rate = input.rate_hz(),
                            .channels = input.channels(),
                            .format = CORVIN_F64,
                            .frames = declared.value_or(0),
                            .read = read};
  const auto convert = [&](const ConvertSettings& settings, const Progress& progress) {
    return convert_to_dsd(source, output.writer(), settings, progress);
  };
  const corvin_convert_report result =
      run_engine(request.settings, convert,
                 {
                     .input_path = input.path(),
                     .input_rate_hz = input.rate_hz(),
                     .why_writing = [&] { return output.write_failure(); },
                 });
  if (result.frames == 0 && declared) throw no_convertible_sound(input.path());
  output.commit();
  note_limited(input.path(), result.limited);
  output.print_summary(duration_text(result.frames, input.rate_hz()), level_text(result.peak));
  if (result.frames == 0) note_no_sound(input.path());
  if (result.frames < declared.value_or(0)) note_cut_short(input.path());
}

}  // namespace corvin::cli
