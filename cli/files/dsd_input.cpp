// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/dsd_input.h"

#include <cerrno>
#include <cstring>

namespace corvin::cli {

std::optional<Failure> StudioSource::open(const std::string& path) {
  corvin_file* file = nullptr;
  errno = 0;
  const int status = corvin_file_open(path.c_str(), &file);
  if (status == CORVIN_E_READ)
    return Failure{kBadInput, errno != 0 ? std::strerror(errno) : "is not a regular file"};
  is_of_unknown_kind_ = status == CORVIN_E_FORMAT;
  if (is_of_unknown_kind_) return Failure{kBadInput, "is no DSDIFF, DSF or 1bit file"};
  if (status != CORVIN_OK) return Failure{kBadInput, corvin_strerror(status)};
  file_.reset(file);
  info_.size = sizeof info_;
  corvin_file_get_info(file, &info_);
  if (info_.readable == CORVIN_E_FORMAT) return Failure{kBadInput, *problem()};
  return {};
}

std::optional<std::string> StudioSource::problem() const {
  const char* sentence = corvin_file_problem(file_.get());
  return sentence ? std::optional<std::string>(sentence) : std::nullopt;
}

void StudioSource::note_warnings(const std::string& path) const {
  for (uint32_t i = 0; const char* sentence = corvin_file_warning(file_.get(), i); ++i)
    note(path, sentence);
}

}  // namespace corvin::cli
