// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//

#include "studio/encode/encoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

#include "studio/math/exact_math.h"
#include "studio/modulator/noise_shapers.h"
#include "studio/pcm/sample_input.h"
#include "studio/stream/stream_limits.h"

namespace corvin::studio {
namespace {

// A worker that up-samples keeps up with this many modulators.
constexpr std::size_t kModulatorsPerUpSampler = 3;

bool in_range(const corvin_encoder_settings& s) {
  // Comparisons that a NaN fails.
  return s.channels >= 1 && s.channels <= kMostChannels && s.format <= CORVIN_F64 &&
         s.modulator <= CORVIN_MODULATOR_BEST && s.bit_order <= CORVIN_LSB_FIRST &&
         s.block_bytes >= 1 && s.block_bytes <= kLargestBlock && s.threads <= kMostThreads &&
         s.gain_db >= kLeastGainDb && s.gain_db <= kMostGainDb;
}

constexpr std::array<std::uint8_t, 256> reversals() {
  std::array<std::uint8_t, 256> table = {};
  for (unsigned value = 0; value < 256; ++value) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      if ((value >> bit & 1) != 0)
        table[value] = static_cast<std::uint8_t>(table[value] | 0x80 >> bit);
    }
  }
  return table;
}

constexpr std::array<std::uint8_t, 256> kReversed = reversals();

}  // namespace

int Encoder::create(const corvin_encoder_settings& settings, std::unique_ptr<Encoder>& encoder) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  auto chain =
      make_encode_chain(settings.pcm_rate, settings.dsd_rate,
                        static_cast<ModulatorGrade>(settings.modulator), settings.kernel_mask);
  if (!chain) return CORVIN_E_UNSUPPORTED;
  encoder.reset(new Encoder(settings, std::move(*chain), choose_kernels(settings.kernel_mask)));
  return CORVIN_OK;
}

Encoder::Encoder(const corvin_encoder_settings& settings, EncodeChain chain, const Kernels& kernels)
    : settings_(settings),
      plan_(std::move(chain.plan)),
      kernels_(kernels),
      gain_(from_db(settings.gain_db)),
      channels_(settings.channels),
      // Up to four paths a pair of channels shares its vectors; eight fill them with one.
      channels_per_stream_(
          search_paths(chain.modulator.grade, chain.modulator.oversampling) > 4 ? 1 : 2),
      // As many as make whole vectors of every width with this number of channels, so that a piece
      // is the same on every processor.
      items_per_channel_(
          settings.low_latency != 0 ? 1 : kWidestVector / std::gcd(kWidestVector, channels_)),
      piece_frames_((2 * items_per_channel_ - 1) * plan_.hop_frames + plan_.block_frames()),
      piece_samples_(items_per_channel_ * item_samples(plan_)),
      shared_frames_(plan_.block_frames() - plan_.hop_frames),
      most_frames_(settings.length == 0 ? std::numeric_limits<std::uint64_t>::max()
                                        : settings.length),
      group_(channels_ * settings.block_bytes) {
  for (std::size_t c = 0; c < channels_; c += channels_per_stream_) {
    ModulatorConfig config = chain.modulator;
    config.channels = static_cast<int>(std::min(channels_per_stream_, channels_ - c));
    streams_.emplace_back(config);
  }
  // More find nothing to do.
  const std::size_t most_workers = streams_.size() + 1 + streams_.size() / kModulatorsPerUpSampler;
  const std::size_t workers = std::min<std::size_t>(settings.threads, most_workers);
  // One that takes frames, one that gives bytes, one with the modulators, the others up-sampled.
  pieces_.resize(workers == 0 ? 2 : 4 + workers / kModulatorsPerUpSampler);
  for (Piece& piece : pieces_) {
    piece.in = AlignedArray<double>(channels_ * piece_frames_);
    piece.out =
        AlignedArray<std::uint8_t>(channels_ * (piece_samples_ + 2 * ModulatorStream::kDelay));
    piece.tallies.resize(streams_.size());
  }
  samples_.resize(workers == 0 ? 1 : pieces_.size());
  for (auto& samples : samples_) samples = AlignedArray<double>(channels_ * piece_samples_);
  const std::size_t samplers = std::max<std::size_t>(1, workers);
  up_samplers_.reserve(samplers);
  for (std::size_t i = 0; i < samplers; ++i) up_samplers_.emplace_back(plan_, kernels_);
  next_.resize(streams_.size());
  up_sampled_.resize(pieces_.size());
  if (workers > 0) {
    pool_ = std::make_unique<WorkerPool>(
        workers, pieces_.size() * (streams_.size() + 1),
        [this](std::size_t worker, std::size_t job) { work(worker, job); });
  }
}

