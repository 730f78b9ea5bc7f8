// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What an encoder does with a piece: up-samples it and modulates it. Pieces are up-sampled in any
// order, but each modulator takes them one after the other: the end of one job hands in the next.
//
// With low latency and no threads the modulators, whose work is the most by far, take a piece bit by
// bit while the next one comes in. That spreads the work over the calls, and costs next to no
// latency: what a piece makes lasts until the next one is complete.

#ifndef CORVIN_STUDIO_ENCODE_ENCODE_STAGES_H_
#define CORVIN_STUDIO_ENCODE_ENCODE_STAGES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "corvin.h"
#include "studio/encode/encode_chain.h"
#include "studio/encode/modulator_stream.h"
#include "studio/encode/up_sampler.h"
#include "studio/stream/piece_ring.h"
#include "studio/threads/worker_pool.h"

namespace corvin::studio {

class EncodeStages final : public PieceStages<double> {
 public:
  using Shape = PieceShape<double>;

  static Shape shape(const corvin_encoder_settings& settings, const EncodePlan& plan);
  /// Of a ring that keeps the stages busy.
  static std::size_t pieces(const corvin_encoder_settings& settings,
                            const ModulatorConfig& modulator);

  /// Samples by which spreading the modulators' work makes bytes later, at most.
  static std::size_t spread_delay(const corvin_encoder_settings& settings, const EncodePlan& plan);

  /// `chain` outlives the stages.
  EncodeStages(const corvin_encoder_settings& settings, const EncodeChain& chain,
               const Kernels& kernels);

  void start(const Piece<double>& piece) override;
  bool finished(std::size_t slot) override;
  void wait_for(std::size_t slot, bool ring_is_full) override;
  void progress(std::size_t in) override;
  std::size_t ready(std::size_t slot) override;
  void open(std::size_t slot) override;

  /// The bytes of an open piece, earliest sample in the most significant bit.
  const std::uint8_t* bytes(std::size_t slot, std::size_t channel) const {
    return &slots_[slot].bytes[channel * bytes_stride_];
  }

  /// The length of the stream in one-bit samples, told before a piece that holds its end.
  void end(std::uint64_t length) { length_ = length; }

  /// Of the pieces opened or, when the work is spread, of what was modulated.
  const ModulationTally& tally() const { return tally_; }

  /// As new, without a piece.
  void reset();

 private:
  struct Slot {
    Piece<double> piece;
    std::uint64_t length;                  // of the stream, as far as it was known
    AlignedArray<std::uint8_t> bytes;      // [channel][bytes_stride_]
    std::vector<ModulationTally> tallies;  // one for each modulator
  };

  // Jobs of the pool: the up-sampling of a slot, then one for each modulator.
  std::size_t parts() const { return 1 + modulators_.size(); }
  std::size_t job_of(std::size_t slot, std::size_t part) const { return slot * parts() + part; }
  void work(std::size_t worker, std::size_t job);
  void up_sample(UpSampler& sampler, std::size_t slot);
  std::size_t modulate(std::size_t modulator, std::size_t slot, std::size_t first,
                       std::size_t samples, std::size_t made);
  void modulate_to(std::size_t samples);
  void collect(Slot& slot);
  double* samples_of(std::size_t slot) { return samples_[slot % samples_.size()].data(); }

  Shape shape_;
  bool spreads_;  // the modulators' work over the calls
  std::size_t bytes_stride_;
  std::size_t channels_at_once_;  // of a modulator
  std::vector<Slot> slots_;
  std::vector<AlignedArray<double>> samples_;  // between the stages: one for each piece at work
  std::vector<UpSampler> up_samplers_;         // one for each thread
  RestSearch search_;
  std::vector<ModulatorStream> modulators_;
  std::uint64_t length_ = ModulatorStream::kEndless;
  ModulationTally tally_;

  // When the work is spread: the last piece, and what was modulated of it.
  struct {
    std::size_t slot = 0;
    std::size_t samples = 0;
    std::size_t bytes = 0;
  } going_;

  std::mutex chain_;                       // over the two below
  std::vector<std::uint64_t> next_;        // for each modulator: number of the piece it takes next
  std::vector<std::uint64_t> up_sampled_;  // for each slot: number of the last piece + 1
  std::unique_ptr<WorkerPool> pool_;       // last: its threads end before what they use
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_ENCODE_STAGES_H_
