// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin convert from PCM to a DSD file, by the classic engine.

#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/classic/dsd_header_repair.h"
#include "cli/classic/integer_pcm.h"
#include "cli/classic/level_meter.h"
#include "cli/classic/pcm_pipe.h"
#include "cli/classic/tag_record.h"
#include "cli/classic/ways.h"
#include "cli/files/dsd_container.h"
#include "cli/files/pcm_tags.h"
#include "cli/words/failure.h"
#include "cli/words/job_progress.h"
#include "cli/words/measures.h"
#include "cli/words/outcome.h"

namespace corvin::cli {
namespace {

// Whether rate / base_hz is a power of two.
bool is_octave_of(uint32_t base_hz, uint32_t rate_hz) {
  return rate_hz % base_hz == 0 && std::has_single_bit(rate_hz / base_hz);
}

// The library converts every pair of rates, but others than these at a level that is far off.
bool is_planned(uint32_t pcm_rate_hz, uint32_t dsd_rate_hz) {
  const auto is_of_a_family = [](uint32_t rate_hz) {
    return is_octave_of(44100, rate_hz) || is_octave_of(48000, rate_hz);
  };
  return is_of_a_family(pcm_rate_hz) && pcm_rate_hz <= 768000 && is_of_a_family(dsd_rate_hz);
}

void require_possible(const ClassicDsdRequest& request, const PcmInput& input) {
  const uint32_t most = most_channels(request.container);
  if (input.channels() > most)
    throw Failure(input.channels() > kMostChannels ? kBadInput : kUsage, input.path(),
                  "has " + counted(input.channels(), "channel") + "; " +
                      container_name(request.container) + " takes up to " + std::to_string(most));
  if (!is_planned(input.rate_hz(), request.dsd_rate_hz))
    throw Failure(kBadInput, input.path(),
                  "has a rate of " + std::to_string(input.rate_hz()) +
                      " Hz, for which there is no filter to " +
                      std::to_string(request.dsd_rate_hz) + " Hz");
}

bool go_on(int percent, void* data) {
  static_cast<JobProgress*>(data)->show(static_cast<uint64_t>(percent), 100);
  return true;
}

// The library does not tell why it failed; one more write to the same file does.
std::string why_writing_failed(int descriptor) {
  char block[4096] = {};
  struct stat status {};
  errno = 0;
  if (fstat(descriptor, &status) != 0 ||
      pwrite(descriptor, block, sizeof block, status.st_size) >= 0 || errno == 0)
    return "cannot be written";
  return std::strerror(errno);
}

// What one pass over the input found.
struct Pass {
  uint64_t frames = 0;  // that there were
  uint64_t clipped = 0;
  std::string level;
  std::string damage;
};

// Writes the file with a header for `frames` frames.
Pass write_dsd(const ClassicDsdRequest& request, PcmInput input, uint64_t frames, Tags& tags,
               const OutputFile& output) {
  IntegerPcm pcm(input);
  LevelMeter level(pcm.bits(), true);
  AudioStreamBasicDescription format{};
  format.mSampleRate = input.rate_hz();
  format.mChannelsPerFrame = input.channels();
  format.mBitsPerChannel = static_cast<uint32_t>(pcm.bits());
  Pass pass;
  int result = 0;
  {
    const double seconds = static_cast<double>(frames) / input.rate_hz();
    JobProgress progress(input.path(), seconds > 0 ? 100 / seconds : 0);
    progress.show(0, 100);
    feed_pcm(
        [&](std::span<uint8_t> buffer) {
          const size_t bytes = pcm.read(buffer);
          level.add(buffer.first(bytes));
          pass.frames += bytes / pcm.bytes_per_frame();
          return bytes;
        },
        [&](std::FILE* stream) {
          result =
              PCMtoDSD(request.container, static_cast<long long>(frames * pcm.bytes_per_frame()),
                       stream, output.path().c_str(), static_cast<int>(request.dsd_rate_hz), go_on,
                       format, &progress, &tags);
        });
  }
  if (result != 0)
    throw Failure(kWriteError, request.output.path, why_writing_failed(output.descriptor()));
  pass.clipped = pcm.clipped();
  pass.level = level.text();
  pass.damage = input.damage();
  return pass;
}

}  // namespace

void convert_pcm_to_dsd_classic(const ClassicDsdRequest& request, PcmInput& input) {
  require_possible(request, input);
  OutputFile output(request.output);
  const auto declared = input.declared_frames();
  uint64_t frames = declared ? *declared : IntegerPcm(input).count_frames();
  Tags tags;
  if (request.container == CORVIN_DSF) tags = record_of(read_pcm_tags(input));
  Pass pass = write_dsd(request, PcmInput(input.path()), frames, tags, output);
  bool is_cut_short = false;
  // The header is written first, by the length that the source declares: once more, by what it
  // turned out to hold.
  while (pass.frames < frames) {
    is_cut_short = true;
    frames = pass.frames;
    pass = write_dsd(request, PcmInput(input.path()), frames, tags, output);
  }
  if (is_cut_short && frames == 0) throw no_convertible_sound(input.path());
  if (!repair_header(output.descriptor(), request.container, input.channels()))
    throw Failure(kWriteError, request.output.path, std::strerror(errno));
  output.commit();

  if (frames == 0) note_no_sound(input.path());
  if (is_cut_short || !pass.damage.empty())
    note_damage(input.path(), pass.damage.empty() ? "is cut short" : pass.damage);
  note_clips(input.path(), pass.clipped);
  print_summary(
      request.output.path,
      {container_name(request.container), rate_name(request.dsd_rate_hz),
       counted(input.channels(), "channel"), duration_text(frames, input.rate_hz()), pass.level});
}

}  // namespace corvin::cli
