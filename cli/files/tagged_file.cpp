// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/tagged_file.h"

#include <cstring>
#include <optional>
#include <sstream>
#include <string>

#include "cli/files/dsd_input.h"
#include "cli/files/interrupt.h"
#include "cli/files/pcm_tag_saving.h"
#include "cli/files/pcm_tags.h"
#include "cli/files/tag_bytes.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {

TagSet tags_of_file(const std::string& path) {
  auto dsd = DsdInput::open(path);
  if (!dsd) return read_pcm_tags(PcmInput(path));
  try {
    return dsd->file().all_tags();
  } catch (const Error& error) {
    throw Failure(kBadInput, path, error.what());
  }
}

std::string contents_of(const TagSet& tags) {
  std::string list;
  const auto add = [&](const std::string& one) { list += (list.empty() ? "" : ", ") + one; };
  for (const std::string& name : tags.names()) add(name);
  if (!tags.pictures().empty()) add(counted(tags.pictures().size(), "picture"));
  if (!tags.frames().empty()) add(counted(tags.frames().size(), "other frame"));
  return list;
}

void note_left_out(const std::string& path, PcmKind kind, const TagSet& tags) {
  const std::string left_out = tags_left_out(kind, tags);
  if (left_out.empty()) return;
  const bool has_tags = kind != PcmKind::kW64;
  note(path, (has_tags ? "gets the tags without " : "gets no tags: without ") + left_out);
}

void note_losses(const std::string& path, const TagSet& tags, corvin_id3_form form) {
  const auto kind = taggable_kind(path);
  if (kind) note_left_out(path, *kind, tags);
  if (kind == PcmKind::kFlac || kind == PcmKind::kWavPack) return;  // no ID3v2
  std::istringstream lines(tags.losses(form));
  for (std::string line; std::getline(lines, line);) note(path, line);
}

void save_tags(const std::string& path, const TagSet& tags, corvin_id3_form form) {
  const auto kind = taggable_kind(path);
  if (!kind && !DsdInput::open(path))
    throw Failure(kBadInput, path,
                  "is of no kind that tags are written to; those are DSF, DSDIFF, FLAC, WAV, RF64, "
                  "AIFF and WavPack");
  const InterruptsHeld held;
  try {
    if (kind)
      save_pcm_tags(path, *kind, tags, form);
    else
      tags.save(path.c_str(), form);
  } catch (const Error& error) {
    const int why = error.system_error();
    switch (error.status()) {
      case CORVIN_E_FORMAT:
        throw Failure(
            kBadInput, path,
            "has chunks that do not add up; a copy that corvin convert makes can be given "
            "tags");
      case CORVIN_E_UNSUPPORTED:
        throw Failure(kBadInput, path,
                      "cannot hold these tags: 1bit files hold none, others up to 256 MiB");
      case CORVIN_E_READ:
        throw Failure(kBadInput, path, why != 0 ? std::strerror(why) : error.what());
      case CORVIN_E_WRITE:
        throw Failure(kWriteError, path, why != 0 ? std::strerror(why) : error.what());
      default:
        throw Failure(kWriteError, path, error.what());
    }
  }
}

}  // namespace corvin::cli
