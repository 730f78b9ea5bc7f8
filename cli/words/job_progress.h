// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How far a job has come, for people on a terminal or as JSON for programs (--progress). Any number of
// jobs at once, each on its own line.

#ifndef CORVIN_CLI_WORDS_JOB_PROGRESS_H_
#define CORVIN_CLI_WORDS_JOB_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "cli/words/screen.h"

namespace corvin::cli {

class JobProgress {
 public:
  /** Begins the job, and its clock.
   *  @param name              of its input
   *  @param units_per_second  of what show() counts, one second of sound has: its rate in Hz for
   *                           samples or frames; 0: not known */
  JobProgress(std::string name, double units_per_second);

  /** Tells that `done` of `total` units are through; a total of 0 is not known. Cheap enough for any
   *  block of sound, as nothing is written more often than the eye needs. One thread at a time. */
  void show(uint64_t done, uint64_t total);

  /** "took 1.23 s, 45.6 times real time", of all that was shown. */
  std::string result() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct State {
    uint64_t done = 0, total = 0;
  };
  struct Figures {
    bool has_begun = false;
    double elapsed = 0;                    // seconds
    std::optional<double> part;            // 0 to 1
    std::optional<double> times, seconds;  // real time; seconds of sound in all
    std::optional<double> left;            // seconds of work
  };

  Figures figures() const;
  std::string line(size_t cells) const;
  void print_json();

  const std::string name_;
  const double units_per_second_;
  const Clock::time_point begun_ = Clock::now();
  mutable std::mutex mutex_;  // other threads draw
  State state_;
  Clock::time_point told_at_{};
  std::optional<ScreenLine> line_;  // last, as it reads the others
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_JOB_PROGRESS_H_
