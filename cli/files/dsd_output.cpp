// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/dsd_output.h"

#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "cli/classic/dsd_source.h"

namespace corvin::cli {
namespace {

constexpr uint32_t kMostChannels = 8;

uint32_t most_channels(int container) { return container == CORVIN_DSF ? 6 : kMostChannels; }

}  // namespace

uint32_t studio_dsd_rate_hz(const std::string& text, bool of_48k_family) {
  const int asked_hz = parse_rate_hz(text, 512 * 48000);
  for (const int multiple : {64, 128, 256, 512}) {
    for (const int base_hz : {44100, 48000})
      if (asked_hz == multiple * base_hz) return static_cast<uint32_t>(asked_hz);
    if (text == "dsd" + std::to_string(multiple))
      return static_cast<uint32_t>(multiple * (of_48k_family ? 48000 : 44100));
  }
  return 0;
}

DsdOutput::DsdOutput(const Config& config)
    : config_(config),
      file_({.path = config.path, .input_path = config.input_path, .overwrite = config.overwrite}) {
}

std::optional<Failure> DsdOutput::open() {
  const int container = container_of(config_.path);
  if (config_.channels > most_channels(container))
    return Failure{config_.channels > kMostChannels ? kBadInput : kUsage,
                   "cannot hold " + std::to_string(config_.channels) + " channels; " +
                       kind_name(static_cast<uint32_t>(container)) + " takes up to " +
                       std::to_string(most_channels(container))};
  if (auto failure = file_.open()) return failure;

  corvin_writer_settings settings;
  corvin_writer_settings_defaults(&settings);
  settings.container = static_cast<uint32_t>(container);
  settings.dsd_rate = config_.dsd_rate;
  settings.channels = config_.channels;
  settings.speakers = config_.speakers;
  corvin_stream stream{};
  stream.size = sizeof stream;
  stream.user = this;
  stream.seek = seek;
  stream.write = write;
  corvin_writer* writer = nullptr;
  const int status = corvin_writer_create_stream(&stream, &settings, &writer);
  if (status == CORVIN_E_WRITE) return Failure{kWriteError, error_};
  if (status != CORVIN_OK) return Failure{kBadInput, corvin_strerror(status)};
  writer_.reset(writer);
  return {};
}

ExitCode DsdOutput::finish(int status, const corvin_convert_report& result,
                           const std::string& duration, const std::string& level) {
  if (status == CORVIN_E_WRITE) return report(config_.path, {kWriteError, error_});
  if (status != CORVIN_OK) return report(config_.input_path, {kBadInput, corvin_strerror(status)});
  if (const auto failure = file_.commit()) return report(config_.path, *failure);
  if (result.limited != 0)
    note(config_.input_path,
         "is louder in places than DSD can follow and was limited; a lower --gain avoids that");
  std::printf("%s: %s, %s, %" PRIu32 " channel%s, %s%s\n", config_.path.c_str(),
              kind_name(static_cast<uint32_t>(container_of(config_.path))),
              rate_name(config_.dsd_rate).c_str(), config_.channels,
              config_.channels == 1 ? "" : "s", duration.c_str(), level.c_str());
  return kDone;
}

int DsdOutput::seek(void* user, uint64_t offset) {
  static_cast<DsdOutput*>(user)->offset_ = offset;
  return 0;
}

int DsdOutput::write(void* user, const void* from, size_t bytes) {
  auto& self = *static_cast<DsdOutput*>(user);
  const auto* next = static_cast<const char*>(from);
  while (bytes > 0) {
    const ssize_t written =
        pwrite(self.file_.descriptor(), next, bytes, static_cast<off_t>(self.offset_));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      self.error_ = std::strerror(written < 0 ? errno : EIO);
      return 1;
    }
    next += written;
    bytes -= static_cast<size_t>(written);
    self.offset_ += static_cast<uint64_t>(written);
  }
  return 0;
}

}  // namespace corvin::cli
