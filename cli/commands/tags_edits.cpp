// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/tags_edits.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/commands/choice_option.h"
#include "cli/commands/each_input.h"
#include "cli/files/output_file.h"
#include "cli/files/picture_mime.h"
#include "cli/files/tagged_file.h"
#include "cli/files/tags_json.h"
#include "cli/words/failure.h"
#include "cli/words/unicode_text.h"
#include "corvin.hpp"

namespace corvin::cli {
namespace {

constexpr Choice<corvin_id3_form> kVersions[] = {
    {"2.3", CORVIN_ID3_V23},
    {"2.4", CORVIN_ID3_V24},
};

struct Edits {
  std::vector<std::string> paths;
  std::vector<std::string> set, add, pictures;  // "NAME=VALUE", "TYPE:FILE"
  std::vector<std::string> names, types;
  bool all = false;
  std::string from, json;  // files
  std::string output, pictures_to;
  bool overwrite = false;
  bool force = false;
  corvin_id3_form version = CORVIN_ID3_AS_READ;
};

using SharedEdits = std::shared_ptr<Edits>;

// ---- What the options say ----------------------------------------------------------------------

struct Assignment {
  std::string name, value;
};

Assignment assignment_in(const std::string& text) {
  const size_t sign = text.find('=');
  if (sign == std::string::npos || sign == 0 || sign + 1 == text.size())
    throw Failure(kUsage, text, "is not of the form NAME=VALUE");
  return {text.substr(0, sign), text.substr(sign + 1)};
}

std::optional<uint32_t> type_in(std::string_view text) {
  constexpr uint32_t kMostTypes = 21;
  uint32_t type = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), type);
  const bool is_type =
      error == std::errc() && end == text.data() + text.size() && type < kMostTypes;
  return is_type ? std::optional(type) : std::nullopt;
}

std::string contents_of(const std::string& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw Failure(kBadInput, path, errno != 0 ? std::strerror(errno) : "cannot be read");
  return bytes;
}

// "TYPE:FILE" or "FILE", which stands for a front cover.
struct PictureFile {
  explicit PictureFile(const std::string& text) {
    const size_t colon = text.find(':');
    const auto asked = type_in(text.substr(0, colon));
    const bool has_type = colon != std::string::npos && asked;
    if (has_type) type = *asked;
    data = contents_of(has_type ? text.substr(colon + 1) : text);
    if (data.empty()) throw Failure(kBadInput, text, "is an empty file");
  }
  uint32_t type = 3;
  std::string data;
};

void remove_pictures(TagSet& tags, uint32_t type) {
  const std::vector<Picture> pictures = tags.pictures();
  for (size_t i = pictures.size(); i-- > 0;)
    if (pictures[i].type == type) tags.remove_picture(static_cast<uint32_t>(i));
}

// ---- The commands ------------------------------------------------------------------------------

// Changes each file's tags and saves them.
template <class Change>
int edit(const Edits& edits, Change change) {
  return for_each_input(edits.paths, [&](const std::string& path) {
    TagSet tags = tags_of_file(path);
    try {
      change(path, tags);
    } catch (const Error&) {
      throw Failure(kUsage, path, "gets no tags that are no UTF-8");
    }
    note_losses(path, tags, edits.version);
    save_tags(path, tags, edits.version);
  });
}

int set(const Edits& edits) {
  std::vector<Assignment> values, more;
  std::vector<PictureFile> pictures;
  for (const std::string& text : edits.set) values.push_back(assignment_in(text));
  for (const std::string& text : edits.add) more.push_back(assignment_in(text));
  for (const std::string& text : edits.pictures) pictures.emplace_back(text);
  if (values.empty() && more.empty() && pictures.empty() && edits.version == CORVIN_ID3_AS_READ)
    throw Failure(kUsage, "corvin tags set", "is told nothing to set");
  return edit(edits, [&](const std::string&, TagSet& tags) {
    for (const auto& [name, value] : values) tags.set(name, value);
    for (const auto& [name, value] : more) tags.add(name, value);
    for (const PictureFile& picture : pictures) remove_pictures(tags, picture.type);
    for (const PictureFile& picture : pictures) {
      tags.add_picture(
          {picture.type, mime_of(picture.data), "", std::as_bytes(std::span(picture.data))});
    }
  });
}

