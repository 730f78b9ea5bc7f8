// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/encode/encode_stages.h"

#include <algorithm>

#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {
namespace {

// A worker that up-samples keeps up with this many modulators.
constexpr std::size_t kModulatorsPerUpSampler = 3;

// Up to four paths a pair of channels shares its vectors; eight fill them with one.
std::size_t channels_at_once(const ModulatorConfig& modulator) {
  return search_paths(modulator.grade, modulator.oversampling) > 4 ? 1 : 2;
}

// As many as are asked for, unless they would find nothing to do.
std::size_t workers(const corvin_encoder_settings& settings, const ModulatorConfig& modulator) {
  const std::size_t at_once = channels_at_once(modulator);
  const std::size_t modulators = (settings.channels + at_once - 1) / at_once;
  return std::min<std::size_t>(settings.threads,
                               modulators + 1 + modulators / kModulatorsPerUpSampler);
}

}  // namespace

EncodeStages::Shape EncodeStages::shape(const corvin_encoder_settings& settings,
                                        const EncodePlan& plan) {
  Shape piece({plan.span_frames(), plan.hop_frames, plan.lead_frames, item_samples(plan)},
              settings.channels, settings.low_latency != 0);
  piece.delay = ModulatorStream::kDelay;
  return piece;
}

// One that takes frames, one that gives bytes, one with the modulators, the others up-sampled.
std::size_t EncodeStages::pieces(const corvin_encoder_settings& settings,
                                 const ModulatorConfig& modulator) {
  const std::size_t threads = workers(settings, modulator);
  return threads == 0 ? 2 : 4 + threads / kModulatorsPerUpSampler;
}

EncodeStages::EncodeStages(const corvin_encoder_settings& settings, const EncodeChain& chain,
                           const Kernels& kernels)
    : shape_(shape(settings, chain.plan)),
      bytes_stride_(shape_.out + 2 * ModulatorStream::kDelay),
      channels_at_once_(channels_at_once(chain.modulator)),
      slots_(pieces(settings, chain.modulator)),
      search_(chain.modulator.oversampling) {
  for (std::size_t c = 0; c < shape_.channels; c += channels_at_once_) {
    ModulatorConfig config = chain.modulator;
    config.channels = static_cast<int>(std::min(channels_at_once_, shape_.channels - c));
    modulators_.emplace_back(config, search_);
  }
  for (Slot& slot : slots_) {
    slot.bytes = AlignedArray<std::uint8_t>(shape_.channels * bytes_stride_);
    slot.tallies.resize(modulators_.size());
  }
  const std::size_t threads = workers(settings, chain.modulator);
  samples_.resize(threads == 0 ? 1 : slots_.size());
  for (auto& samples : samples_) samples = AlignedArray<double>(shape_.channels * shape_.out);
  const std::size_t samplers = std::max<std::size_t>(1, threads);
  up_samplers_.reserve(samplers);
  for (std::size_t i = 0; i < samplers; ++i) up_samplers_.emplace_back(chain.plan, kernels);
  next_.resize(modulators_.size());
  up_sampled_.resize(slots_.size());
  if (threads == 0) return;
  pool_ = std::make_unique<WorkerPool>(
      threads, slots_.size() * parts(),
      [this](std::size_t worker, std::size_t job) { work(worker, job); });
}

void EncodeStages::up_sample(UpSampler& sampler, std::size_t slot) {
  shape_.make(slots_[slot].piece.in, samples_of(slot), sampler.items_at_once(),
              [&](const double* const* in, double* const* out, std::size_t items) {
                sampler.run(in, out, items);
              });
}

void EncodeStages::modulate(std::size_t modulator, std::size_t slot) {
  Slot& to = slots_[slot];
  const double* in[2] = {};
  std::uint8_t* out[2] = {};
  const std::size_t first = modulator * channels_at_once_;
  for (std::size_t c = first; c < std::min(first + channels_at_once_, shape_.channels); ++c) {
    in[c - first] = samples_of(slot) + c * shape_.out;
    out[c - first] = &to.bytes[c * bytes_stride_];
  }
  to.tallies[modulator] = {};
  modulators_[modulator].run(in, to.piece.out, to.length, out, to.tallies[modulator]);
}

void EncodeStages::work(std::size_t worker, std::size_t job) {
  const std::size_t slot = job / parts();
  const std::size_t part = job % parts();
  const std::uint64_t number = slots_[slot].piece.number;
  if (part == 0) {
    up_sample(up_samplers_[worker], slot);
    const std::lock_guard lock(chain_);
    up_sampled_[slot] = number + 1;
    for (std::size_t modulator = 0; modulator < modulators_.size(); ++modulator) {
      if (next_[modulator] == number) pool_->hand_in_first(job_of(slot, 1 + modulator));
    }
    return;
  }
  modulate(part - 1, slot);
  const std::lock_guard lock(chain_);
  const std::uint64_t next = ++next_[part - 1];
  const auto next_slot = static_cast<std::size_t>(next % slots_.size());
  if (up_sampled_[next_slot] == next + 1) pool_->hand_in_first(job_of(next_slot, part));
}

void EncodeStages::start(const Piece<double>& piece) {
  slots_[piece.slot].piece = piece;
  slots_[piece.slot].length = length_;
  if (pool_ == nullptr) {
    up_sample(up_samplers_[0], piece.slot);
    for (std::size_t part = 1; part < parts(); ++part) modulate(part - 1, piece.slot);
    return;
  }
  for (std::size_t part = 1; part < parts(); ++part) pool_->announce(job_of(piece.slot, part));
  pool_->hand_in(job_of(piece.slot, 0));
}

bool EncodeStages::finished(std::size_t slot) {
  for (std::size_t part = 1; pool_ != nullptr && part < parts(); ++part) {
    if (!pool_->finished(job_of(slot, part))) return false;
  }
  return true;
}

void EncodeStages::wait_for(std::size_t slot, bool /*ring_is_full*/) {
  for (std::size_t part = 1; part < parts(); ++part) pool_->wait_for(job_of(slot, part));
}

void EncodeStages::open(std::size_t slot) {
  for (const ModulationTally& tally : slots_[slot].tallies) {
    tally_.peak = std::max(tally_.peak, tally.peak);
    tally_.limited += tally.limited;
    tally_.overload += tally.overload;
  }
}

void EncodeStages::reset() {
  if (pool_ != nullptr) pool_->clear();
  for (ModulatorStream& modulator : modulators_) modulator.reset();
  std::fill(next_.begin(), next_.end(), 0u);
  std::fill(up_sampled_.begin(), up_sampled_.end(), 0u);
  length_ = ModulatorStream::kEndless;
  tally_ = {};
}

}  // namespace corvin::studio
