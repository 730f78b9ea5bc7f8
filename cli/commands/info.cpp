// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin info: what sound files hold, from their headers alone. What there is to tell of a file stands
// in cli/files/file_facts.h; here is how it looks.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cli/classic/dsd_headers.h"
#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/each_input.h"
#include "cli/commands/tell_each.h"
#include "cli/files/dsd_container.h"
#include "cli/files/dsd_input.h"
#include "cli/files/file_facts.h"
#include "cli/files/speakers.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"
#include "cli/words/stdout_name.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

struct Options {
  TellOptions tell;
  Engine engine = Engine::kStudio;
};

// A line of a table: "  rate                 96000 Hz".
void add_line(std::string& text, const std::string& name, const std::string& value) {
  std::string line = "  " + name;
  line.resize(std::max<size_t>(line.size() + 1, 23), ' ');
  text += line + value + "\n";
}

// A file of nothing but chunks' headers would fill the screen.
constexpr size_t kMostChunks = 100;

void add_chunks(std::string& text, const std::vector<corvin_file_chunk>& chunks) {
  for (size_t i = 0; i < chunks.size() && i < kMostChunks; ++i) {
    const corvin_file_chunk& chunk = chunks[i];
    const std::string id = std::string(chunk.is_part ? "  '" : "'") + printable(chunk.id) + "'";
    std::string line =
        id + ", content at " + std::to_string(chunk.offset) + ", " + counted(chunk.bytes, "byte");
    if (chunk.stated_bytes != chunk.bytes)
      line += " (states " + std::to_string(chunk.stated_bytes) + ")";
    add_line(text, i == 0 ? "chunks" : "", line);
  }
  if (chunks.size() > kMostChunks)
    add_line(text, "", "and " + std::to_string(chunks.size() - kMostChunks) + " more");
}

void add_tags(std::string& text, const FileFacts& facts) {
  if (!facts.tags) return;
  std::string names;
  for (const std::string& name : facts.tags->names())
    names += (names.empty() ? "" : ", ") + printable(name);
  add_line(text, "tags", names.empty() ? "no fields" : names);
  for (const Picture& picture : facts.tags->pictures())
    add_line(text, "picture",
             "type " + std::to_string(picture.type) + ", " + printable(picture.mime) + ", " +
                 counted(picture.data.size(), "byte"));
}

std::string text_of(const std::string& name, const FileFacts& facts) {
  std::string text = name_on_stdout(name) + "\n";
  add_line(text, "kind", facts.kind);
  if (!facts.compression.empty()) add_line(text, "compression", printable(facts.compression));
  add_line(text, "channels", std::to_string(facts.channels));
  if (facts.channels > 2 && facts.speakers != 0)
    add_line(text, "speakers", speaker_names(facts.speakers));
  add_line(text, "rate", facts.is_dsd ? rate_name(facts.rate_hz) : hz_text(facts.rate_hz));
  if (!facts.is_dsd)
    add_line(text, "bits",
             facts.bits == 0 ? "packed with loss"
                             : std::to_string(facts.bits) + (facts.is_float ? ", floating" : ""));
  if (facts.samples) {
    add_line(text, "duration", duration_text(*facts.samples, facts.rate_hz));
    add_line(text, "samples per channel", std::to_string(*facts.samples));
  }
  if (facts.is_dsd) {
    add_line(text, "bytes of sound", std::to_string(facts.sound_bytes));
    if (facts.padding_bytes != 0) add_line(text, "padding", counted(facts.padding_bytes, "byte"));
    const std::string order = facts.is_lsb_first ? "lowest" : "highest";
    add_line(text, "layout",
             facts.block_bytes == 1 ? "channels in turn, byte by byte, oldest bit " + order
                                    : "blocks of " + counted(facts.block_bytes, "byte") +
                                          " a channel, oldest bit " + order);
    add_chunks(text, facts.chunks);
  }
  add_tags(text, facts);
  return text;
}

