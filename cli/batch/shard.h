// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One of several equal parts of the work, for machines that share a batch without talking to each
// other: each finds its part from the same inputs, so together they do everything once.

#ifndef CORVIN_CLI_BATCH_SHARD_H_
#define CORVIN_CLI_BATCH_SHARD_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvin::cli {

struct Shard {
  uint32_t index = 1;  // from 1
  uint32_t count = 1;
};

/** "3/8". */
std::optional<Shard> shard_in(const std::string& text);

/** From the variables that Slurm gives each task of an array; no value outside of one. */
std::optional<Shard> shard_of_slurm_array();

/** What stays together: everything of a group goes to one shard. */
struct Weight {
  std::string group;
  uint64_t bytes = 0;
};

/** Which of `all` are the shard's. The groups go, the heaviest first, each to the shard that has
 *  least so far, which leaves a shard at most a third more than the best division would (R. L. Graham,
 *  Bounds on multiprocessing timing anomalies, 1969, theorem 2). */
std::vector<bool> part_of_shard(const std::vector<Weight>& all, const Shard& shard);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_BATCH_SHARD_H_
