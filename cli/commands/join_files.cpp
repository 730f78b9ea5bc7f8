// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/join_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

#include "cli/batch/piped_input.h"
#include "cli/convert/join.h"
#include "cli/cue/cue_sheet.h"
#include "cli/cue/track_tags.h"
#include "cli/files/descriptor_bytes.h"
#include "cli/files/dsd_input.h"
#include "cli/files/packed_input.h"
#include "cli/files/path_parts.h"
#include "cli/files/pcm_tags.h"
#include "cli/files/speakers.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

// What inputs have to share.
struct Sound {
  bool is_dsd = false;
  uint32_t rate_hz = 0;
  uint32_t channels = 0;
  uint32_t speakers = 0;
  std::string format;  // of PCM
};

Sound look_at(const std::string& path, TagSet& tags) {
  if (auto dsd = DsdInput::open(path)) {
    dsd->require_sound();
    const corvin_file_info& info = dsd->info();
    tags = dsd->tags();
    return {.is_dsd = true,
            .rate_hz = info.dsd_rate,
            .channels = info.channels,
            .speakers = info.speakers,
            .format = ""};
  }
  const PackedInput input(path);
  const PcmInput& pcm = input.pcm();
  tags = read_pcm_tags(pcm);
  return {.is_dsd = false,
          .rate_hz = pcm.rate_hz(),
          .channels = pcm.channels(),
          .speakers = pcm.speakers(),
          .format = input.format_name()};
}

// "48000 Hz, not 44100 Hz as a.wav"; empty: nothing differs.
std::string difference(const Sound& one, const Sound& first, const std::string& first_path) {
  const auto differs = [&](const std::string& here, const std::string& there) {
    return "has " + here + ", not " + there + " as " + first_path + " has";
  };
  if (one.is_dsd != first.is_dsd)
    return differs(one.is_dsd ? "DSD" : "PCM", first.is_dsd ? "DSD" : "PCM");
  if (one.rate_hz != first.rate_hz)
    return differs(rate_name(one.rate_hz), rate_name(first.rate_hz));
  if (one.channels != first.channels)
    return differs(counted(one.channels, "channel"), counted(first.channels, "channel"));
  if (one.format != first.format) return differs(one.format, first.format);
  // Where one file cannot tell its speakers, the others' names hold.
  if (one.speakers != first.speakers && one.speakers != 0 && first.speakers != 0)
    return differs("the speakers " + speaker_names(one.speakers), speaker_names(first.speakers));
  return {};
}

OutputKind kind_of(const JoinOptions& options, bool is_dsd_wanted) {
  const auto by_name = output_kind_of(options.output);
  if (options.kind && by_name && *options.kind != *by_name)
    throw Failure(kUsage, options.output, "its ending says another kind than --format");
  const auto kind = options.kind ? options.kind : by_name;
  if (!kind) throw Failure(kUsage, options.output, "its ending stands for no kind; --format does");
  if (is_dsd(*kind) != is_dsd_wanted)
    throw Failure(kUsage, options.output,
                  is_dsd_wanted ? "is to hold the inputs' DSD: dsf, dff or 1bit"
                                : "is to hold the inputs' PCM: flac, wav, rf64, w64, aiff, caf or "
                                  "wv");
  return *kind;
}

void write_cue(const std::string& path, OutputFile& file, const CueSheet& sheet) {
  const std::string text = cue_text(sheet);
  if (!write_at(file.descriptor(), 0, std::as_bytes(std::span(text))))
    throw Failure(kWriteError, path, std::strerror(errno));
  file.commit();
  const auto odd = std::count_if(sheet.tracks.begin(), sheet.tracks.end(), [&](const auto& track) {
    return track.begin.position % sheet.units_per_second * 75 % sheet.units_per_second != 0;
  });
  if (odd != 0)
    note(path, "rounds the beginning of " + counted(static_cast<uint64_t>(odd), "track") +
                   " to 75ths of a second, which is all that cue sheets know");
}

}  // namespace

void join_files(const JoinOptions& options) {
  if (options.output == "-" && options.cue)
    throw Failure(kUsage, "--cue", "needs an output with a name, which the sheet is to hold");
  if (options.cue == options.output)
    throw Failure(kUsage, "--cue", "names the output itself; give the sheet another name");
  std::vector<std::shared_ptr<const UnnamedFile>> contents;
  JoinRequest request;
  CommonTags common;
  CueSheet sheet;
  Sound first;
  for (const std::string& named : options.inputs) {
    contents.push_back(content_of_pipe(named));
    const std::string path = contents.back() ? contents.back()->path() : named;
    TagSet tags;
    const Sound sound = look_at(path, tags);
    if (request.inputs.empty()) first = sound;
    if (first.speakers == 0) first.speakers = sound.speakers;
    if (const std::string why = difference(sound, first, options.inputs.front()); !why.empty())
      throw Failure(kBadInput, path, why);
    request.inputs.push_back(path);
    try {
      common.add(tags);
    } catch (const Error& error) {
      throw Failure(kBadInput, path, std::string("has tags that no file can get: ") + error.what());
    }
    CueTrack track;
    track.number = static_cast<uint32_t>(request.inputs.size());
    track.fields = cue_fields_of_track(tags);
    sheet.tracks.push_back(std::move(track));
  }
  request.kind = kind_of(options, first.is_dsd);
  request.tags = &common.tags();
  request.verify = options.verify;
  request.output = {.path = options.output,
                    .input_path = request.inputs.front(),
                    .overwrite = options.overwrite,
                    .force = options.force,
                    .other_inputs = std::make_shared<FileIdentities>(request.inputs)};
  std::optional<OutputFile> cue;
  if (options.cue) {
    OutputFile::Config config = request.output;
    config.path = *options.cue;
    cue.emplace(config);
  }
  const Beginnings beginnings = first.is_dsd ? join_dsd(request) : join_pcm(request);
  if (!cue) return;
  sheet.units_per_second = first.rate_hz;
  sheet.files.push_back(name_of(options.output));
  sheet.fields = cue_fields_of_whole(common.tags());
  for (size_t i = 0; i < beginnings.size(); ++i) sheet.tracks[i].begin.position = beginnings[i];
  write_cue(*options.cue, *cue, sheet);
}

}  // namespace corvin::cli
