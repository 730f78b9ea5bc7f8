// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Runs a benchmark once for each instruction set that the library has builds for.

#ifndef CORVIN_BENCH_EACH_SET_H_
#define CORVIN_BENCH_EACH_SET_H_

#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>
#include <string>

#include "studio/kernels/instruction_sets.h"

namespace corvin::bench {

/// Registers <name>/<set>, the strongest set first, which calls function(state, mask of the set);
/// reported as skipped where the processor lacks the set.
/// @param arrange  gives the benchmark its arguments
/// @return         the number of sets, so that a constant can make the call
inline std::size_t each_set(
    const std::string& name, void (*function)(benchmark::State&, std::uint32_t),
    void (*arrange)(benchmark::internal::Benchmark*),
    std::span<const studio::InstructionSet> sets = studio::instruction_sets()) {
  for (std::size_t i = sets.size(); i-- > 0;) {
    const std::uint32_t mask = sets[i].mask();
    const auto run = [function, mask](benchmark::State& state) {
      if ((mask & ~studio::detected_features()) != 0) {
        state.SkipWithError("not on this processor");
      } else {
        function(state, mask);
      }
    };
    benchmark::RegisterBenchmark((name + '/' + sets[i].name).c_str(), run)->Apply(arrange);
  }
  return sets.size();
}

/// The same without the portable builds, which nobody waits for in whole streams.
inline std::size_t each_vector_set(const std::string& name,
                                   void (*function)(benchmark::State&, std::uint32_t),
                                   void (*arrange)(benchmark::internal::Benchmark*)) {
  return each_set(name, function, arrange, studio::instruction_sets().subspan(1));
}

}  // namespace corvin::bench

#endif  // CORVIN_BENCH_EACH_SET_H_