double* Encoder::samples_of_slot(std::size_t slot, std::size_t channel) {
  return &samples_[slot % samples_.size()][channel * piece_samples_];
}

std::uint8_t* Encoder::bytes_of(Piece& piece, std::size_t channel) {
  return &piece.out[channel * (piece_samples_ + 2 * ModulatorStream::kDelay)];
}

void Encoder::up_sample(UpSampler& sampler, std::size_t slot) {
  const Piece& piece = pieces_[slot];
  const std::size_t items = channels_ * items_per_channel_;
  const double* in[kWidestVector];
  double* out[kWidestVector];
  const std::size_t width = std::min(sampler.items_at_once(), kWidestVector);
  for (std::size_t item = 0; item < items;) {
    std::size_t count = 0;
    for (; count < width && item < items; ++count, ++item) {
      const std::size_t channel = item / items_per_channel_;
      const std::size_t place = item % items_per_channel_;
      in[count] = &piece.in[channel * piece_frames_ + place * 2 * plan_.hop_frames];
      out[count] = samples_of_slot(slot, channel) + place * item_samples(plan_);
    }
    sampler.run(in, out, count);
  }
}

void Encoder::modulate(std::size_t stream, std::size_t slot) {
  Piece& piece = pieces_[slot];
  const double* in[2] = {};
  std::uint8_t* out[2] = {};
  const std::size_t first = stream * channels_per_stream_;
  for (std::size_t c = first; c < std::min(first + channels_per_stream_, channels_); ++c) {
    in[c - first] = samples_of_slot(slot, c);
    out[c - first] = bytes_of(piece, c);
  }
  piece.tallies[stream] = {};
  streams_[stream].run(in, piece.samples, out, piece.tallies[stream]);
}

void Encoder::work(std::size_t worker, std::size_t job) {
  const std::size_t slot = job / (streams_.size() + 1);
  const std::size_t part = job % (streams_.size() + 1);
  const std::uint64_t number = pieces_[slot].number;
  if (part == 0) {
    up_sample(up_samplers_[worker], slot);
    const std::lock_guard lock(chain_);
    up_sampled_[slot] = number + 1;
    for (std::size_t stream = 0; stream < streams_.size(); ++stream) {
      if (next_[stream] == number) pool_->hand_in_first(job_of(slot, 1 + stream));
    }
    return;
  }
  modulate(part - 1, slot);
  const std::lock_guard lock(chain_);
  const std::uint64_t next = ++next_[part - 1];
  if (up_sampled_[slot_of(next)] == next + 1) pool_->hand_in_first(job_of(slot_of(next), part));
}

// Prepares the piece that takes frames next, if its place in the ring is free.
bool Encoder::begin_piece() {
  if (filling_begun_) return true;
  if (filling_ - draining_ == pieces_.size()) return false;
  Piece& piece = pieces_[slot_of(filling_)];
  filled_ = filling_ == 0 ? plan_.lead_frames : shared_frames_;
  // Nobody writes to the piece before until this one is done, so its tail is still there.
  const Piece& before = pieces_[slot_of(filling_ + pieces_.size() - 1)];
  for (std::size_t c = 0; c < channels_; ++c) {
    double* head = &piece.in[c * piece_frames_];
    if (filling_ == 0) {
      std::fill_n(head, filled_, 0.0);
    } else {
      std::copy_n(&before.in[c * piece_frames_] + piece_frames_ - shared_frames_, filled_, head);
    }
  }
  filling_begun_ = true;
  return true;
}

// Hands the filled piece on, of which the modulators take `samples`.
void Encoder::submit(std::size_t samples) {
  const std::size_t slot = slot_of(filling_);
  Piece& piece = pieces_[slot];
  piece.number = filling_;
  piece.samples = samples;
  piece.bytes = static_cast<std::size_t>(bytes_after(fed_ + samples) - bytes_after(fed_));
  fed_ += samples;
  ++filling_;
  filling_begun_ = false;
  if (pool_ == nullptr) {
    up_sample(up_samplers_[0], slot);
    for (std::size_t stream = 0; stream < streams_.size(); ++stream) modulate(stream, slot);
    return;
  }
  for (std::size_t stream = 0; stream < streams_.size(); ++stream) {
    pool_->announce(job_of(slot, 1 + stream));
  }
  pool_->hand_in(job_of(slot, 0));
}

