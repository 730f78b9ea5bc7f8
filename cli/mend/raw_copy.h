// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Copies of DSDIFF and 1bit files that keep every part byte for byte but for what is wrong.

#ifndef CORVIN_CLI_MEND_RAW_COPY_H_
#define CORVIN_CLI_MEND_RAW_COPY_H_

#include "cli/files/dsd_input.h"
#include "cli/files/output_file.h"
#include "cli/mend/faults.h"

namespace corvin::cli {

/** Fill an output, without giving it its name. Throw Failure. */
void copy_dsdiff(DsdInput& input, const Faults& faults, const OutputFile& output,
                 const std::string& name);
void copy_one_bit(DsdInput& input, const OutputFile& output, const std::string& name);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEND_RAW_COPY_H_