int remove(const Edits& edits) {
  std::vector<uint32_t> types;
  for (const std::string& text : edits.types) {
    const auto type = type_in(text);
    if (!type) throw Failure(kUsage, text, "is no type of picture; they are 0 to 20");
    types.push_back(*type);
  }
  if (edits.names.empty() && types.empty() && !edits.all)
    throw Failure(kUsage, "corvin tags remove", "is told nothing to remove");
  return edit(edits, [&](const std::string&, TagSet& tags) {
    if (edits.all) tags.clear();
    for (const std::string& name : edits.names) tags.remove(name);
    for (const uint32_t type : types) remove_pictures(tags, type);
  });
}

int copy(const Edits& edits) {
  const TagSet tags = tags_of_file(edits.from);
  return for_each_input(edits.paths, [&](const std::string& path) {
    note_losses(path, tags, edits.version);
    save_tags(path, tags, edits.version);
  });
}

void write_file(const std::string& path, std::string_view bytes, const Edits& edits) {
  OutputFile file({.path = path,
                   .input_path = edits.paths[0],
                   .overwrite = edits.overwrite,
                   .force = edits.force});
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.descriptor(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) throw Failure(kWriteError, path, std::strerror(errno));
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  file.commit();
}

std::string ending_of(const std::string& mime) {
  if (mime == "image/jpeg" || mime == "image/jpg") return ".jpg";
  const size_t slash = mime.find('/');
  const std::string kind = slash == std::string::npos ? "" : mime.substr(slash + 1);
  const bool is_plain = !kind.empty() && std::all_of(kind.begin(), kind.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  });
  return is_plain ? "." + kind : ".bin";
}

// "FOLDER/song.dsf.1.jpg".
void write_pictures(const std::string& path, const TagSet& tags, const Edits& edits) {
  int number = 0;
  for (const Picture& picture : tags.pictures()) {
    const std::string name = path.substr(path.rfind('/') + 1) + "." + std::to_string(++number);
    write_file(edits.pictures_to + "/" + name + ending_of(picture.mime),
               {reinterpret_cast<const char*>(picture.data.data()), picture.data.size()}, edits);
  }
}

int export_tags(const Edits& edits) {
  Json all = Json::array();
  const ExitCode exit_code = for_each_input(edits.paths, [&](const std::string& path) {
    const TagSet tags = tags_of_file(path);
    if (!edits.pictures_to.empty()) write_pictures(path, tags, edits);
    all.push_back(json_of(path, tags, true));
  });
  const std::string text = printable_json(all.dump(2) + "\n");
  if (edits.output == "-")
    std::fwrite(text.data(), 1, text.size(), stdout);
  else if (!edits.output.empty())
    write_file(edits.output, text, edits);
  return exit_code;
}

Json json_in(const std::string& path) {
  const std::string text =
      path == "-" ? std::string(std::istreambuf_iterator<char>(std::cin), {}) : contents_of(path);
  Json all = Json::parse(text, nullptr, false);
  if (!all.is_array() || all.empty())
    throw Failure(kBadInput, path, "is no JSON as corvin tags export writes it");
  return all;
}