// Takes frames as long as there is room; place(channel, frame) is where a sample lies.
template <typename Place>
std::size_t Encoder::accept(std::size_t frames, std::size_t stride, Place place) {
  std::size_t done = 0;
  while (done < frames) {
    if (accepted_ == most_frames_) return frames;  // beyond the length: dropped
    if (!begin_piece()) break;
    Piece& piece = pieces_[slot_of(filling_)];
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(
        std::min(frames - done, piece_frames_ - filled_), most_frames_ - accepted_));
    for (std::size_t c = 0; c < channels_; ++c) {
      read_samples(place(c, done), stride, count, settings_.format, gain_,
                   &piece.in[c * piece_frames_ + filled_]);
    }
    filled_ += count;
    accepted_ += count;
    done += count;
    if (filled_ == piece_frames_) submit(piece_samples_);
  }
  return done;
}

int Encoder::push(const std::uint8_t* data, std::size_t frames, std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  const std::size_t width = sample_bytes(settings_.format);
  taken = accept(frames, channels_ * width, [&](std::size_t channel, std::size_t frame) {
    return data + (frame * channels_ + channel) * width;
  });
  return CORVIN_OK;
}

int Encoder::push_planar(const void* const* channels, std::size_t frames, std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  const std::size_t width = sample_bytes(settings_.format);
  taken = accept(frames, width, [&](std::size_t channel, std::size_t frame) {
    return static_cast<const std::uint8_t*>(channels[channel]) + frame * width;
  });
  return CORVIN_OK;
}

void Encoder::finish() {
  finishing_ = true;
  settle_length();
}

// After finish: fills up with zeros until all bytes are on their way.
void Encoder::settle_length() {
  if (!finishing_) return;
  if (!length_known_) {
    length_known_ = true;
    length_samples_ = samples_of(accepted_);
    length_bytes_ = length_samples_ / 8 + (length_samples_ % 8 != 0);
  }
  const std::uint64_t total = length_bytes_ == 0 ? 0 : length_bytes_ + ModulatorStream::kDelay;
  while (fed_ < total && begin_piece()) {
    Piece& piece = pieces_[slot_of(filling_)];
    for (std::size_t c = 0; c < channels_; ++c) {
      std::fill_n(&piece.in[c * piece_frames_ + filled_], piece_frames_ - filled_, 0.0);
    }
    submit(static_cast<std::size_t>(std::min<std::uint64_t>(piece_samples_, total - fed_)));
  }
}

bool Encoder::finished(std::size_t slot) {
  for (std::size_t stream = 0; stream < streams_.size(); ++stream) {
    if (!pool_->finished(job_of(slot, 1 + stream))) return false;
  }
  return true;
}

// Whether the oldest piece has its bytes. Waits for it only when the ring takes nothing more.
bool Encoder::ready() {
  if (draining_ == filling_) return false;
  if (pool_ == nullptr) return true;
  const std::size_t slot = slot_of(draining_);
  if (!finishing_ && filling_ - draining_ < pieces_.size()) return finished(slot);
  for (std::size_t stream = 0; stream < streams_.size(); ++stream) {
    pool_->wait_for(job_of(slot, 1 + stream));
  }
  return true;
}

// Bytes of each channel that the oldest piece has left. `patient`: waits where ready() does.
std::size_t Encoder::available(bool patient) {
  for (;;) {
    settle_length();
    if (ended()) return 0;
    // With workers: having something to give is no reason to wait for more.
    if (!patient && pool_ != nullptr && draining_ != filling_ && !finished(slot_of(draining_))) {
      return 0;
    }
    if (!ready()) return 0;
    if (!draining_opened_) open_piece();
    const std::size_t left = pieces_[slot_of(draining_)].bytes - drained_;
    if (left > 0) return left;
    drained_ = 0;
    draining_opened_ = false;
    ++draining_;
  }
}

void Encoder::open_piece() {
  draining_opened_ = true;
  Piece& piece = pieces_[slot_of(draining_)];
  for (const ModulationTally& tally : piece.tallies) {
    tally_.peak = std::max(tally_.peak, tally.peak);
    tally_.limited += tally.limited;
    tally_.overload += tally.overload;
  }
  const auto kept = static_cast<unsigned>(length_samples_ % 8);
  if (!length_known_ || kept == 0 || bytes_out_ + piece.bytes != length_bytes_) return;
  const unsigned mask = 0xffu & ~(0xffu >> kept);
  for (std::size_t c = 0; c < channels_; ++c) {
    std::uint8_t& last = bytes_of(piece, c)[piece.bytes - 1];
    last = static_cast<std::uint8_t>((last & mask) | (kIdlePattern & ~mask));
  }
}

