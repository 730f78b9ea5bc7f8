// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/split_tracks.h"

#include <algorithm>
#include <utility>

#include "cli/batch/piped_input.h"
#include "cli/cue/track_tags.h"
#include "cli/files/dsd_container.h"
#include "cli/files/path_parts.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/letters.h"
#include "cli/words/outcome.h"

namespace corvin::cli {

Splitting::Splitting(const SplitOptions& options)
    : options_(options),
      pattern_(options.name),
      all_inputs_(std::make_shared<FileIdentities>(options.inputs)) {
  if (options.cue) given_ = NamedCue{.sheet = read_cue(*options.cue), .name = *options.cue};
}

void Splitting::split(const std::string& path) {
  if (!lower_case(path).ends_with(".cue")) {
    const auto content = content_of_pipe(path);
    split_sound({.path = content ? content->path() : path,
                 .stem = content ? "sound" : stem_of(path),
                 .cue = given_,
                 .file = {}});
    return;
  }
  if (options_.cue || options_.cuts)
    throw Failure(kUsage, path, "is a cue sheet itself; --cue and --at are for sound files");
  const NamedCue cue{.sheet = read_cue(path), .name = path};
  for (size_t file = 0; file < cue.sheet.files.size(); ++file) {
    const std::string sound = path_of_cue_file(cue, file, path);
    split_sound({.path = sound, .stem = stem_of(sound), .cue = cue, .file = file});
  }
}

// ---- Details --------------------------------------------------------------------------------

void Splitting::split_sound(Source source) {
  if (auto dsd = DsdInput::open(source.path))
    split_dsd_file(source, *dsd);
  else
    split_pcm_file(source);
}

void Splitting::split_dsd_file(Source& source, DsdInput& dsd) {
  const corvin_file_info& info = dsd.info();
  dsd.require_sound();
  if (info.samples == 0) throw no_convertible_sound(source.path);
  const OutputKind kind = options_.kind.value_or(static_cast<corvin_container>(info.container));
  if (!is_dsd(kind)) throw Failure(kUsage, source.path, "is DSD, which becomes dsf, dff or 1bit");
  const auto container = std::get<corvin_container>(kind);
  source.rate_hz = info.dsd_rate;
  source.length = info.samples;
  const TagSet tags = dsd.tags();
  std::vector<Piece> pieces = pieces_of(source, tags, kind);
  bool is_moved = false;
  for (Piece& piece : pieces) {
    // The sound's own end needs no whole byte.
    for (uint64_t* place : {&piece.begin, &piece.end}) {
      const uint64_t cut = std::min(cut_for(container, *place), info.samples);
      if (cut != *place) is_moved = true;
      *place = cut;
    }
    if (piece.begin >= piece.end)
      throw Failure(kUsage, piece.output.path, "would be less than a byte of each channel");
  }
  if (is_moved)
    note(source.path,
         std::string("is cut at whole bytes, up to seven samples later than asked for: ") +
             container_name(container) + " holds no parts of them");
  split_dsd(dsd, container, pieces, options_.verify);
}

void Splitting::split_pcm_file(Source& source) {
  PackedInput input(source.path);
  const auto kind = options_.kind ? options_.kind : output_kind_of(source.path);
  if (!kind) throw Failure(kUsage, source.path, "tells no kind for the tracks; --format does");
  if (is_dsd(*kind))
    throw Failure(kUsage, source.path,
                  "is PCM, which becomes flac, wav, rf64, w64, aiff, caf or wv");
  source.rate_hz = input.pcm().rate_hz();
  source.length = input.pcm().declared_frames();
  const TagSet tags = read_pcm_tags(input.pcm());
  const std::vector<Piece> pieces = pieces_of(source, tags, *kind);
  split_pcm(input, std::get<PcmKind>(*kind), pieces, options_.verify);
}

std::vector<TrackSpan> Splitting::spans_of(Source& source, const TagSet& tags) const {
  if (options_.cuts) {
    std::vector<uint64_t> cuts;
    for (const Position& cut : *options_.cuts) cuts.push_back(cut.at_rate(source.rate_hz));
    return spans_between(cuts, source.length, source.path);
  }
  if (!source.cue) source.cue = find_cue(source.path, tags, source.rate_hz);
  if (!source.cue)
    throw Failure(kUsage, source.path,
                  "has no cue sheet, beside it or in it; --cue names one, --at times");
  const size_t file = source.file ? *source.file : file_in_cue(*source.cue, source.path);
  return spans_of_cue(*source.cue, file, source.rate_hz, source.length, options_.pregap);
}

std::vector<Piece> Splitting::pieces_of(Source& source, const TagSet& tags,
                                        const OutputKind& kind) {
  const std::vector<TrackSpan> spans = spans_of(source, tags);
  const CueSheet* sheet = source.cue && !options_.cuts ? &source.cue->sheet : nullptr;
  const size_t total = sheet != nullptr ? sheet->tracks.size() : spans.size();
  const std::string directory = options_.directory + (options_.directory.ends_with('/') ? "" : "/");
  std::vector<Piece> pieces;
  for (const TrackSpan& span : spans) {
    if (span.track != nullptr && !span.track->is_sound) {
      note(source.path, "has track " + std::to_string(span.number) + " as data: it is left out");
      continue;
    }
    Piece piece;
    piece.begin = span.begin;
    piece.end = span.end;
    piece.tags = [&tags, &path = source.path,
                  place = TrackPlace{.sheet = sheet,
                                     .track = span.track,
                                     .number = span.number,
                                     .total = static_cast<uint32_t>(total)}] {
      try {
        return tags_of_track(tags, place);
      } catch (const Error& error) {
        throw Failure(kBadInput, path,
                      std::string("has tags that no track can get: ") + error.what());
      }
    };
    const std::string text = pattern_.text_for(piece.tags(), source.stem);
    piece.output.path = directory + names_.name_for(text, ending_of(kind));
    piece.output.input_path = source.path;
    piece.output.overwrite = options_.overwrite;
    piece.output.force = options_.force;
    piece.output.other_inputs = all_inputs_;
    if (span.track != nullptr && span.track->has_emphasis)
      note(piece.output.path, "is flagged as having pre-emphasis, which stays in its sound");
    pieces.push_back(std::move(piece));
  }
  if (pieces.empty()) throw Failure(kBadInput, source.path, "holds no track of sound");
  make_directory_of(pieces.front().output.path);
  return pieces;
}

}  // namespace corvin::cli
