// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from a DSD file to another one: of another rate, level or band through the engine,
// else bit for bit.

#include <string>

#include "cli/convert/engine_run.h"
#include "cli/convert/verify.h"
#include "cli/convert/ways.h"
#include "cli/files/dsd_output.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

// DSDIFF and 1bit know whole bytes only, so the last one may be filled up with silence.
void verify_copy(DsdInput& input, const DsdOutput& output, const std::string& name) {
  DsdInput copy = DsdInput::open_dsd(output.path());
  const DsdPayload from = dsd_payload_of(input.file(), name);
  const DsdPayload to = dsd_payload_of(copy.file(), name);
  if ((from.samples + 7) / 8 != (to.samples + 7) / 8 || !XXH128_isEqual(from.hash, to.hash))
    throw verification_failed(name, "its samples are others");
}

}  // namespace

Converted convert_dsd_to_dsd(const DsdRequest& request, DsdInput& input) {
  input.require_sound();
  if (request.care.strict) input.require_whole();
  const corvin_file_info& info = input.info();
  DsdOutput output({.file = request.output,
                    .container = request.container,
                    .dsd_rate_hz = request.dsd_rate_hz,
                    .channels = input.channels_of(request.settings),
                    .speakers = input.speakers_of(request.settings),
                    .verify = request.care.verify});
  output.set_tags(input.tags());

  const uint64_t count = request.settings.sample_count;
  const bool is_whole = count == 0 && !request.settings.channel_map;
  const bool is_copied = request.dsd_rate_hz == info.dsd_rate && !request.changes_sound;
  const auto convert = [&](const ConvertSettings& settings, const Progress& progress) {
    if (!is_copied) return convert_dsd_rate(input.file(), output.writer(), settings, progress);
    convert_copy(input.file(), output.writer(), settings, progress);
    return corvin_convert_report{};
  };
  const corvin_convert_report result =
      run_engine(request.settings, convert,
                 {
                     .input_path = input.path(),
                     .input_rate_hz = info.dsd_rate,
                     .why_writing = [&] { return output.write_failure(); },
                 });
  if (request.care.verify && is_copied && is_whole) verify_copy(input, output, request.output.path);
  output.commit();
  const uint64_t samples = count ? count : info.samples;
  note_limited(input.path(), result.limited);
  output.print_summary(duration_text(samples, info.dsd_rate),
                       is_copied ? "" : level_text(result.peak));
  input.note_warnings();
  if (info.samples == 0) note_no_sound(input.path());
  Converted converted{.seconds = static_cast<double>(samples) / info.dsd_rate};
  if (!is_copied) converted.peak = result.peak;
  return converted;
}

}  // namespace corvin::cli
