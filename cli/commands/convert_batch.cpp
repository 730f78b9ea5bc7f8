// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_batch.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "cli/batch/sidecars.h"
#include "cli/files/path_parts.h"
#include "cli/files/payload.h"
#include "cli/words/said.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

bool exists(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

Record record_of(const ConvertOptions& options, const PlannedConversion& planned) {
  return {.input = planned.input.path,
          .output = planned.output,
          .options = options.sound_options,
          .input_state = state_of_file(planned.input.path).value_or(FileState{})};
}

// Whether the output is what the same conversion of the same input has made.
bool is_done(const Record& last, const Record& now) {
  const auto output = state_of_file(now.output);
  return output && output->bytes == last.output_bytes && last.input_state == now.input_state &&
         last.options == utf8_of(now.options) && last.input == utf8_of(now.input);
}

// The tracks of a recording that is made in one run are made together or not at all.
void unskip_parts(std::vector<PlannedConversion>& plan) {
  for (size_t begin = 0, end; begin < plan.size(); begin = end) {
    end = begin + 1;
    while (plan[end - 1].goes_on) ++end;
    const std::span part(plan.data() + begin, end - begin);
    const auto is_skipped = [](const PlannedConversion& p) { return !p.skipped.empty(); };
    if (plan[begin].is_dsd || std::all_of(part.begin(), part.end(), is_skipped)) continue;
    for (PlannedConversion& planned : part) {
      planned.replaces = planned.replaces || is_skipped(planned);
      planned.skipped.clear();
    }
  }
}

}  // namespace

void skip_what_is_done(const ConvertOptions& options, const Manifest* manifest,
                       std::vector<PlannedConversion>& plan) {
  for (PlannedConversion& planned : plan) {
    if (planned.failure || planned.output == "-" || !exists(planned.output)) continue;
    if (options.skip_existing) {
      planned.skipped = "exists already";
    } else if (options.resume) {
      const History history = manifest->history_of(planned.output);
      planned.replaces = history.is_unfinished;
      if (!history.is_unfinished && history.made &&
          is_done(*history.made, record_of(options, planned)))
        planned.skipped = "is done already";
    }
  }
  unskip_parts(plan);
}

void run_recorded(const ConvertOptions& options, Manifest& manifest, const RecordedWork& work) {
  std::vector<Record> records;
  for (const PlannedConversion& planned : work.conversions) {
    records.push_back(record_of(options, planned));
    // Only of an output that this run may replace; the next one will take it for half done.
    if (options.overwrite || planned.replaces || !exists(planned.output))
      manifest.append(records.back());
  }
  const auto begun = std::chrono::steady_clock::now();
  const auto end_all = [&] {
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    for (Record& record : records) {
      record.has_ended = true;
      record.work_seconds = took.count() / static_cast<double>(records.size());
      manifest.append(record);
    }
  };
  try {
    const WordsHeld held;
    const std::vector<Converted> converted = work.run();
    for (size_t i = 0; i < records.size(); ++i) {
      Record& record = records[i];
      record.exit = held.is_damage_noted() ? kDamage : kDone;
      record.output_bytes = state_of_file(record.output).value_or(FileState{}).bytes;
      std::error_code ignored;
      if (std::filesystem::is_regular_file(record.output, ignored))
        record.sum = payload_sum(record.output);
      record.gain_db = options.gain ? options.gain->db.value_or(work.gains_db[i]) : 0;
      record.peak = converted[i].peak;
      record.clips = converted[i].clips;
      record.sound_seconds = converted[i].seconds;
    }
  } catch (const Failure& failure) {
    for (Record& record : records) {
      record.exit = failure.code();
      record.message = failure.subject() + ": " + failure.what();
    }
    end_all();
    throw;
  }
  end_all();
}

std::vector<Job> sidecar_jobs(const ConvertOptions& options,
                              const std::vector<PlannedConversion>& plan) {
  // From which directory into which, and what the inputs there have become.
  std::map<std::pair<std::string, std::string>, std::map<std::string, std::string>> directories;
  for (const PlannedConversion& planned : plan) {
    const std::string from = directory_of(planned.input.path), to = directory_of(planned.output);
    if (planned.failure || planned.content || from == to) continue;
    directories[{from, to}][name_of(planned.input.path)] = name_of(planned.output);
  }
  const OutputFile::Config like{.path = "",
                                .input_path = "",
                                .overwrite = options.overwrite,
                                .force = options.force,
                                .preserve_time = options.preserve_time};
  std::vector<Job> jobs;
  for (const auto& [way, renamed] : directories)
    jobs.push_back([like, way = way, renamed = renamed] {
      if (exists(way.second.empty() ? "." : way.second))
        copy_sidecars(way.first, way.second, renamed, like);
    });
  return jobs;
}

}  // namespace corvin::cli
