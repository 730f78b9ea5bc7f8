// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <sndfile.h>

#include <string>
#include <vector>

#include "cli/convert/dop.h"
#include "cli/convert/dop_frames.h"
#include "cli/files/dsd_output.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;

void require_samples(const PcmInput& input) {
  constexpr int kWide[] = {SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_ALAC_24,
                           SF_FORMAT_ALAC_32};
  for (const int format : kWide)
    if (input.sample_format() == format) return;
  throw Failure(kBadInput, input.path(), "holds no DSD over PCM, which takes samples of 24 bits");
}

std::string place(uint64_t frame, const PcmInput& input) {
  return "frame " + std::to_string(frame) + " (" + duration_text(frame, input.rate_hz()) + ")";
}

// What is wrong with the markers, a sentence without subject; empty: nothing.
std::string break_of(const DopUnpacker::Report& found, const PcmInput& input) {
  if (found.breaks == 0) return {};
  std::string text = "loses its markers at " + place(found.first_break, input);
  if (found.breaks > 1) text += " and in " + counted(found.breaks - 1, "more place");
  return text + ": " +
         (found.silenced == 0 ? "frames are missing there"
                              : counted(found.silenced, "frame") + " became silence");
}

// What was left out around the DSD, the same; silence around it is no damage.
std::string left_out(const DopUnpacker::Report& found, const PcmInput& input) {
  if (found.leading == 0 && found.trailing == 0) return {};
  std::string text;
  if (found.leading != 0) text = "has its first markers at " + place(found.leading, input);
  if (found.trailing != 0)
    text += (text.empty() ? "has its last markers before " : " and its last before ") +
            place(found.frames - found.trailing, input);
  return text + "; the rest, " + (found.has_sound ? "other sound" : "silence") + ", is left out";
}

void tell_oddities(const DopUnpacker::Report& found, const PcmInput& input, bool is_strict) {
  const auto damage = [&](const std::string& what) {
    if (what.empty()) return;
    if (is_strict)
      throw Failure(kBadInput, input.path(),
                    what + "; without --strict what is there is converted");
    note_damage(input.path(), what);
  };
  damage(input.damage());
  damage(break_of(found, input));
  const std::string around = left_out(found, input);
  if (found.has_sound)
    damage(around);
  else if (!around.empty())
    note(input.path(), around);
}

}  // namespace

void dop_decode(const OutputFile::Config& output, corvin_container container, const Care& care,
                PcmInput& input) {
  require_samples(input);
  if (input.rate_hz() > UINT32_MAX / kDopSamples)
    throw Failure(kBadInput, input.path(), "has a rate beyond any of DSD over PCM");
  const uint32_t dsd_rate_hz = input.rate_hz() * kDopSamples;
  const uint32_t channels = input.channels();
  DsdOutput file({.file = output,
                  .container = container,
                  .dsd_rate_hz = dsd_rate_hz,
                  .channels = channels,
                  .speakers = input.speakers(),
                  .verify = care.verify});
  file.set_tags(read_pcm_tags(input));

  JobProgress progress(input.path(), input.rate_hz());
  DopUnpacker unpacker(channels);
  std::vector<int> frames(kFramesAtOnce * channels);
  std::vector<uint8_t> dsd;
  uint64_t bytes = 0;  // of a channel
  const auto write = [&] {
    file.writer().write(dsd.data(), dsd.size() / channels);
    bytes += dsd.size() / channels;
    dsd.clear();
  };
  try {
    while (const size_t got = input.read(std::span(frames))) {
      unpacker.unpack(std::span<const int>(frames).first(got * channels), dsd);
      write();
      progress.show(unpacker.report().frames, input.declared_frames().value_or(0));
    }
    unpacker.finish(dsd);
    write();
    const DopUnpacker::Report& found = unpacker.report();
    if (!found.is_dop)
      throw Failure(kBadInput, input.path(),
                    "holds no DSD over PCM: nowhere do its samples have the markers of that");
    tell_oddities(found, input, care.strict);
    file.writer().finish(8 * bytes);
  } catch (const Error& error) {
    if (error.status() == CORVIN_E_WRITE) throw file.write_failure();
    throw Failure(kBadInput, input.path(), error.what());
  }
  file.commit();
  file.print_summary(duration_text(8 * bytes, dsd_rate_hz), "");
}

}  // namespace corvin::cli
