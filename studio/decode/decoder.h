// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD stream in, PCM out: takes the caller's layout apart, lets the bytes run through a ring of
// pieces with the stages of decoding, and hands out the frames.
//
// The ring counts bytes and frames of the whole that the stream is a stretch of, so that a frame is
// the same wherever decoding begins. Bytes that stand at other samples than the whole's are shifted
// into place on their way in.

#ifndef CORVIN_STUDIO_DECODE_DECODER_H_
#define CORVIN_STUDIO_DECODE_DECODER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corvin.h"
#include "studio/decode/decode_stages.h"
#include "studio/plan/decode_plan.h"
#include "studio/stream/block_input.h"
#include "studio/stream/piece_ring.h"

namespace corvin::studio {

class Decoder {
 public:
  /// Checks the settings and builds. Returns a corvin_status; out of memory or threads throws
  /// std::bad_alloc or std::system_error.
  static int create(const corvin_decoder_settings& settings, std::unique_ptr<Decoder>& decoder);

  // As the C functions of the same names; arguments are valid.
  int push(const std::uint8_t* data, std::size_t bytes, std::size_t& taken);
  int push_planar(const std::uint8_t* const* channels, std::size_t bytes, std::size_t& taken);
  void finish();
  std::size_t pull(void* out, std::size_t frames);
  std::size_t pull_planar(void* const* out, std::size_t frames);
  std::size_t frame_bytes() const { return stages_.frame_bytes(); }
  void reset();
  int seek(std::uint64_t sample);
  std::uint64_t preroll() const;
  /// Bytes that are to come before the one that holds the sample.
  std::uint64_t preroll(std::uint64_t sample) const;
  std::uint64_t latency() const;
  std::uint64_t frames_of(std::uint64_t samples) const;
  const corvin_decoder_settings& settings() const { return settings_; }
  void report(corvin_decoder_report& report) const;
  std::string describe() const { return plan_.describe(); }

 private:
  Decoder(const corvin_decoder_settings& settings, DecodePlan plan, const Kernels& kernels);

  template <typename Place>
  std::size_t accept(std::size_t bytes, std::size_t stride, Place place);
  void silence_behind_end(std::size_t count, std::uint8_t& last) const;
  bool pass_on();
  bool pass_on_carried();
  void settle();
  void start_at(std::uint64_t sample);
  bool hears_before() const { return (settings_.context & CORVIN_CONTEXT_BEFORE) != 0; }
  std::uint64_t byte_of(std::uint64_t sample) const;
  template <typename Take>
  std::size_t drain(std::size_t frames, Take take);

  corvin_decoder_settings settings_;
  DecodePlan plan_;
  bool lsb_first_;
  unsigned shift_;            // samples from a byte of the whole to one of the stretch
  std::uint64_t end_;         // of the stretch, in samples of the whole, by the settings' length
  std::uint64_t most_bytes_;  // per channel, that are of use, from the whole's begin on
  BlockInput blocks_;
  PieceRing<std::uint8_t> ring_;
  std::uint64_t unused_ = 0;           // bytes to come before the first that is of use
  std::vector<std::uint8_t> carried_;  // for each channel: its last byte, when they are shifted
  bool finishing_ = false;
  DecodeStages stages_;  // last: its threads end before what they read
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_DECODER_H_
