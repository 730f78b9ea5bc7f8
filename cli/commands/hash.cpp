// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin hash: sums of the sound alone, which stay when tags or containers change.

#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "cli/commands/commands.h"
#include "cli/commands/tell_each.h"
#include "cli/files/dsd_input.h"
#include "cli/files/md5.h"
#include "cli/files/payload.h"
#include "cli/words/job_progress.h"
#include "cli/words/stdout_name.h"

namespace corvin::cli {
namespace {

class Sums {
 public:
  void add(std::span<const uint8_t> bytes) {
    md5_.add(bytes);
    xxh3_.add(bytes);
    bytes_ += bytes.size();
  }

  /** Nothing can be added afterwards. */
  void put_into(const std::string& name, Told& told) {
    std::string md5;
    for (const uint8_t byte : md5_.finish()) {
      char pair[3];
      std::snprintf(pair, sizeof pair, "%02x", byte);
      md5 += pair;
    }
    const std::string xxh3 = digits_of(xxh3_.value());
    told.object["payload_bytes"] = bytes_;
    told.object["md5"] = md5;
    told.object["xxh3_128"] = xxh3;
    const std::string shown = name_on_stdout(name);
    told.text = "md5   " + md5 + "  " + shown + "\nxxh3  " + xxh3 + "  " + shown + "\n";
  }

 private:
  Md5 md5_;
  PayloadHash xxh3_;
  uint64_t bytes_ = 0;
};

void describe(bool is_dsd, uint32_t rate_hz, uint32_t channels, uint64_t samples, Told& told) {
  told.object["type"] = is_dsd ? "dsd" : "pcm";
  told.object["rate_hz"] = rate_hz;
  told.object["channels"] = channels;
  told.object["samples"] = samples;
}

void hash_dsd(const Subject& subject, DsdInput& input, Told& told) {
  input.require_sound();
  const corvin_file_info& info = input.info();
  Sums sums;
  JobProgress progress(subject.name, info.dsd_rate);
  try {
    read_payload(input.file(), [&](std::span<const uint8_t> bytes, uint64_t done) {
      sums.add(bytes);
      progress.show(done, info.samples);
    });
  } catch (const Error& error) {
    throw Failure(kBadInput, subject.path, error.what());
  }
  describe(true, info.dsd_rate, info.channels, info.samples, told);
  sums.put_into(subject.name, told);
  input.note_warnings();
}

void hash_pcm(const Subject& subject, PcmInput& input, Told& told) {
  if (input.bits() == 0)
    throw Failure(kBadInput, subject.path,
                  "is packed with loss: its samples are those of whoever unpacks it, and have no "
                  "sum of their own");
  const PcmPayload form{.is_float = input.is_float(), .bits = static_cast<int>(input.bits())};
  Sums sums;
  JobProgress progress(subject.name, input.rate_hz());
  const uint64_t frames =
      read_payload(input, form, [&](std::span<const uint8_t> bytes, uint64_t done) {
        sums.add(bytes);
        progress.show(done, input.declared_frames().value_or(0));
      });
  describe(false, input.rate_hz(), input.channels(), frames, told);
  told.object["bits"] = input.bits();
  sums.put_into(subject.name, told);
  if (const std::string damage = input.damage(); !damage.empty()) note_damage(subject.path, damage);
}

void hash(const Subject& subject, Told& told) {
  if (auto dsd = DsdInput::open(subject.path)) return hash_dsd(subject, *dsd, told);
  PcmInput pcm(subject.path);
  hash_pcm(subject, pcm, told);
}

}  // namespace

void add_hash_command(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("hash", "Print sums of the sound alone");
  auto options = std::make_shared<TellOptions>();
  add_tell_options(*command, *options,
                   "DSDIFF, DSF, 1bit and WavPack files, and lossless PCM files; - is standard "
                   "input");
  command->callback([options, &exit_code] { exit_code = tell_each(*options, hash); });
}

}  // namespace corvin::cli