// Copies `count` bytes of a channel, which the oldest piece has left, to every `stride`th place.
void Encoder::copy(std::size_t channel, std::size_t count, std::uint8_t* out, std::size_t stride) {
  const std::uint8_t* in = bytes_of(pieces_[slot_of(draining_)], channel) + drained_;
  if (settings_.bit_order == CORVIN_LSB_FIRST) {
    for (std::size_t i = 0; i < count; ++i) out[i * stride] = kReversed[in[i]];
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i * stride] = in[i];
  }
}

void Encoder::advance(std::size_t count) {
  drained_ += count;
  bytes_out_ += count;
}

// Moves bytes to the block in the making, or ends it with silence after the last byte. False when
// there is nothing to move.
bool Encoder::fill_group(bool patient) {
  const std::size_t block = settings_.block_bytes;
  const std::size_t count = std::min(available(patient), block - group_filled_);
  if (count == 0 && !(ended() && group_filled_ > 0)) return false;
  const std::size_t part = count > 0 ? count : block - group_filled_;
  for (std::size_t c = 0; c < channels_; ++c) {
    std::uint8_t* place = &group_[c * block + group_filled_];
    if (count > 0) {
      copy(c, part, place, 1);
    } else {
      std::memset(place,
                  settings_.bit_order == CORVIN_LSB_FIRST ? kIdlePatternLsbFirst : kIdlePattern,
                  part);
    }
  }
  advance(count);
  group_filled_ += part;
  return true;
}

std::size_t Encoder::pull(std::uint8_t* out, std::size_t bytes) {
  const std::size_t block = settings_.block_bytes;
  std::size_t done = 0;
  while (done < bytes) {
    if (group_filled_ == block) {
      const std::size_t part = std::min(bytes - done, group_.size() - group_sent_);
      std::copy_n(&group_[group_sent_], part, out + done);
      done += part;
      group_sent_ += part;
      if (group_sent_ == group_.size()) group_filled_ = group_sent_ = 0;
      continue;
    }
    const bool patient = done == 0;
    // Interleaved bytes straight to the caller's memory.
    const std::size_t whole = block == 1 ? (bytes - done) / channels_ : 0;
    if (whole == 0) {
      if (!fill_group(patient)) break;
      continue;
    }
    const std::size_t count = std::min(whole, available(patient));
    if (count == 0) break;
    for (std::size_t c = 0; c < channels_; ++c) copy(c, count, out + done + c, channels_);
    advance(count);
    done += count * channels_;
  }
  return done;
}

int Encoder::pull_planar(std::uint8_t* const* out, std::size_t bytes, std::size_t& done) {
  done = 0;
  if (group_filled_ > 0) return CORVIN_E_STATE;
  while (done < bytes) {
    const std::size_t count = std::min(bytes - done, available(done == 0));
    if (count == 0) break;
    for (std::size_t c = 0; c < channels_; ++c) copy(c, count, out[c] + done, 1);
    advance(count);
    done += count;
  }
  return CORVIN_OK;
}

void Encoder::reset() {
  if (pool_ != nullptr) pool_->clear();
  for (ModulatorStream& stream : streams_) stream.reset();
  std::fill(next_.begin(), next_.end(), 0u);
  std::fill(up_sampled_.begin(), up_sampled_.end(), 0u);
  accepted_ = filling_ = fed_ = draining_ = bytes_out_ = length_samples_ = length_bytes_ = 0;
  filled_ = drained_ = group_filled_ = group_sent_ = 0;
  filling_begun_ = draining_opened_ = finishing_ = length_known_ = false;
  tally_ = {};
}

std::uint64_t Encoder::latency() const {
  // Right before a piece is complete, everything since the one before waits, and some of that in
  // the modulators; an unfinished block of the output's layout may wait on top.
  return samples_of(piece_frames_ - plan_.lead_frames) +
         8 * (ModulatorStream::kDelay + settings_.block_bytes - 1);
}

std::uint64_t Encoder::samples_of(std::uint64_t frames) const {
  return studio::samples_of(frames, settings_.pcm_rate, settings_.dsd_rate);
}

void Encoder::report(corvin_encoder_report& report) const {
  report.samples = length_known_ ? std::min(8 * bytes_out_, length_samples_) : 8 * bytes_out_;
  report.limited = tally_.limited;
  report.overloads = tally_.overload;
  report.peak = tally_.peak * 2;  // full scale is 50 % modulation
}

std::string Encoder::describe() const {
  constexpr const char* kGrades[] = {"standard", "high", "best"};
  return plan_.describe() + "modulator: " + kGrades[settings_.modulator] + ", " +
         std::to_string(settings_.dsd_rate) + " Hz\n";
}

}  // namespace corvin::studio
