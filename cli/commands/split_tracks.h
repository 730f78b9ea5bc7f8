// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What corvin split makes of its inputs, once its options are values: which tracks a file is cut
// into, and what they are called.

#ifndef CORVIN_CLI_COMMANDS_SPLIT_TRACKS_H_
#define CORVIN_CLI_COMMANDS_SPLIT_TRACKS_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/option_values.h"
#include "cli/convert/split.h"
#include "cli/cue/cue_sources.h"
#include "cli/cue/track_names.h"
#include "cli/cue/track_spans.h"
#include "cli/files/file_identities.h"
#include "cli/files/output_kind.h"

namespace corvin::cli {

struct SplitOptions {
  std::vector<std::string> inputs;
  std::string directory;
  std::optional<std::string> cue;
  std::optional<std::vector<Position>> cuts;
  std::string name = "{track:02} {title}";
  Pregap pregap = Pregap::kEndOfTrackBefore;
  std::optional<OutputKind> kind;
  bool verify = false;
  bool overwrite = false;
  bool force = false;
};

/** One command: the names of its outputs are all different, whichever input they come of. */
class Splitting {
 public:
  /** @param options  outlive this. Throws Failure, as the other does */
  explicit Splitting(const SplitOptions& options);

  /** Splits a sound file, or those that a cue sheet names. */
  void split(const std::string& path);

 private:
  // A file to be cut.
  struct Source {
    std::string path;
    std::string stem;             // for tracks without a title
    std::optional<NamedCue> cue;  // that was given
    std::optional<size_t> file;   // which of the sheet's it is, where that is known
    uint32_t rate_hz = 0;
    std::optional<uint64_t> length = {};  // in samples or frames
  };

  void split_sound(Source source);
  void split_dsd_file(Source& source, DsdInput& dsd);
  void split_pcm_file(Source& source);
  std::vector<TrackSpan> spans_of(Source& source, const TagSet& tags) const;
  // They point into both arguments.
  std::vector<Piece> pieces_of(Source& source, const TagSet& tags, const OutputKind& kind);

  const SplitOptions& options_;
  const NamePattern pattern_;
  const std::shared_ptr<const FileIdentities> all_inputs_;
  std::optional<NamedCue> given_;
  FileNames names_;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_SPLIT_TRACKS_H_
