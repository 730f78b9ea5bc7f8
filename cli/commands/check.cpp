// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin check: whether files are in order, from their headers to the last sample.

#include <CLI/CLI.hpp>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/batch/manifest.h"
#include "cli/commands/commands.h"
#include "cli/commands/tell_each.h"
#include "cli/convert/sound_check.h"
#include "cli/files/payload.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/measures.h"
#include "cli/words/said.h"
#include "cli/words/stdout_name.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

struct Options {
  TellOptions tell;
  bool decode = false;
  bool strict = false;
  std::optional<std::string> manifest;
};

/** Files of all sorts, for the last line. */
struct Counts {
  std::atomic<size_t> good = 0, remarkable = 0, damaged = 0, unreadable = 0;
};

void take(SoundCheck& check, SoundCheck&& other) {
  std::move(other.damage.begin(), other.damage.end(), std::back_inserter(check.damage));
  std::move(other.remarks.begin(), other.remarks.end(), std::back_inserter(check.remarks));
  check.samples = other.samples;
  check.peak = other.peak;
}

SoundCheck check_dsd(DsdInput& input, const Subject& subject, bool decode) {
  SoundCheck check;
  input.require_sound();
  try {
    for (const std::string& warning : input.file().all_tags().warnings())
      check.damage.push_back(warning);
  } catch (const Error& error) {
    check.damage.push_back(std::string("its tags cannot be read: ") + error.what());
  }
  take(check, check_sound(input, subject.name, decode));
  // Some of them come up while the sound is read.
  const std::vector<std::string> oddities = input.oddities();
  check.damage.insert(check.damage.begin(), oddities.begin(), oddities.end());
  if (input.info().samples == 0) check.remarks.emplace_back("holds no sound");
  return check;
}

SoundCheck check_file(const Subject& subject, bool decode, uint32_t& rate_hz) {
  if (auto dsd = DsdInput::open(subject.path)) {
    rate_hz = dsd->info().dsd_rate;
    return check_dsd(*dsd, subject, decode);
  }
  PcmInput pcm(subject.path);
  rate_hz = pcm.rate_hz();
  read_pcm_tags(pcm);
  SoundCheck check = check_sound(pcm, subject.name, decode);
  if (check.samples == 0) check.remarks.emplace_back("holds no sound");
  return check;
}

std::string joined(const std::vector<std::string>& first, const std::vector<std::string>& second) {
  std::string all;
  for (const auto* list : {&first, &second})
    for (const std::string& one : *list) all += (all.empty() ? "" : "; ") + printable(one);
  return all;
}

Json list_of(const std::vector<std::string>& sentences) {
  Json list = Json::array();
  for (const std::string& one : sentences) list.push_back(utf8_of(one));
  return list;
}

// What is no longer as it was made.
void compare(const Manifest& manifest, const Subject& subject, SoundCheck& check) {
  const std::optional<Record> made = manifest.history_of(subject.name).made;
  if (!made) return;
  const uint64_t bytes = state_of_file(subject.path).value_or(FileState{}).bytes;
  if (bytes != made->output_bytes)
    check.damage.push_back("has " + std::to_string(bytes) + " bytes, and had " +
                           std::to_string(made->output_bytes) + " when it was made");
  if (!made->sum.empty() && payload_sum(subject.path) != made->sum)
    check.damage.emplace_back("its sound is not what was made");
}

void look(const Options& options, const Manifest* manifest, const Subject& subject, Told& told,
          Counts& counts) {
  const std::string name = name_on_stdout(subject.name);
  uint32_t rate_hz = 0;
  SoundCheck check;
  try {
    check = check_file(subject, options.decode, rate_hz);
    if (manifest) compare(*manifest, subject, check);
  } catch (const Failure& failure) {
    ++counts.unreadable;
    told.object["ok"] = false;
    told.text = name + ": cannot be checked: " + printable(failure.what()) + "\n";
    throw;
  }
  const std::string verdict = joined(check.damage, check.remarks);
  const bool is_damaged = !check.damage.empty();
  ++(is_damaged ? counts.damaged : verdict.empty() ? counts.good : counts.remarkable);
  told.object["ok"] = !is_damaged && (verdict.empty() || !options.strict);
  told.object["damage"] = list_of(check.damage);
  told.object["remarks"] = list_of(check.remarks);
  told.object["samples"] = check.samples;
  told.object["duration_s"] = static_cast<double>(check.samples) / rate_hz;
  if (check.peak.value_or(0) > 0) told.object["peak_dbfs"] = 20 * std::log10(*check.peak);
  // What may be meant so does not make a file bad.
  const std::string start = is_damaged || options.strict ? "" : "ok, but ";
  told.text = name + ": " + (verdict.empty() ? "ok" : start + verdict) + "\n";
  if (options.strict && !verdict.empty())
    throw Failure(kBadInput, subject.path, "fails the check: " + verdict);
  if (is_damaged) hold_damage();
}

std::string summary(const Counts& counts) {
  const size_t all = counts.good + counts.remarkable + counts.damaged + counts.unreadable;
  std::string text = counted(all, "file") + ": " + std::to_string(counts.good) + " ok";
  const auto add = [&](size_t count, const char* what) {
    if (count > 0) text += ", " + std::to_string(count) + " " + what;
  };
  add(counts.remarkable, "ok with remarks");
  add(counts.damaged, "damaged");
  add(counts.unreadable, "unreadable");
  return all > 1 ? text + "\n" : "";
}

}  // namespace

void add_check_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("check", "Tell whether sound files are in order");
  auto options = std::make_shared<Options>();
  add_tell_options(*command, options->tell,
                   "DSDIFF, DSF, 1bit and WavPack files, and PCM files of many kinds; - is "
                   "standard input");
  command->add_flag("--decode", options->decode,
                    "Decode all of the sound, too, and tell of levels beyond full scale, of "
                    "silence, and of bits that are no DSD");
  command->add_flag("--strict", options->strict,
                    "Fail for whatever is odd, not for damage alone, with exit code 3");
  command->get_option("FILE")->required(false);
  command
      ->add_option(
          "--manifest", options->manifest,
          "Check the outputs that a manifest of corvin convert lists, and that they are as "
          "they were made")
      ->type_name("FILE");
  command->callback([options, &exit_code] {
    std::optional<Manifest> manifest;
    if (options->manifest) {
      if (!state_of_file(*options->manifest))
        throw Failure(kBadInput, *options->manifest, std::strerror(errno));
      manifest.emplace(*options->manifest, true);
      for (const std::string& output : manifest->outputs()) options->tell.paths.push_back(output);
    }
    if (options->tell.paths.empty())
      throw manifest ? Failure(kBadInput, *options->manifest, "lists no output")
                     : Failure(kUsage, "FILE", "is required, or --manifest");
    Counts counts;
    exit_code = tell_each(options->tell, [&](const Subject& subject, Told& told) {
      look(*options, manifest ? &*manifest : nullptr, subject, told, counts);
    });
    if (!options->tell.as_json) std::fputs(summary(counts).c_str(), stdout);
  });
}

}  // namespace corvin::cli
