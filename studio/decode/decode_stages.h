// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What a decoder does with a piece: filters it and brings it into the caller's format. Noise
// shaping alone, where each sample depends on those before, waits until frames are handed out.

#ifndef CORVIN_STUDIO_DECODE_DECODE_STAGES_H_
#define CORVIN_STUDIO_DECODE_DECODE_STAGES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "corvin.h"
#include "studio/decode/span_filter.h"
#include "studio/pcm/sample_output.h"
#include "studio/plan/decode_plan.h"
#include "studio/stream/piece_ring.h"
#include "studio/threads/worker_pool.h"

namespace corvin::studio {

class DecodeStages final : public PieceStages<std::uint8_t> {
 public:
  using Shape = PieceShape<std::uint8_t>;

  static Shape shape(const corvin_decoder_settings& settings, const DecodePlan& plan);
  /// Of a ring that keeps the stages busy.
  static std::size_t pieces(const corvin_decoder_settings& settings, const DecodePlan& plan);

  /// `plan` outlives the stages.
  DecodeStages(const corvin_decoder_settings& settings, const DecodePlan& plan,
               const Kernels& kernels);

  void start(const Piece<std::uint8_t>& piece) override;
  bool finished(std::size_t slot) override;
  void wait_for(std::size_t slot, bool ring_is_full) override;
  void progress(std::size_t /*in*/) override {}
  std::size_t ready(std::size_t /*slot*/) override { return 0; }
  void open(std::size_t slot) override;

  /// Writes frames of an open piece, interleaved; each once, in order.
  void write(std::size_t slot, std::size_t first, std::size_t count, std::uint8_t* out);

  std::size_t sample_bytes() const { return workers_[0].output.sample_bytes(); }
  std::size_t frame_bytes() const { return workers_[0].output.frame_bytes(); }
  double gain() const { return workers_[0].output.gain(); }
  std::size_t memory_frames() const { return workers_[0].output.memory_frames(); }

  /// Of the frames in open pieces or, when noise is shaped, of those written.
  const QuantiseTally& tally() const { return tally_; }

  /// As new, without a piece.
  void reset();

 private:
  struct Slot {
    Piece<std::uint8_t> piece;
    AlignedArray<double> samples;         // [channel][shape.out], when the output is serial
    AlignedArray<std::uint8_t> finished;  // [frame][channel] in the caller's format, when it is not
    QuantiseTally tally;                  // of the finished frames
  };

  // What a thread works with.
  struct Worker {
    SpanFilter filter;
    SampleOutput output;
    AlignedArray<double> samples;  // [channel][shape.out], unless the output is serial
  };

  void work(Worker& worker, Slot& slot);

  Shape shape_;
  bool is_serial_;
  bool low_latency_;
  std::vector<Slot> slots_;
  std::vector<Worker> workers_;  // one for each thread
  QuantiseTally tally_;
  std::unique_ptr<WorkerPool> pool_;  // last: its threads end before what they use
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_DECODE_DECODE_STAGES_H_