Json json_of_facts(const FileFacts& facts) {
  Json object = {{"type", facts.is_dsd ? "dsd" : "pcm"}, {"container", facts.kind}};
  if (!facts.compression.empty()) object["compression"] = utf8_of(facts.compression);
  object["rate_hz"] = facts.rate_hz;
  object["channels"] = facts.channels;
  object["speakers"] = Json::array();
  std::string names = speaker_names(facts.speakers);
  for (size_t begin = 0, end; begin < names.size(); begin = end + 1) {
    end = std::min(names.find(' ', begin), names.size());
    object["speakers"].push_back(names.substr(begin, end - begin));
  }
  if (!facts.is_dsd) {
    object["bits"] = facts.bits;
    object["floating"] = facts.is_float;
  }
  if (facts.samples) {
    object["samples"] = *facts.samples;
    object["duration_s"] = static_cast<double>(*facts.samples) / facts.rate_hz;
  }
  if (facts.is_dsd) {
    object["stated_samples"] = facts.stated_samples;
    object["sound_bytes"] = facts.sound_bytes;
    object["padding_bytes"] = facts.padding_bytes;
    object["block_bytes"] = facts.block_bytes;
    object["bit_order"] = facts.is_lsb_first ? "lsb_first" : "msb_first";
    object["chunks"] = Json::array();
    std::string within;
    for (const corvin_file_chunk& chunk : facts.chunks) {
      Json one = {{"id", utf8_of(chunk.id)},
                  {"header_offset", chunk.header_offset},
                  {"offset", chunk.offset},
                  {"bytes", chunk.bytes},
                  {"stated_bytes", chunk.stated_bytes}};
      if (!chunk.is_part) within = utf8_of(chunk.id);
      if (chunk.is_part) one["within"] = within;
      object["chunks"].push_back(std::move(one));
    }
  }
  if (facts.tags) {
    object["tags"] = json_of("", *facts.tags, false);
    object["tags"].erase("file");
  }
  object["warnings"] = Json::array();
  for (const std::string& warning : facts.warnings) object["warnings"].push_back(utf8_of(warning));
  return object;
}

void tell(const Subject& subject, Told& told) {
  const FileFacts facts = read_file_facts(subject.path);
  told.text = text_of(subject.name, facts);
  told.object = json_of_facts(facts);
  for (const std::string& warning : facts.warnings) note_damage(subject.path, warning);
  if (!facts.problem.empty()) throw Failure(kBadInput, subject.path, facts.problem);
}

void tell_classic(const std::string& path) {
  const auto input = read_dsd_headers(path);
  if (!input) throw no_dsd_file(path);
  const DSD_INFO& info = input->info;
  std::string text = name_on_stdout(path) + "\n";
  add_line(text, "kind", container_name(info.format));
  const std::string compression(info.compressionName,
                                strnlen(info.compressionName, sizeof info.compressionName));
  if (!compression.empty()) add_line(text, "compression", printable(compression));
  add_line(text, "channels", std::to_string(info.channels));
  add_line(text, "rate", rate_name(info.samplingFrequency));
  add_line(text, "duration", duration_text(info.sampleCount, info.samplingFrequency));
  add_line(text, "samples per channel", std::to_string(info.sampleCount));
  add_line(text, "bytes of sound", std::to_string(input->sound_bytes()));
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);  // keeps notes below what they are about
  if (input->is_cut_short()) note_cut_short(path);
}

}  // namespace

void add_info_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("info", "Print what sound files hold");
  auto options = std::make_shared<Options>();
  add_tell_options(*command, options->tell,
                   "DSDIFF, DSF, 1bit and WavPack files, and PCM files of many kinds; - is "
                   "standard input");
  add_choice(*command, "--engine", options->engine, kEngines,
             "Whose view of the files: studio, the sound that is there; or classic, what the "
             "headers declare")
      ->check(one_of(kEngines));
  command->callback([options, &exit_code] {
    if (options->engine == Engine::kStudio) {
      exit_code = tell_each(options->tell, tell);
      return;
    }
    if (options->tell.as_json) throw Failure(kUsage, "--json", "needs the studio engine");
    if (options->tell.recursive) throw Failure(kUsage, "--recursive", "needs the studio engine");
    exit_code = for_each_input(options->tell.paths, tell_classic);
  });
}

}  // namespace corvin::cli
