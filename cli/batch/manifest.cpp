// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/manifest.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kLongestLine = 1 << 20;  // names and messages are far shorter

// Level as the summaries have it, to a hundredth.
double db_of(double peak) { return std::round(2000 * std::log10(peak)) / 100; }

std::string line_of(const Record& record) {
  Json object = {{"event", record.has_ended ? "end" : "begin"},
                 {"output", utf8_of(record.output)},
                 {"input", utf8_of(record.input)},
                 {"input_bytes", record.input_state.bytes},
                 {"input_changed_ns", record.input_state.changed_ns},
                 {"options", utf8_of(record.options)}};
  if (record.has_ended) {
    object["exit"] = static_cast<int>(record.exit);
    if (!record.message.empty()) object["message"] = utf8_of(record.message);
    object["work_seconds"] = std::round(1000 * record.work_seconds) / 1000;
  }
  if (record.is_success()) {
    object["output_bytes"] = record.output_bytes;
    if (!record.sum.empty()) object["xxh3_128"] = record.sum;
    object["gain_db"] = record.gain_db;
    if (record.peak) object["peak"] = *record.peak;
    if (record.peak && *record.peak > 0) object["peak_dbfs"] = db_of(*record.peak);
    object["clips"] = record.clips;
    object["sound_seconds"] = std::round(1000 * record.sound_seconds) / 1000;
  }
  return printable_json(object.dump()) + "\n";
}

}  // namespace

std::optional<FileState> state_of_file(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileState{
      .bytes = static_cast<uint64_t>(status.st_size),
      .changed_ns = int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

std::optional<Record> record_in(std::string_view line) {
  try {
    const Json object = Json::parse(line);
    Record record{.input = object.at("input"),
                  .output = object.at("output"),
                  .options = object.at("options"),
                  .input_state = {.bytes = object.at("input_bytes"),
                                  .changed_ns = object.at("input_changed_ns")}};
    record.has_ended = object.at("event") == "end";
    if (!record.has_ended) return record;
    record.exit = static_cast<ExitCode>(object.at("exit").get<int>());
    record.message = object.value("message", "");
    record.output_bytes = object.value("output_bytes", uint64_t{0});
    record.sum = object.value("xxh3_128", "");
    return record;
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}

Manifest::Manifest(const std::string& path, bool read_only) : path_(path) {
  const int way = read_only ? O_RDONLY : O_RDWR | O_CREAT | O_APPEND;
  descriptor_ = open(path.c_str(), way | O_CLOEXEC, 0666);
  if (descriptor_ < 0 && read_only && errno == ENOENT) return;
  if (descriptor_ < 0) throw Failure(kWriteError, path, std::strerror(errno));
  try {
    // What comes next must not become a part of a line without an end.
    if (!read() && !read_only && write(descriptor_, "\n", 1) != 1)
      throw Failure(kWriteError, path, std::strerror(errno));
  } catch (...) {
    close(descriptor_);
    throw;
  }
}

Manifest::~Manifest() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool Manifest::read() {
  std::string line;
  uint64_t number = 1;
  const auto take = [&] {
    if (auto record = record_in(line)) {
      History& history = histories_[record->output];
      history.is_unfinished = !record->has_ended;
      if (record->is_success()) history.made = std::move(*record);
    } else {
      note(path_, "line " + std::to_string(number) + " is no record and is passed over");
    }
    line.clear();
    ++number;
  };
  std::array<char, 1 << 16> bytes;
  ssize_t got;
  while ((got = ::read(descriptor_, bytes.data(), bytes.size())) != 0) {
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw Failure(kBadInput, path_, std::strerror(errno));
    for (const char c : std::string_view(bytes.data(), static_cast<size_t>(got))) {
      if (c == '\n')
        take();
      else if (line.size() < kLongestLine)
        line += c;
      else
        throw Failure(kBadInput, path_, "is no manifest: a line of it is too long");
    }
  }
  const bool is_ended = line.empty();
  if (!is_ended) take();
  return is_ended;
}

History Manifest::history_of(const std::string& output) const {
  const auto found = histories_.find(utf8_of(output));
  return found == histories_.end() ? History{} : found->second;
}

std::vector<std::string> Manifest::outputs() const {
  std::vector<std::string> outputs;
  for (const auto& [output, history] : histories_)
    if (history.made) outputs.push_back(output);
  return outputs;
}

void Manifest::append(const Record& record) {
  const std::string line = line_of(record);
  const std::lock_guard lock(mutex_);
  // In one piece, as other processes may append as well.
  const ssize_t written = write(descriptor_, line.data(), line.size());
  if (written != static_cast<ssize_t>(line.size())) {
    if (written >= 0) errno = ENOSPC;
    throw Failure(kWriteError, path_, std::strerror(errno));
  }
  // What is recorded as done has to be found so after a power cut, like the outputs.
  if (record.has_ended && fdatasync(descriptor_) != 0 && errno != EINVAL && errno != ENOTSUP)
    throw Failure(kWriteError, path_, std::strerror(errno));
}

}  // namespace corvin::cli
