// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/decode_stages.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "studio/stream/stream_limits.h"

namespace corvin::studio {
namespace {

corvin_quantizer_settings output_settings(const corvin_decoder_settings& settings) {
  corvin_quantizer_settings result = {};
  result.pcm_rate = settings.pcm_rate;
  result.channels = settings.channels;
  result.format = settings.format;
  result.dither = settings.dither;
  result.seed = settings.seed;
  result.gain_db = settings.gain_db;
  return result;
}

// Where each channel's samples begin.
std::array<const double*, kMostChannels> rows_of(const AlignedArray<double>& samples,
                                                 const DecodeStages::Shape& shape,
                                                 std::size_t first) {
  std::array<const double*, kMostChannels> rows;
  for (std::size_t c = 0; c < shape.channels; ++c) rows[c] = &samples[c * shape.out + first];
  return rows;
}

}  // namespace

DecodeStages::Shape DecodeStages::shape(const corvin_decoder_settings& settings,
                                        const DecodePlan& plan) {
  return Shape({plan.span_bytes, plan.hop_bytes, plan.lead_bytes, item_frames(plan)},
               settings.channels, settings.low_latency != 0);
}

// Enough pieces to keep the workers busy while others are taken in and out, as far as memory that
// is no burden reaches; and one for each worker, one coming in and one going out at least.
std::size_t DecodeStages::pieces(const corvin_decoder_settings& settings, const DecodePlan& plan) {
  if (settings.threads == 0) return 2;
  constexpr std::size_t kMostBytes = 24 << 20;
  const Shape piece = shape(settings, plan);
  const std::size_t piece_bytes = piece.channels * (piece.in_stride + 4 * piece.out);
  const std::size_t threads = settings.threads;
  return std::clamp(kMostBytes / piece_bytes, threads + 2, 6 * threads + 2);
}

DecodeStages::DecodeStages(const corvin_decoder_settings& settings, const DecodePlan& plan,
                           const Kernels& kernels)
    : shape_(shape(settings, plan)),
      low_latency_(settings.low_latency != 0),
      slots_(pieces(settings, plan)) {
  const std::size_t threads = std::max<std::size_t>(1, settings.threads);
  workers_.reserve(threads);
  for (std::size_t i = 0; i < threads; ++i) {
    workers_.push_back({SpanFilter(plan, kernels),
                        SampleOutput(output_settings(settings), *kernels.quantise),
                        {}});
  }
  is_serial_ = workers_[0].output.is_serial();
  const std::size_t samples = shape_.channels * shape_.out;
  for (Slot& slot : slots_) {
    if (is_serial_) {
      slot.samples = AlignedArray<double>(samples);
    } else {
      slot.finished = AlignedArray<std::uint8_t>(shape_.out * frame_bytes());
    }
  }
  for (Worker& worker : workers_) {
    if (!is_serial_) worker.samples = AlignedArray<double>(samples);
  }
  if (settings.threads == 0) return;
  pool_ = std::make_unique<WorkerPool>(
      settings.threads, slots_.size(),
      [this](std::size_t worker, std::size_t job) { work(workers_[worker], slots_[job]); });
}

void DecodeStages::work(Worker& worker, Slot& slot) {
  AlignedArray<double>& samples = is_serial_ ? slot.samples : worker.samples;
  shape_.make(slot.piece.in, samples.data(), worker.filter.items_at_once(),
              [&](const std::uint8_t* const* in, double* const* out, std::size_t items) {
                worker.filter.run(in, out, items);
              });
  slot.tally = {};
  if (is_serial_) return;
  const std::size_t skips = slot.piece.skips;
  worker.output.write(rows_of(samples, shape_, skips).data(), slot.piece.made + skips,
                      slot.piece.out - skips, &slot.finished[skips * frame_bytes()], slot.tally);
}

void DecodeStages::start(const Piece<std::uint8_t>& piece) {
  slots_[piece.slot].piece = piece;
  if (pool_ != nullptr) {
    pool_->hand_in(piece.slot);
  } else {
    work(workers_[0], slots_[piece.slot]);
  }
}

bool DecodeStages::finished(std::size_t slot) { return pool_ == nullptr || pool_->finished(slot); }

void DecodeStages::wait_for(std::size_t slot, bool ring_is_full) {
  // Being woken costs as much as a good part of a piece: with a full ring, half of it at a time.
  // The workers go on with the other half meanwhile.
  if (ring_is_full && !low_latency_) {
    pool_->wait_for((slot + slots_.size() / 2) % slots_.size());
  }
  pool_->wait_for(slot);
}

void DecodeStages::open(std::size_t slot) {
  tally_.peak = std::max(tally_.peak, slots_[slot].tally.peak);
  tally_.clips += slots_[slot].tally.clips;
  const Piece<std::uint8_t>& piece = slots_[slot].piece;
  if (!is_serial_ || piece.skips == 0) return;
  workers_[0].output.pass_over(rows_of(slots_[slot].samples, shape_, 0).data(), piece.made,
                               piece.skips);
}

void DecodeStages::write(std::size_t slot, std::size_t first, std::size_t count,
                         std::uint8_t* out) {
  const Slot& from = slots_[slot];
  if (!is_serial_) {
    std::memcpy(out, &from.finished[first * frame_bytes()], count * frame_bytes());
    return;
  }
  workers_[0].output.write(rows_of(from.samples, shape_, first).data(), from.piece.made + first,
                           count, out, tally_);
}

void DecodeStages::reset() {
  if (pool_ != nullptr) pool_->clear();
  tally_ = {};
  workers_[0].output.reset();
}

}  // namespace corvin::studio
