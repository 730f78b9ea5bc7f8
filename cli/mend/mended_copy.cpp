// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/mend/mended_copy.h"

#include <algorithm>
#include <string>
#include <vector>

#include "cli/convert/engine_run.h"
#include "cli/convert/verify.h"
#include "cli/files/dsd_output.h"
#include "cli/mend/raw_copy.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

bool has(const std::vector<std::string>& all, const std::string& one) {
  return std::find(all.begin(), all.end(), one) != all.end();
}

// What came out, of which nothing is believed unread.
struct Outcome {
  std::vector<std::string> mended;  // "what was wrong; mended: how"
  std::vector<std::string> left;    // as it is in the input
};

Outcome compare(DsdInput& input, const Faults& faults, const std::string& copy_path,
                const std::string& name) {
  DsdInput copy = DsdInput::open_dsd(copy_path);
  const DsdPayload from = dsd_payload_of(input.file(), name);
  const DsdPayload to = dsd_payload_of(copy.file(), name);
  if (from.samples != to.samples || !XXH128_isEqual(from.hash, to.hash))
    throw verification_failed(name, "its samples are others");
  const Faults now = faults_of(copy);
  Outcome outcome;
  const auto sort_out = [&](const std::vector<std::string>& before,
                            const std::vector<std::string>& after, const auto& remedy) {
    for (const std::string& fault : before)
      if (has(after, fault))
        outcome.left.push_back(fault);
      else
        outcome.mended.push_back(fault + "; mended: " + remedy(fault));
    for (const std::string& fault : after)
      if (!has(before, fault)) throw verification_failed(name, fault);
  };
  sort_out(faults.of_file, now.of_file,
           [&](const std::string& fault) { return remedy_of(fault, faults); });
  sort_out(faults.of_tags, now.of_tags,
           [](const std::string&) { return "what could be read of the tags is written anew"; });
  return outcome;
}

void tell(const std::string& path, const Outcome& outcome) {
  for (const std::string& mended : outcome.mended) note(path, mended);
  for (const std::string& left : outcome.left) note_damage(path, left + "; stays as it is");
}

void refuse_unmended(const std::string& path, const Outcome& outcome) {
  if (outcome.mended.empty())
    throw Failure(kBadInput, path, "has nothing that could be mended: " + outcome.left.front());
}

void write_dsf(DsdInput& input, const Faults& faults, const OutputFile::Config& config) {
  const corvin_file_info& info = input.info();
  DsdOutput output({.file = config,
                    .container = CORVIN_DSF,
                    .dsd_rate_hz = info.dsd_rate,
                    .channels = info.channels,
                    .speakers = info.speakers,
                    .verify = true});
  output.set_tags(faults.tags, faults.of_tags.empty() ? CORVIN_ID3_AS_READ : CORVIN_ID3_V24);
  ConvertSettings settings;
  const auto convert = [&](const ConvertSettings& all, const Progress& progress) {
    convert_copy(input.file(), output.writer(), all, progress);
    return corvin_convert_report{};
  };
  run_engine(settings, convert,
             {.input_path = input.path(), .input_rate_hz = info.dsd_rate, .why_writing = [&] {
                return output.write_failure();
              }});
  const Outcome outcome = compare(input, faults, output.path(), config.path);
  refuse_unmended(input.path(), outcome);
  output.commit();
  tell(input.path(), outcome);
}

void write_raw(DsdInput& input, const Faults& faults, const OutputFile::Config& config) {
  OutputFile output(config);
  if (input.info().container == CORVIN_DSDIFF)
    copy_dsdiff(input, faults, output, config.path);
  else
    copy_one_bit(input, output, config.path);
  const Outcome outcome = compare(input, faults, output.path(), config.path);
  refuse_unmended(input.path(), outcome);
  output.commit();
  tell(input.path(), outcome);
}

}  // namespace

void write_mended_copy(DsdInput& input, const Faults& faults, const OutputFile::Config& output) {
  if (input.info().container == CORVIN_DSF)
    write_dsf(input, faults, output);
  else
    write_raw(input, faults, output);
  print_summary(output.path, {"a mended copy"});
}

}  // namespace corvin::cli
