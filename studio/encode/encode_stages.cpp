// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/encode/encode_stages.h"

#include <algorithm>

#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {
namespace {

// A worker that up-samples keeps up with this many modulators.
constexpr std::size_t kModulatorsPerUpSampler = 3;

// Samples that a modulator takes at least when its work is spread: each time costs as much as some
// ten of them.
constexpr std::size_t kLeastSpread = 64;

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
  piece.delay = ModulatorStream::delay(settings.low_latency != 0);
  return piece;
}

// One that takes frames, one that gives bytes, one with the modulators, the others up-sampled.
// Without threads the modulators have one of their own only when their work is spread.
std::size_t EncodeStages::pieces(const corvin_encoder_settings& settings,
                                 const ModulatorConfig& modulator) {
  const std::size_t threads = workers(settings, modulator);
  if (threads == 0) return settings.low_latency != 0 ? 3 : 2;
  return 4 + threads / kModulatorsPerUpSampler;
}

EncodeStages::EncodeStages(const corvin_encoder_settings& settings, const EncodeChain& chain,
                           const Kernels& kernels)
    : shape_(shape(settings, chain.plan)),
      spreads_(settings.low_latency != 0 && settings.threads == 0),
      bytes_stride_(shape_.out + 2 * shape_.delay),
      channels_at_once_(channels_at_once(chain.modulator)),
      slots_(pieces(settings, chain.modulator)),
      search_(chain.modulator.oversampling) {
  for (std::size_t c = 0; c < shape_.channels; c += channels_at_once_) {
    ModulatorConfig config = chain.modulator;
    config.channels = static_cast<int>(std::min(channels_at_once_, shape_.channels - c));
    modulators_.emplace_back(config, search_, settings.low_latency != 0);
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

// Modulates `samples` of a piece's, from `first` on, and puts their bytes behind the `made` ones of
// those before. Returns their number.
std::size_t EncodeStages::modulate(std::size_t modulator, std::size_t slot, std::size_t first,
                                   std::size_t samples, std::size_t made) {
  Slot& to = slots_[slot];
  const double* in[2] = {};
  std::uint8_t* out[2] = {};
  const std::size_t channel = modulator * channels_at_once_;
  for (std::size_t c = channel; c < std::min(channel + channels_at_once_, shape_.channels); ++c) {
    in[c - channel] = samples_of(slot) + c * shape_.out + first;
    out[c - channel] = &to.bytes[c * bytes_stride_ + made];
  }
  if (first == 0) to.tallies[modulator] = {};
  return modulators_[modulator].run(in, samples, to.length, out, to.tallies[modulator]);
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
  modulate(part - 1, slot, 0, slots_[slot].piece.out, 0);
  const std::lock_guard lock(chain_);
  const std::uint64_t next = ++next_[part - 1];
  const auto next_slot = static_cast<std::size_t>(next % slots_.size());
  if (up_sampled_[next_slot] == next + 1) pool_->hand_in_first(job_of(next_slot, part));
}

void EncodeStages::start(const Piece<double>& piece) {
  if (spreads_ && piece.number > 0) modulate_to(slots_[going_.slot].piece.out);
  slots_[piece.slot].piece = piece;
  slots_[piece.slot].length = length_;
  if (pool_ == nullptr) {
    up_sample(up_samplers_[0], piece.slot);
    going_ = {piece.slot, 0, 0};
    if (!spreads_) modulate_to(piece.out);
    return;
  }
  for (std::size_t part = 1; part < parts(); ++part) pool_->announce(job_of(piece.slot, part));
  pool_->hand_in(job_of(piece.slot, 0));
}

// On the caller's thread: goes on with the last piece, up to `samples` of it.
void EncodeStages::modulate_to(std::size_t samples) {
  if (samples == going_.samples) return;
  std::size_t bytes = 0;
  for (std::size_t modulator = 0; modulator < modulators_.size(); ++modulator) {
    bytes =
        modulate(modulator, going_.slot, going_.samples, samples - going_.samples, going_.bytes);
  }
  going_.samples = samples;
  going_.bytes += bytes;
  if (spreads_) collect(slots_[going_.slot]);
}

// As many parts of the last piece as came in of the next one.
void EncodeStages::progress(std::size_t in) {
  if (!spreads_) return;
  const std::size_t all = slots_[going_.slot].piece.out;
  const std::size_t fresh = shape_.in - shape_.shared;
  const std::size_t due = all * (in - std::min(in, shape_.shared)) / fresh;
  if (due >= going_.samples + kLeastSpread) modulate_to(due);
}

std::size_t EncodeStages::ready(std::size_t slot) {
  return spreads_ && slot == going_.slot ? going_.bytes : 0;
}

std::size_t EncodeStages::spread_delay(const corvin_encoder_settings& settings,
                                       const EncodePlan& plan) {
  if (settings.low_latency == 0 || settings.threads != 0) return 0;
  return kLeastSpread + (plan.hop_samples + plan.hop_frames - 1) / plan.hop_frames;
}

bool EncodeStages::finished(std::size_t slot) {
  if (spreads_ && slot == going_.slot) return going_.samples == slots_[slot].piece.out;
  for (std::size_t part = 1; pool_ != nullptr && part < parts(); ++part) {
    if (!pool_->finished(job_of(slot, part))) return false;
  }
  return true;
}

void EncodeStages::wait_for(std::size_t slot, bool /*ring_is_full*/) {
  if (pool_ == nullptr) return modulate_to(slots_[slot].piece.out);
  for (std::size_t part = 1; part < parts(); ++part) pool_->wait_for(job_of(slot, part));
}

void EncodeStages::open(std::size_t slot) {
  if (!spreads_) collect(slots_[slot]);
}

void EncodeStages::collect(Slot& slot) {
  for (ModulationTally& tally : slot.tallies) {
    tally_.peak = std::max(tally_.peak, tally.peak);
    tally_.limited += tally.limited;
    tally_.overload += tally.overload;
    tally = {};
  }
}

void EncodeStages::reset() {
  if (pool_ != nullptr) pool_->clear();
  going_ = {};
  slots_[0].piece = {};
  for (ModulatorStream& modulator : modulators_) modulator.reset();
  std::fill(next_.begin(), next_.end(), 0u);
  std::fill(up_sampled_.begin(), up_sampled_.end(), 0u);
  length_ = ModulatorStream::kEndless;
  tally_ = {};
}

}  // namespace corvin::studio
