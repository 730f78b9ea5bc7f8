// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/dsd_output.h"

#include <cerrno>
#include <cstring>

#include "cli/files/descriptor_bytes.h"
#include "cli/files/dsd_container.h"
#include "cli/files/speakers.h"
#include "cli/files/tagged_file.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

// Comes before the file is made.
const DsdOutput::Config& checked(const DsdOutput::Config& config) {
  const uint32_t most = most_channels(config.container);
  if (config.channels <= most) return config;
  throw Failure(config.channels > kMostChannels ? kBadInput : kUsage, config.file.path,
                "cannot hold " + std::to_string(config.channels) + " channels; " +
                    container_name(config.container) + " takes up to " + std::to_string(most));
}

// The mask that the file gets for that of the sound. Another one is told of; what would give
// channels to the wrong speakers is refused.
uint32_t named_speakers(const DsdOutput::Config& config) {
  const uint32_t speakers = config.speakers;
  if (speakers == 0 || names_speakers(config.container, speakers)) return speakers;
  const std::string& path = config.file.path;
  if (config.container == CORVIN_ONE_BIT) {
    if (config.channels > 2)
      note(path, "does not tell its speakers, " + speaker_names(speakers) +
                     ", for which 1bit files have no names");
    return 0;
  }
  const uint32_t nearest = dsd_speakers(speakers);
  if (!names_speakers(config.container, nearest))
    throw Failure(kUsage, path,
                  std::string(container_name(config.container)) + " has no name for the speakers " +
                      speaker_names(speakers) + "; DSDIFF (.dff) has, and --channels picks others");
  note(path, "calls the speakers " + speaker_names(speakers) + " " + speaker_names(nearest) +
                 ", as it has no other names");
  return nearest;
}

}  // namespace

DsdOutput::DsdOutput(const Config& config) : config_(checked(config)), file_(config.file) {
  WriterSettings settings;
  settings.container = config.container;
  settings.dsd_rate = config.dsd_rate_hz;
  settings.channels = config.channels;
  settings.speakers = named_speakers(config);
  try {
    writer_.emplace(static_cast<ByteStream&>(*this), settings);
  } catch (const Error& error) {
    if (error.status() == CORVIN_E_WRITE) throw write_failure();
    throw Failure(kBadInput, config.file.path, error.what());
  }
}

void DsdOutput::set_tags(const TagSet& tags, corvin_id3_form form) {
  try {
    writer_->set_all_tags(tags, form);
  } catch (const Error& error) {
    const std::string& path = config_.file.path;
    if (error.status() != CORVIN_E_UNSUPPORTED)
      note(path, std::string("gets no tags: ") + error.what());
    else if (config_.container == CORVIN_ONE_BIT)
      note(path, "gets no tags, for 1bit files hold none: without " + contents_of(tags));
    else
      note(path, "gets no tags, for they are larger than the 256 MiB that a file can hold");
  }
}

void DsdOutput::commit() {
  if (config_.verify && !log_.is_in(file_.descriptor()))
    throw Failure(kVerifyFailed, config_.file.path,
                  "does not hold what was written; nothing is kept of it");
  file_.commit();
}

void DsdOutput::print_summary(const std::string& duration, const std::string& level) const {
  cli::print_summary(config_.file.path,
                     {container_name(config_.container), rate_name(config_.dsd_rate_hz),
                      counted(config_.channels, "channel"), duration, level});
}

// ---- Details --------------------------------------------------------------------------------

bool DsdOutput::seek(std::uint64_t offset) {
  offset_ = offset;
  return true;
}

bool DsdOutput::write(std::span<const std::byte> bytes) {
  if (!write_at(file_.descriptor(), offset_, bytes)) {
    error_ = std::strerror(errno);
    return false;
  }
  if (config_.verify) log_.add(offset_, bytes);
  offset_ += bytes.size();
  return true;
}

}  // namespace corvin::cli
