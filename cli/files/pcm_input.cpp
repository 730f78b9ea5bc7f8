// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/pcm_input.h"

#include <sndfile.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "cli/files/missing_bytes.h"
#include "cli/words/failure.h"

namespace corvin::cli {

PcmInput::PcmInput(const std::string& path) : path_(path) {
  const auto bad = [&](const std::string& why) { return Failure(kBadInput, path, why); };
  struct stat status;
  if (stat(path.c_str(), &status) != 0) throw bad(std::strerror(errno));
  if (!S_ISREG(status.st_mode)) throw bad("is not a regular file");
  reader_ = open_flac(path);
  if (!reader_) reader_ = open_wavpack(path);
  if (!reader_) {
    reader_ = open_sndfile(path);
    missing_bytes_ = missing_bytes(path);
  }
  if (!reader_) throw bad("is neither a DSD file nor PCM in a file that libsndfile reads");
  if (channels() < 1 || rate_hz() < 1) throw bad("is damaged: it declares no sound");
}

bool PcmInput::is_float() const {
  return sample_format() == SF_FORMAT_FLOAT || sample_format() == SF_FORMAT_DOUBLE;
}

std::string PcmInput::damage() const {
  if (missing_bytes_ != 0)
    return "is cut short: " + std::to_string(missing_bytes_) +
           " bytes that its headers state are missing";
  const uint64_t declared = declared_frames().value_or(0);
  if (is_at_end_ && frames_ < declared)
    return "is cut short: of " + std::to_string(declared) + " frames " + std::to_string(frames_) +
           " are there";
  return reader_->damage();
}

// ---- Details --------------------------------------------------------------------------------

size_t PcmInput::counted(size_t frames, size_t room) {
  frames_ += frames;
  if (frames < room / channels()) is_at_end_ = true;
  return frames;
}

}  // namespace corvin::cli
