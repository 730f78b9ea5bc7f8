// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/split.h"

#include <algorithm>
#include <string>

#include "cli/convert/pcm_file.h"
#include "cli/files/dsd_output.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;

// Reads up to `count` frames, hands them to `take`, with their number so far, and returns that.
template <class Take>
uint64_t read_frames(PackedInput& input, uint64_t count, Take take) {
  std::vector<uint8_t> bytes;
  uint64_t done = 0;
  while (done < count) {
    const size_t got =
        input.read(static_cast<size_t>(std::min<uint64_t>(count - done, kFramesAtOnce)), bytes);
    if (got == 0) break;
    done += got;
    take(bytes, done);
  }
  return done;
}

}  // namespace

uint64_t cut_for(corvin_container container, uint64_t sample) {
  return container == CORVIN_DSF || sample > UINT64_MAX - 7 ? sample : (sample + 7) / 8 * 8;
}

void split_dsd(DsdInput& input, corvin_container container, const std::vector<Piece>& pieces,
               bool verify) {
  const corvin_file_info& info = input.info();
  JobProgress progress(input.path(), info.dsd_rate);
  for (const Piece& piece : pieces) {
    DsdOutput output({.file = piece.output,
                      .container = container,
                      .dsd_rate_hz = info.dsd_rate,
                      .channels = info.channels,
                      .speakers = info.speakers,
                      .verify = verify});
    output.set_tags(piece.tags());
    ConvertSettings settings;
    settings.begin_sample = piece.begin;
    settings.sample_count = piece.end - piece.begin;
    try {
      convert_copy(input.file(), output.writer(), settings, [&](uint64_t done, uint64_t) {
        progress.show(piece.begin + done, info.samples);
        return true;
      });
    } catch (const Error& error) {
      if (error.status() == CORVIN_E_WRITE) throw output.write_failure();
      throw Failure(kBadInput, input.path(), error.what());
    }
    output.commit();
    output.print_summary(duration_text(piece.end - piece.begin, info.dsd_rate), "");
  }
  input.note_warnings();
}

void split_pcm(PackedInput& input, PcmKind kind, const std::vector<Piece>& pieces, bool verify) {
  const PcmInput& pcm = input.pcm();
  const uint64_t declared = pcm.declared_frames().value_or(0);
  JobProgress progress(pcm.path(), pcm.rate_hz());
  uint64_t at = 0;
  for (const Piece& piece : pieces) {
    at += read_frames(input, piece.begin - at, [](const auto&, uint64_t) {});
    const bool is_known = piece.end != UINT64_MAX;
    const TagSet tags = piece.tags();
    PcmFile file(input, {.file = piece.output,
                         .kind = kind,
                         .frames = is_known ? std::optional(piece.end - piece.begin) : std::nullopt,
                         .tags = &tags,
                         .verify = verify});
    const uint64_t begun = at;
    at +=
        read_frames(input, piece.end - at, [&](const std::vector<uint8_t>& frames, uint64_t done) {
          file.write(frames);
          progress.show(begun + done, declared);
        });
    if (at == begun)
      throw Failure(kBadInput, pcm.path(),
                    "is over before " + piece.output.path + " would begin" +
                        (pcm.damage().empty() ? "" : ": it " + pcm.damage()));
    file.finish();
  }
  // What is wrong shows at the end only.
  read_frames(input, UINT64_MAX, [](const auto&, uint64_t) {});
  if (const std::string damage = pcm.damage(); !damage.empty()) note_damage(pcm.path(), damage);
}

}  // namespace corvin::cli
