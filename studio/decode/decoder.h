// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD stream in, PCM out: gathers bytes into pieces of the plan's grid, has them filtered and
// brought into the caller's format on this thread or by workers, and hands out the frames in order.
// Noise shaping alone, where each sample depends on those before, is done when frames are handed
// out.
//
// A piece covers the same span of every channel. The ring holds pieces in stream order; each begins
// with a copy of the bytes that it shares with the one before, so that pieces never share memory.

#ifndef CORVIN_STUDIO_DECODE_DECODER_H_
#define CORVIN_STUDIO_DECODE_DECODER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corvin.h"
#include "studio/decode/block_filter.h"
#include "studio/pcm/sample_output.h"
#include "studio/plan/decode_plan.h"
#include "studio/threads/worker_pool.h"

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
  std::size_t frame_bytes() const { return workers_[0].output.frame_bytes(); }
  void reset();
  std::uint64_t latency() const;
  std::uint64_t frames_of(std::uint64_t samples) const;
  void report(corvin_decoder_report& report) const;
  std::string describe() const { return plan_.describe(); }

 private:
  struct Piece {
    AlignedArray<std::uint8_t> in;        // [channel][piece_stride_]
    AlignedArray<double> samples;         // [channel][piece_frames_], when the output is serial
    AlignedArray<std::uint8_t> finished;  // [frame][channel] in the caller's format, when it is not
    std::uint64_t number = 0;             // in the stream
    std::size_t frames = 0;               // of them within the stream's length
    QuantiseTally tally;                  // of the finished frames
  };

  // What a thread works with.
  struct Worker {
    BlockFilter filter;
    SampleOutput output;
    AlignedArray<double> samples;  // [channel][piece_frames_], unless the output is serial
  };

  Decoder(const corvin_decoder_settings& settings, DecodePlan plan, const Kernels& kernels);

  // Bytes of each channel, channel c's byte i at data[c * channel_stride + i * byte_stride] or at
  // pointers[c][i]; returns how many found room.
  struct Source {
    const std::uint8_t* data;
    std::size_t channel_stride;
    std::size_t byte_stride;
    const std::uint8_t* const* pointers;
  };
  std::size_t accept(const Source& source, std::size_t bytes);
  std::size_t store(const Source& source, std::size_t offset, std::size_t bytes);
  bool empty_group();

  std::size_t place_of(std::uint64_t number) const {
    return static_cast<std::size_t>(number % pieces_.size());
  }
  bool begin_piece();
  void submit(std::size_t frames);
  void work(Worker& worker, Piece& piece);
  void filter(BlockFilter& filter, const Piece& piece, double* samples);
  void settle_length();
  bool ready();
  template <typename Take>
  std::size_t pull_pieces(std::size_t frames, Take take);
  void write_frames(const Piece& piece, std::size_t first, std::size_t count, std::uint64_t index,
                    std::uint8_t* out);

  corvin_decoder_settings settings_;
  DecodePlan plan_;
  Kernels kernels_;
  std::size_t channels_;
  std::size_t items_per_channel_;  // of a piece
  std::size_t piece_bytes_;
  std::size_t piece_stride_;
  std::size_t piece_frames_;
  std::size_t shared_bytes_;  // that a piece begins with from the one before
  std::uint8_t idle_byte_;
  std::uint64_t most_bytes_;  // per channel, by the settings' length

  std::vector<Piece> pieces_;
  std::vector<Worker> workers_;  // one for each thread
  QuantiseTally tally_;          // of the frames pulled

  // A block that came in parts, or that found room only for its head.
  std::vector<std::uint8_t> group_;
  std::size_t group_bytes_ = 0;   // gathered
  std::size_t group_length_ = 0;  // bytes of each channel to pass on once it is complete
  std::size_t group_passed_ = 0;  // of them passed on

  std::uint64_t accepted_ = 0;  // bytes of each channel in pieces
  std::uint64_t filling_ = 0;   // number of the piece that takes bytes
  bool filling_begun_ = false;
  std::size_t filled_ = 0;      // bytes of it
  std::uint64_t draining_ = 0;  // number of the piece that gives samples
  std::size_t drained_ = 0;     // frames of it
  std::uint64_t frames_out_ = 0;
  bool finishing_ = false;
  bool length_known_ = false;
  std::uint64_t length_frames_ = 0;

  std::unique_ptr<WorkerPool> pool_;  // last: its threads end before what they use
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_DECODER_H_
