// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A copy of a damaged DSD file in the same container, with its sound as far as it can be read and with
// headers that are true.

#ifndef CORVIN_CLI_MEND_MENDED_COPY_H_
#define CORVIN_CLI_MEND_MENDED_COPY_H_

#include <string>

#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/mend/faults.h"

namespace corvin::cli {

/** Writes the copy, compares its sound with the input's, and says what has been mended and what has
 *  not. Throws Failure, also when there is nothing that could be mended; there is no copy then. */
void write_mended_copy(DsdInput& input, const Faults& faults, const OutputFile::Config& output);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEND_MENDED_COPY_H_
