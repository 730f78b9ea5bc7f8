// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM stream in, DSD out: gathers frames into pieces of the plan's grid, has them up-sampled and
// modulated on this thread or by workers, and hands out the bytes in order and layout.
//
// A piece covers the same span of every channel. The ring holds pieces in stream order; each begins
// with a copy of the frames that it shares with the one before, so that pieces never share memory.
// Pieces are up-sampled in any order, but each modulator takes them one after the other: the end of
// one job hands in the next.

#ifndef CORVIN_STUDIO_ENCODE_ENCODER_H_
#define CORVIN_STUDIO_ENCODE_ENCODER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "corvin.h"
#include "studio/encode/encode_chain.h"
#include "studio/encode/modulator_stream.h"
#include "studio/encode/up_sampler.h"
#include "studio/threads/worker_pool.h"

namespace corvin::studio {

class Encoder {
 public:
  /// Checks the settings and builds. Returns a corvin_status; out of memory or threads throws
  /// std::bad_alloc or std::system_error.
  static int create(const corvin_encoder_settings& settings, std::unique_ptr<Encoder>& encoder);

  // As the C functions of the same names; arguments are valid.
  int push(const std::uint8_t* data, std::size_t frames, std::size_t& taken);
  int push_planar(const void* const* channels, std::size_t frames, std::size_t& taken);
  void finish();
  std::size_t pull(std::uint8_t* out, std::size_t bytes);
  int pull_planar(std::uint8_t* const* out, std::size_t bytes, std::size_t& done);
  void reset();
  std::uint64_t latency() const;
  std::uint64_t samples_of(std::uint64_t frames) const;
  void report(corvin_encoder_report& report) const;
  std::string describe() const;

 private:
  struct Piece {
    std::uint64_t number = 0;
    std::size_t samples = 0;               // for each modulator to take
    std::size_t bytes = 0;                 // of each channel that come out
    AlignedArray<double> in;               // [channel][piece_frames_]
    AlignedArray<std::uint8_t> out;        // [channel][piece_samples_ + 2 x kDelay]
    std::vector<ModulationTally> tallies;  // one for each modulator
  };

  Encoder(const corvin_encoder_settings& settings, EncodeChain chain, const Kernels& kernels);

  template <typename Place>
  std::size_t accept(std::size_t frames, std::size_t stride, Place place);
  bool begin_piece();
  void submit(std::size_t samples);
  void settle_length();

  std::size_t slot_of(std::uint64_t number) const {
    return static_cast<std::size_t>(number % pieces_.size());
  }
  double* samples_of_slot(std::size_t slot, std::size_t channel);
  std::uint8_t* bytes_of(Piece& piece, std::size_t channel);
  void up_sample(UpSampler& sampler, std::size_t slot);
  void modulate(std::size_t stream, std::size_t slot);

  // Jobs of the pool: the up-sampling of a slot, then one for each modulator.
  std::size_t job_of(std::size_t slot, std::size_t part) const {
    return slot * (streams_.size() + 1) + part;
  }
  void work(std::size_t worker, std::size_t job);
  bool finished(std::size_t slot);

  bool ready();
  std::size_t available(bool patient);
  bool ended() const { return length_known_ && bytes_out_ == length_bytes_; }
  void open_piece();
  void copy(std::size_t channel, std::size_t count, std::uint8_t* out, std::size_t stride);
  void advance(std::size_t count);
  bool fill_group(bool patient);

  corvin_encoder_settings settings_;
  EncodePlan plan_;
  Kernels kernels_;
  double gain_;
  std::size_t channels_;
  std::size_t channels_per_stream_;
  std::size_t items_per_channel_;  // of a piece
  std::size_t piece_frames_;
  std::size_t piece_samples_;
  std::size_t shared_frames_;  // that a piece begins with from the one before
  std::uint64_t most_frames_;  // by the settings' length

  std::vector<Piece> pieces_;
  std::vector<AlignedArray<double>> samples_;  // between the stages: one for each piece at work
  std::vector<UpSampler> up_samplers_;         // one for each thread
  std::vector<ModulatorStream> streams_;

  std::uint64_t accepted_ = 0;  // frames in pieces
  std::uint64_t filling_ = 0;   // number of the piece that takes frames
  bool filling_begun_ = false;
  std::size_t filled_ = 0;      // frames of it
  std::uint64_t fed_ = 0;       // samples in pieces before it
  std::uint64_t draining_ = 0;  // number of the piece that gives bytes
  bool draining_opened_ = false;
  std::size_t drained_ = 0;      // bytes of it
  std::uint64_t bytes_out_ = 0;  // of each channel
  bool finishing_ = false;
  bool length_known_ = false;
  std::uint64_t length_samples_ = 0;
  std::uint64_t length_bytes_ = 0;
  ModulationTally tally_;  // of the pieces opened

  // A block of the output's layout in the making.
  std::vector<std::uint8_t> group_;
  std::size_t group_filled_ = 0;  // bytes of each channel
  std::size_t group_sent_ = 0;    // bytes handed out; only when it is full

  std::mutex chain_;                       // over the two below
  std::vector<std::uint64_t> next_;        // for each modulator: number of the piece it takes next
  std::vector<std::uint64_t> up_sampled_;  // for each slot: number of the last piece + 1
  std::unique_ptr<WorkerPool> pool_;       // last: its threads end before what they use
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_ENCODER_H_
