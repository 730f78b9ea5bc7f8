// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/pcm_file.h"

#include "cli/files/tagged_file.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {

PcmFile::PcmFile(const PackedInput& like, const Config& config)
    : config_(config), format_name_(like.format_name()) {
  format_ = {.kind = config.kind,
             .rate_hz = like.pcm().rate_hz(),
             .channels = like.pcm().channels(),
             .speakers = like.pcm().speakers(),
             .format = like.format(),
             .significant_bits = like.significant_bits(),
             .expected_frames = config.frames,
             .tags = config.tags};
  // FLAC has samples of 8 bits. Others would state 8 of 16, which many readers do not know.
  const bool is_widened = format_.significant_bits == 8 && config.kind != PcmKind::kFlac;
  if (is_widened) {
    format_.significant_bits = 0;
    format_name_ = "16 bits";
  }
  if (const std::string why = why_not_writable(format_); !why.empty())
    throw Failure(kUsage, config.file.path, why);
  file_.emplace(config.file);
  format_.descriptor = file_->descriptor();
  writer_ = make_pcm_writer(format_);
  if (!writer_->error().empty()) throw failure();
  if (is_widened) note(config.file.path, "has 16 bits for the input's 8, of the same values");
}

void PcmFile::write(std::span<const uint8_t> frames) {
  if (config_.verify) payload_.add(frames);
  frames_ += frames.size() / (format_.channels * bytes_of(format_.format));
  if (!writer_->write(frames)) throw failure();
}

void PcmFile::finish() {
  if (!writer_->finish()) throw failure();
  if (config_.verify)
    verify_pcm({.path = file_->path(),
                .name = config_.file.path,
                .format = format_.format,
                .frames = frames_,
                .hash = payload_.value()});
  file_->commit();
  if (config_.tags != nullptr) note_left_out(config_.file.path, config_.kind, *config_.tags);
  print_summary(config_.file.path,
                {std::to_string(format_.rate_hz) + " Hz", format_name_,
                 counted(format_.channels, "channel"), duration_text(frames_, format_.rate_hz)});
}

}  // namespace corvin::cli
