// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/join.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "cli/convert/bit_joiner.h"
#include "cli/convert/pcm_file.h"
#include "cli/files/dsd_input.h"
#include "cli/files/dsd_output.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kBytesAtOnce = 1 << 15;  // of a channel
constexpr size_t kFramesAtOnce = 1 << 14;

void write(DsdOutput& output, uint32_t channels, std::vector<uint8_t>& dsd) {
  try {
    output.writer().write(dsd.data(), dsd.size() / channels);
  } catch (const Error&) {
    throw output.write_failure();
  }
  dsd.clear();
}

void append_file(DsdInput& input, DsdOutput& output, BitJoiner& joiner,
                 const std::function<void()>& show) {
  const corvin_file_info& info = input.info();
  std::vector<uint8_t> bytes(kBytesAtOnce * info.channels);
  std::vector<uint8_t> joined;
  uint64_t left = info.samples;
  while (left > 0) {
    size_t got = 0;
    try {
      got = input.file().read(bytes.data(), kBytesAtOnce);
    } catch (const Error& error) {
      throw Failure(kBadInput, input.path(), error.what());
    }
    if (got == 0) throw Failure(kBadInput, input.path(), "has become shorter while it was read");
    const uint64_t samples = std::min<uint64_t>(left, 8 * got);
    joiner.add(bytes, samples, joined);
    write(output, info.channels, joined);
    left -= samples;
    show();
  }
  input.note_warnings();
}

}  // namespace

Beginnings join_dsd(const JoinRequest& request) {
  Beginnings beginnings;
  std::optional<DsdOutput> output;
  std::optional<JobProgress> progress;
  std::optional<BitJoiner> joiner;
  corvin_file_info format{};
  uint64_t length = 0;
  for (const std::string& path : request.inputs) length += DsdInput::open_dsd(path).info().samples;
  for (const std::string& path : request.inputs) {
    DsdInput input = DsdInput::open_dsd(path);
    if (!output) {
      format = input.info();
      output.emplace(DsdOutput::Config{.file = request.output,
                                       .container = std::get<corvin_container>(request.kind),
                                       .dsd_rate_hz = format.dsd_rate,
                                       .channels = format.channels,
                                       .speakers = format.speakers,
                                       .verify = request.verify});
      output->set_tags(*request.tags);
      progress.emplace(request.output.path, format.dsd_rate);
      joiner.emplace(format.channels);
    }
    beginnings.push_back(joiner->samples());
    append_file(input, *output, *joiner, [&] { progress->show(joiner->samples(), length); });
  }
  std::vector<uint8_t> last;
  joiner->finish(last);
  write(*output, format.channels, last);
  try {
    output->writer().finish(joiner->samples());
  } catch (const Error&) {
    throw output->write_failure();
  }
  output->commit();
  output->print_summary(duration_text(joiner->samples(), format.dsd_rate), "");
  return beginnings;
}

Beginnings join_pcm(const JoinRequest& request) {
  Beginnings beginnings;
  // WAV or RF64 is chosen by the length.
  std::optional<uint64_t> length = 0;
  for (const std::string& path : request.inputs) {
    const auto frames = PcmInput(path).declared_frames();
    length = length && frames ? std::optional(*length + *frames) : std::nullopt;
  }
  std::optional<PcmFile> file;
  std::optional<JobProgress> progress;
  std::vector<uint8_t> frames;
  uint64_t done = 0;
  for (const std::string& path : request.inputs) {
    PackedInput input(path);
    if (!file) {
      file.emplace(input, PcmFile::Config{.file = request.output,
                                          .kind = std::get<PcmKind>(request.kind),
                                          .frames = length,
                                          .tags = request.tags,
                                          .verify = request.verify});
      progress.emplace(request.output.path, input.pcm().rate_hz());
    }
    beginnings.push_back(done);
    while (const size_t got = input.read(kFramesAtOnce, frames)) {
      file->write(frames);
      done += got;
      progress->show(done, length.value_or(0));
    }
    if (const std::string damage = input.pcm().damage(); !damage.empty()) note_damage(path, damage);
  }
  file->finish();
  return beginnings;
}

}  // namespace corvin::cli
