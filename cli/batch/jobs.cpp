// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/jobs.h"

#ifdef __linux__
#include <sched.h>
#endif

#include <algorithm>
#include <atomic>
#include <exception>
#include <string>
#include <system_error>
#include <thread>

#include "cli/batch/in_order.h"
#include "cli/words/said.h"

namespace corvin::cli {
namespace {

// What people see without scrolling.
constexpr size_t kFewInputs = 20;

ExitCode outcome_of(const Job& job, const WordsHeld& held, std::string& why) {
  try {
    job();
    return held.is_damage_noted() ? kDamage : kDone;
  } catch (const Failure& failure) {
    why = failure.subject() + ": " + failure.what();
    return report(failure);
  } catch (const std::exception& error) {
    why = error.what();
    say_line("corvin: " + why);
    return kSomeInputsFailed;
  }
}

}  // namespace

unsigned processors() {
#ifdef __linux__
  // What a scheduler or taskset has left this process.
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
    return static_cast<unsigned>(std::max(1, CPU_COUNT(&allowed)));
#endif
  return std::max(1u, std::thread::hardware_concurrency());
}

std::vector<ExitCode> run_jobs(const std::vector<Job>& jobs, unsigned at_once,
                               std::vector<std::string>* failures) {
  std::vector<ExitCode> codes(jobs.size(), kDone);
  std::vector<std::string> reasons(jobs.size());
  std::atomic<size_t> next = 0;
  InOrder in_order(jobs.size(), [](const std::string& words) { say(words); });
  const auto work = [&] {
    for (size_t i; (i = next++) < jobs.size();) {
      std::string words;
      {
        WordsHeld held;
        codes[i] = outcome_of(jobs[i], held, reasons[i]);
        words = held.take();
      }
      in_order.end(i, std::move(words));
    }
  };
  std::vector<std::thread> others;
  try {
    while (others.size() + 1 < std::min<size_t>(at_once, jobs.size())) others.emplace_back(work);
  } catch (const std::system_error&) {
    // Fewer threads do the same work.
  }
  work();
  for (std::thread& other : others) other.join();
  if (failures)
    for (std::string& reason : reasons)
      if (!reason.empty()) failures->push_back(std::move(reason));
  return codes;
}

bool is_failure(ExitCode code) { return code != kDone && code != kDamage; }

ExitCode exit_code_of(const std::vector<ExitCode>& codes) {
  if (codes.size() == 1) return codes[0];
  if (std::any_of(codes.begin(), codes.end(), is_failure)) return kSomeInputsFailed;
  return std::find(codes.begin(), codes.end(), kDamage) != codes.end() ? kDamage : kDone;
}

void note_failures(const std::vector<ExitCode>& codes, const std::vector<std::string>& failures) {
  const auto failed = std::count_if(codes.begin(), codes.end(), is_failure);
  if (codes.size() < 2 || failed == 0) return;
  const bool are_listed = codes.size() > kFewInputs && !failures.empty();
  say("corvin: " + std::to_string(failed) + " of " + std::to_string(codes.size()) +
      " inputs failed" + (are_listed ? ":" : "") + "\n");
  if (!are_listed) return;
  for (const std::string& failure : failures) say_line("  " + failure);
}

}  // namespace corvin::cli
