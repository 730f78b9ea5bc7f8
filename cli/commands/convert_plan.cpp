// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_plan.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "cli/batch/file_list.h"
#include "cli/batch/manifest.h"
#include "cli/batch/shard.h"
#include "cli/files/dsd_input.h"
#include "cli/files/path_parts.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_tags.h"

namespace corvin::cli {
namespace {

// Of the one output that is named, or of all; no value: as fits each input.
std::optional<OutputKind> asked_kind(const ConvertOptions& options) {
  if (!options.output) return options.kind;
  const std::string& output = *options.output;
  if (output.empty()) throw Failure(kUsage, output, "is no file name");
  const auto by_name = output_kind_of(output);
  if (options.kind && by_name && *options.kind != *by_name)
    throw Failure(kUsage, output,
                  std::string("its ending says another kind than --format; end it in ") +
                      ending_of(*options.kind));
  if (by_name || options.kind) return options.kind ? options.kind : by_name;
  throw Failure(kUsage, output,
                "its ending stands for no kind of file; end it in .flac, .wav, .rf64, .w64, .aiff, "
                ".caf, .wv, .dsf, .dff or .1bit, or name the kind by --format");
}

// In directories PCM is taken only for DSD, so that the rest of a music library stays what it is.
bool is_wanted(const std::string& path, const std::optional<OutputKind>& kind, bool dsd_only) {
  switch (input_ending_of(path)) {
    case InputEnding::kDsd:
      return true;
    case InputEnding::kPcm:
      return kind && is_dsd(*kind) && !dsd_only;
    case InputEnding::kOther:
      break;
  }
  return false;
}

// Those that are named, and those in the list.
std::vector<Input> inputs_of(const ConvertOptions& options, const std::optional<OutputKind>& kind) {
  const auto wanted = [&](const std::string& path) {
    return is_wanted(path, kind, options.dsd_only);
  };
  std::vector<Input> inputs = collect_inputs(options.inputs, options.recursive, wanted);
  if (!options.files_from) return inputs;
  for (const std::string& name :
       read_file_list(*options.files_from, options.is_list_zero_terminated))
    for (Input& input : collect_inputs({name}, options.recursive, wanted)) {
      if (input.below.empty()) input.below = directory_below(input.path);
      inputs.push_back(std::move(input));
    }
  if (inputs.empty()) throw Failure(kUsage, *options.files_from, "names no file");
  return inputs;
}

void look_at(PlannedConversion& planned, bool dsd_only) {
  if (!planned.input.problem.empty())
    throw Failure(kBadInput, planned.input.path, planned.input.problem);
  planned.content = content_of_pipe(planned.input.path);
  if (planned.content) planned.input.path = planned.content->path();
  if (const auto dsd = DsdInput::open(planned.input.path)) {
    dsd->require_sound();
    planned.is_dsd = true;
    planned.rate_hz = dsd->info().dsd_rate;
    planned.channels = dsd->info().channels;
    planned.samples = dsd->info().samples;
    return;
  }
  if (dsd_only) throw no_dsd_file(planned.input.path);
  const PcmInput pcm(planned.input.path);
  planned.rate_hz = pcm.rate_hz();
  planned.channels = pcm.channels();
}

std::string with_slash(const std::string& directory) {
  return directory + (directory.ends_with('/') ? "" : "/");
}

TagSet tags_of(const PlannedConversion& planned) {
  if (!planned.is_dsd) return read_pcm_tags(PcmInput(planned.input.path));
  try {
    return DsdInput::open_dsd(planned.input.path).file().all_tags();
  } catch (const Error&) {
    return {};  // the conversion tells of it
  }
}

std::string output_of(const ConvertOptions& options, const PlannedConversion& planned) {
  if (options.output) return *options.output;
  if (planned.content)
    throw Failure(kUsage, planned.input.path, "gives the output no name; -o does");
  std::string directory = directory_of(planned.input.path);
  if (!options.directory.empty()) directory = with_slash(options.directory) + planned.input.below;
  const std::string stem = stem_of(planned.input.path);
  if (options.names.empty()) return directory + stem + ending_of(planned.kind);
  if (!options.directory.empty()) directory = with_slash(options.directory);
  const TagSet tags = tags_of(planned);
  for (const NamePattern& name : options.names) {
    const bool is_last = &name == &options.names.back();
    const std::string text = name.text_for(tags, stem);
    directory += file_name(text.empty() ? "Unknown" : text, is_last ? ending_of(planned.kind) : "");
    if (!is_last) directory += '/';
  }
  return directory;
}

// Two inputs of one stem would follow each other under one name.
void refuse_shared_outputs(std::vector<PlannedConversion>& all) {
  std::map<std::string, const PlannedConversion*> first;
  for (PlannedConversion& planned : all) {
    if (planned.failure) continue;
    const auto [at, is_new] = first.emplace(planned.output, &planned);
    if (!is_new)
      planned.failure.emplace(kUsage, planned.input.path,
                              "would become " + planned.output + ", as " + at->second->input.path +
                                  " does; convert it by itself with -o");
  }
}

// The outputs of one recording come of one run, in one order: directories are no part of that.
void join_neighbours(std::vector<PlannedConversion>& all) {
  for (size_t i = 0; i + 1 < all.size(); ++i) {
    const PlannedConversion& next = all[i + 1];
    all[i].goes_on = !all[i].failure && !next.failure && all[i].is_dsd == next.is_dsd &&
                     all[i].rate_hz == next.rate_hz && all[i].channels == next.channels &&
                     directory_of(all[i].input.path) == directory_of(next.input.path);
    if (all[i].goes_on) all[i].is_joined = all[i + 1].is_joined = true;
  }
}

// Drops what other shards do.
void keep_shard(const ConvertOptions& options, std::vector<PlannedConversion>& all) {
  std::vector<Weight> weights;
  const bool shares_gain =
      options.gain && !options.gain->db && options.gain_group != GainGroup::kFile;
  size_t recording = 0;
  for (size_t i = 0; i < all.size(); ++i) {
    if (i == 0 || !all[i - 1].goes_on) recording = i;
    weights.push_back(
        {.group = shares_gain ? gain_group_of(options, all[i]) : std::to_string(recording),
         .bytes = state_of_file(all[i].input.path).value_or(FileState{}).bytes});
  }
  const std::vector<bool> is_mine = part_of_shard(weights, *options.shard);
  std::vector<PlannedConversion> mine;
  for (size_t i = 0; i < all.size(); ++i)
    if (is_mine[i]) mine.push_back(std::move(all[i]));
  all = std::move(mine);
}

}  // namespace

std::string gain_group_of(const ConvertOptions& options, const PlannedConversion& planned) {
  const std::string& path = planned.input.path;
  switch (options.gain_group) {
    case GainGroup::kAll:
      return "";
    case GainGroup::kDirectory:
      return directory_of(path);
    case GainGroup::kFile:
      break;
  }
  return path;
}

std::vector<PlannedConversion> plan_conversions(const ConvertOptions& options) {
  const std::optional<OutputKind> asked = asked_kind(options);
  const std::vector<Input> inputs = inputs_of(options, asked);
  if (options.output && inputs.size() != 1)
    throw Failure(kUsage, "--output",
                  "names one file, for " + std::to_string(inputs.size()) +
                      " inputs; -O names a directory for them");
  const auto identities = std::make_shared<FileIdentities>();
  for (const Input& input : inputs) identities->add(input.path);
  std::vector<PlannedConversion> all;
  for (const Input& input : inputs) {
    PlannedConversion planned;
    planned.input = input;
    planned.all_inputs = identities;
    try {
      look_at(planned, options.dsd_only);
      planned.kind = asked            ? *asked
                     : planned.is_dsd ? OutputKind(PcmKind::kFlac)
                                      : OutputKind(CORVIN_DSF);
      planned.output = output_of(options, planned);
    } catch (const Failure& failure) {
      planned.failure = failure;
    }
    all.push_back(std::move(planned));
  }
  refuse_shared_outputs(all);
  if (options.gapless) join_neighbours(all);
  if (options.shard) keep_shard(options, all);
  return all;
}

}  // namespace corvin::cli
