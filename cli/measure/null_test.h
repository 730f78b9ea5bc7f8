// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is left of one file when another is taken away from it.

#ifndef CORVIN_CLI_MEASURE_NULL_TEST_H_
#define CORVIN_CLI_MEASURE_NULL_TEST_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/measure/report.h"
#include "cli/measure/shift_search.h"
#include "cli/measure/sound_meter.h"

namespace corvin::cli {

/** Two files, laid one on the other. */
struct Difference {
  int64_t shift = 0;                // sample n of A is compared with sample n + shift of B
  uint64_t compared = 0;            // samples of DSD, frames of PCM
  std::vector<uint64_t> differing;  // of these, for each channel
  Measurement left;                 // of A when B is taken away
};

struct NullTest {
  SoundFacts a, b;
  uint64_t samples_a = 0, samples_b = 0;
  std::optional<Shift> shift;
  std::vector<Difference> differences;  // as they are, then shifted, if they are
};

/** Compares two files of the same kind, rate and channels; throws Failure, also for others. */
NullTest null_test(const std::string& path_a, const std::string& path_b, const std::string& name_a,
                   const std::string& name_b);

/** The lines below the files' names. */
std::string null_text(const NullTest& test);

/** The same without "file" and "null". */
Json null_json(const NullTest& test);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_NULL_TEST_H_
