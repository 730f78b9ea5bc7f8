// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files joined to one without any change to a sample. They are known to fit by then.
//
// Both throw Failure; what is damaged in an input of which the rest has been written is noted.

#ifndef CORVIN_CLI_CONVERT_JOIN_H_
#define CORVIN_CLI_CONVERT_JOIN_H_

#include <cstdint>
#include <string>
#include <vector>

#include "cli/files/output_file.h"
#include "cli/files/output_kind.h"
#include "corvin.hpp"

namespace corvin::cli {

struct JoinRequest {
  std::vector<std::string> inputs;
  OutputFile::Config output;
  OutputKind kind;
  const TagSet* tags = nullptr;
  bool verify = false;
};

/** Where in the output each input begins, in samples or frames. */
using Beginnings = std::vector<uint64_t>;

Beginnings join_dsd(const JoinRequest& request);
Beginnings join_pcm(const JoinRequest& request);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_JOIN_H_