int import_tags(Edits edits) {
  const Json all = json_in(edits.json);
  const bool is_for_all = !edits.paths.empty();
  if (is_for_all && all.size() != 1)
    throw Failure(kUsage, edits.json, "has the tags of several files; they go to these alone");
  const auto bad = [&] {
    return Failure(kBadInput, edits.json, "is no JSON as corvin tags export writes it");
  };
  for (const Json& entry : all) {
    const bool is_named = entry.is_object() && entry.contains("file") && entry["file"].is_string();
    if (!is_named) throw bad();
    if (!is_for_all) edits.paths.push_back(entry["file"].get<std::string>());
  }
  size_t next = 0;
  return for_each_input(edits.paths, [&](const std::string& path) {
    const Json& entry = all[is_for_all ? 0 : next++];
    TagSet tags = tags_of_file(path);
    try {
      read_json(entry, tags);
    } catch (const Json::exception&) {
      throw bad();
    } catch (const Error&) {
      throw bad();
    }
    note_losses(path, tags, edits.version);
    save_tags(path, tags, edits.version);
  });
}

// ---- Their options -----------------------------------------------------------------------------

void add_files(CLI::App& command, const SharedEdits& edits) {
  command.add_option("FILE", edits->paths, "DSF, DSDIFF, FLAC, WAV, RF64, AIFF and WavPack files")
      ->required();
}

void add_version(CLI::App& command, const SharedEdits& edits) {
  add_choice(command, "--id3", edits->version, kVersions,
             "Version of ID3v2 to write, 2.3 or 2.4; by default 2.4, or the block as it was "
             "when nothing changes")
      ->check(one_of(kVersions));
}

template <class Run>
SharedEdits add(CLI::App& parent, const char* name, const char* what, int& exit_code, Run run,
                CLI::App*& command) {
  command = parent.add_subcommand(name, what);
  auto edits = std::make_shared<Edits>();
  command->callback([edits, run, &exit_code] { exit_code = run(*edits); });
  return edits;
}

}  // namespace

void add_tags_edits(CLI::App& tags, int& exit_code) {
  CLI::App* command = nullptr;
  SharedEdits edits = add(tags, "set", "Give files fields and pictures", exit_code, set, command);
  command->add_option("-t,--tag", edits->set, "Field that gets this value in place of all it had")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command->add_option("-a,--add", edits->add, "Field that gets one more value")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option("-p,--picture", edits->pictures,
                   "Picture file, in place of those of its type; 3, a front cover, by default")
      ->type_name("[TYPE:]FILE")
      ->allow_extra_args(false);
  add_version(*command, edits);
  add_files(*command, edits);

  edits = add(tags, "remove", "Take fields and pictures out", exit_code, remove, command);
  command->add_option("-t,--tag", edits->names, "Field to remove")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command->add_option("-p,--picture", edits->types, "Type of the pictures to remove, 0 to 20")
      ->type_name("TYPE")
      ->allow_extra_args(false);
  command->add_flag("--all", edits->all, "Remove everything");
  add_version(*command, edits);
  add_files(*command, edits);

  edits = add(tags, "copy", "Give files all tags of another one", exit_code, copy, command);
  command->add_option("FROM", edits->from, "DSD or PCM file")->required();
  add_version(*command, edits);
  add_files(*command, edits);

  edits = add(tags, "export", "Write all tags as JSON", exit_code, export_tags, command);
  edits->output = "-";
  command->add_option("-o,--output", edits->output, "File to write; by default standard output")
      ->type_name("OUT");
  command
      ->add_option("--pictures", edits->pictures_to,
                   "Folder that gets each picture as a file too, by the name of its file")
      ->type_name("FOLDER");
  command->add_flag("-y", edits->overwrite, "Overwrite files that exist");
  command->add_flag("--force", edits->force, "With -y, even those that are write-protected");
  command->add_option("FILE", edits->paths, "DSD or PCM files")->required();

  edits = add(tags, "import", "Give files the tags that export has written", exit_code, import_tags,
              command);
  command->add_option("JSON", edits->json, "File that export wrote; - for standard input")
      ->required();
  add_version(*command, edits);
  command->add_option("FILE", edits->paths, "Files that get them; by default those that it names");
}

}  // namespace corvin::cli
