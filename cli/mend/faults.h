// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is wrong with a DSD file, and what a mended copy has in its place.

#ifndef CORVIN_CLI_MEND_FAULTS_H_
#define CORVIN_CLI_MEND_FAULTS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/files/dsd_input.h"
#include "corvin.hpp"

namespace corvin::cli {

/** The tag of a DSF file that its header does not point to. */
struct LostTag {
  uint64_t offset = 0;
  std::vector<std::byte> block;  // ID3v2
};

struct Faults {
  std::vector<std::string> of_file;  // sentences without subject, as the file's reader has them
  std::vector<std::string> of_tags;
  TagSet tags;                      // what could be read of them, the lost ones too
  std::optional<LostTag> lost_tag;  // that was found

  bool empty() const { return of_file.empty() && of_tags.empty(); }
};

/** Looks for what is wrong with a file whose sound can be read. Throws Failure. */
Faults faults_of(DsdInput& input);

/** What is done about a fault of the file: "the copy states the true one". */
std::string remedy_of(const std::string& fault, const Faults& faults);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEND_FAULTS_H_
