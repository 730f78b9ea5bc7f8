// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include <memory>
#include <string>
#include <vector>

#include "cli/convert/dop.h"
#include "cli/convert/dop_frames.h"
#include "cli/convert/verify.h"
#include "cli/files/pcm_writer.h"
#include "cli/files/tagged_file.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

constexpr size_t kBytesAtOnce = 1 << 15;  // of a channel, even

PcmWriterConfig config_of(const DsdInput& input, const std::string& path, PcmKind kind,
                          const TagSet& tags) {
  const corvin_file_info& info = input.info();
  if (info.dsd_rate % kDopSamples != 0)
    throw Failure(kBadInput, input.path(),
                  "has a rate of " + std::to_string(info.dsd_rate) +
                      " Hz, which is no multiple of 16: no frames of PCM carry it");
  PcmWriterConfig config{.kind = kind,
                         .rate_hz = info.dsd_rate / kDopSamples,
                         .channels = info.channels,
                         .speakers = info.speakers,
                         .format = CORVIN_S24,
                         .expected_frames = (info.samples + kDopSamples - 1) / kDopSamples,
                         .tags = &tags};
  if (const std::string why = why_not_writable(config); !why.empty())
    throw Failure(kUsage, path, why);
  return config;
}

}  // namespace

void dop_encode(const OutputFile::Config& output, PcmKind kind, const Care& care, DsdInput& input) {
  input.require_sound();
  if (care.strict) input.require_whole();
  const corvin_file_info& info = input.info();
  const TagSet tags = input.tags();
  PcmWriterConfig config = config_of(input, output.path, kind, tags);
  OutputFile file(output);
  config.descriptor = file.descriptor();
  const auto writer = make_pcm_writer(config);
  const auto require = [&](bool is_good) {
    if (!is_good) throw Failure(kWriteError, output.path, writer->error());
  };
  require(writer->error().empty());

  JobProgress progress(input.path(), info.dsd_rate);
  DopPacker packer(info.channels);
  PayloadHash payload;
  std::vector<uint8_t> dsd(kBytesAtOnce * info.channels);
  std::vector<uint8_t> frames;
  uint64_t bytes = 0;  // of a channel
  try {
    while (const size_t got = input.file().read(dsd.data(), kBytesAtOnce)) {
      bytes += got;
      std::span<const uint8_t> part = std::span(dsd).first(got * info.channels);
      // The last byte of an odd number shares its frame with silence; only a read at the end is odd.
      if (got % 2 != 0) {
        dsd.resize(got * info.channels);
        dsd.resize((got + 1) * info.channels, kDsdSilence);
        part = dsd;
      }
      frames.clear();
      packer.pack(part, frames);
      if (care.verify) payload.add(frames);
      require(writer->write(frames));
      progress.show(std::min(8 * bytes, info.samples), info.samples);
      if (got < kBytesAtOnce) break;
    }
  } catch (const Error& error) {
    throw Failure(kBadInput, input.path(), error.what());
  }
  require(writer->finish());
  const uint64_t written = (bytes + 1) / 2;
  if (care.verify)
    verify_pcm({.path = file.path(),
                .name = output.path,
                .format = config.format,
                .frames = written,
                .hash = payload.value()});
  file.commit();

  input.note_warnings();
  note_left_out(output.path, kind, tags);
  if (info.samples == 0) note_no_sound(input.path());
  if (info.samples % kDopSamples != 0)
    note(output.path, "ends in " + counted(kDopSamples - info.samples % kDopSamples, "sample") +
                          " of silence, which fill its last frame");
  print_summary(
      output.path,
      {rate_name(info.dsd_rate) + " in " + std::to_string(config.rate_hz) + " Hz", "24 bits",
       counted(info.channels, "channel"), duration_text(written, config.rate_hz)});
}

}  // namespace corvin::cli
