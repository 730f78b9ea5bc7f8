// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/decoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

#include "studio/stream/stream_limits.h"

namespace corvin::studio {
namespace {

bool in_range(const corvin_decoder_settings& s) {
  // Comparisons that a NaN fails.
  return s.channels >= 1 && s.channels <= kMostChannels && s.bit_order <= CORVIN_LSB_FIRST &&
         s.block_bytes >= 1 && s.block_bytes <= kLargestBlock && s.format <= CORVIN_F64 &&
         s.dither <= CORVIN_DITHER_SHAPED && s.phase <= CORVIN_MINIMUM_PHASE &&
         s.threads <= kMostThreads && s.gain_db >= kLeastGainDb && s.gain_db <= kMostGainDb &&
         s.pass_hz >= 0 && s.stop_hz >= 0 && std::isfinite(s.pass_hz) && std::isfinite(s.stop_hz);
}

std::size_t round_up(std::size_t value, std::size_t grain) {
  return (value + grain - 1) / grain * grain;
}

// Enough pieces to keep the workers busy while others are taken in and out, as far as memory that
// is no burden reaches; and one for each worker, one coming in and one going out at least.
std::size_t ring_pieces(std::size_t threads, std::size_t piece_bytes) {
  constexpr std::size_t kMostBytes = 24 << 20;
  return std::clamp(kMostBytes / piece_bytes, threads + 2, 6 * threads + 2);
}

// Every `stride`th byte. The stereo loop is cut into pieces of fixed size for the compiler's
// vectors.
void pick(const std::uint8_t* in, std::size_t stride, std::size_t count, std::uint8_t* out) {
  if (stride == 1) {
    std::memcpy(out, in, count);
    return;
  }
  std::size_t i = 0;
  if (stride == 2) {
    constexpr std::size_t kPiece = 32;
    for (; i + kPiece <= count; i += kPiece) {
      std::uint8_t piece[kPiece];
      for (std::size_t k = 0; k < kPiece; ++k) piece[k] = in[2 * (i + k)];
      std::memcpy(out + i, piece, kPiece);
    }
  }
  for (; i < count; ++i) out[i] = in[i * stride];
}

}  // namespace

int Decoder::create(const corvin_decoder_settings& settings, std::unique_ptr<Decoder>& decoder) {
  if (!in_range(settings)) return CORVIN_E_ARGUMENT;
  const Kernels kernels = choose_kernels(settings.kernel_mask);
  DecodePlanConfig config;
  config.dsd_rate = settings.dsd_rate;
  config.pcm_rate = settings.pcm_rate;
  config.pass_hz = settings.pass_hz;
  config.stop_hz = settings.stop_hz;
  config.phase = settings.phase == CORVIN_MINIMUM_PHASE ? Phase::kMinimum : Phase::kLinear;
  config.lsb_first = settings.bit_order == CORVIN_LSB_FIRST;
  config.row_stride_12 = kernels.bit_fir->row_stride_12;
  auto plan = make_decode_plan(config);
  if (!plan) return CORVIN_E_UNSUPPORTED;
  decoder.reset(new Decoder(settings, std::move(*plan), kernels));
  return CORVIN_OK;
}

Decoder::Decoder(const corvin_decoder_settings& settings, DecodePlan plan, const Kernels& kernels)
    : settings_(settings),
      plan_(std::move(plan)),
      kernels_(kernels),
      channels_(settings.channels),
      // As many as make whole vectors of every width with this number of channels, so that a piece
      // is the same on every processor.
      items_per_channel_(
          settings.low_latency != 0 ? 1 : kWidestVector / std::gcd(kWidestVector, channels_)),
      piece_bytes_((2 * items_per_channel_ - 1) * plan_.hop_bytes + plan_.block_bytes),
      piece_stride_(round_up(piece_bytes_, kKernelAlignment)),
      piece_frames_(items_per_channel_ * item_frames(plan_)),
      shared_bytes_(plan_.block_bytes - plan_.hop_bytes),
      idle_byte_(settings.bit_order == CORVIN_LSB_FIRST ? kIdlePatternLsbFirst : kIdlePattern),
      most_bytes_(settings.length == 0 ? std::numeric_limits<std::uint64_t>::max()
                                       : settings.length / 8 + (settings.length % 8 != 0)),
      pieces_(settings.threads == 0
                  ? 2
                  : ring_pieces(settings.threads, channels_ * (piece_stride_ + 4 * piece_frames_))),
      group_(channels_ * settings.block_bytes) {
  const std::size_t threads = std::max<std::size_t>(1, settings.threads);
  workers_.reserve(threads);
  for (std::size_t i = 0; i < threads; ++i) {
    workers_.push_back(
        {BlockFilter(plan_, kernels_), SampleOutput(settings, *kernels.quantise), {}});
  }
  const bool serial = workers_[0].output.is_serial();
  const std::size_t samples = channels_ * piece_frames_;
  for (Piece& piece : pieces_) {
    piece.in = AlignedArray<std::uint8_t>(channels_ * piece_stride_);
    if (serial) {
      piece.samples = AlignedArray<double>(samples);
    } else {
      piece.finished = AlignedArray<std::uint8_t>(piece_frames_ * frame_bytes());
    }
  }
  for (Worker& worker : workers_) {
    if (!serial) worker.samples = AlignedArray<double>(samples);
  }
  if (settings.threads > 0) {
    pool_ = std::make_unique<WorkerPool>(
        settings.threads, pieces_.size(),
        [this](std::size_t worker, std::size_t job) { work(workers_[worker], pieces_[job]); });
  }
}

void Decoder::work(Worker& worker, Piece& piece) {
  if (worker.output.is_serial()) return filter(worker.filter, piece, &piece.samples[0]);
  filter(worker.filter, piece, &worker.samples[0]);
  const double* rows[kMostChannels];
  for (std::size_t c = 0; c < channels_; ++c) rows[c] = &worker.samples[c * piece_frames_];
  piece.tally = {};
  worker.output.write(rows, piece.number * piece_frames_, piece.frames, &piece.finished[0],
                      piece.tally);
}

void Decoder::filter(BlockFilter& filter, const Piece& piece, double* samples) {
  const std::size_t items = channels_ * items_per_channel_;
  const std::uint8_t* in[kWidestVector];
  double* out[kWidestVector];
  const std::size_t width = std::min(filter.items_at_once(), kWidestVector);
  for (std::size_t item = 0; item < items;) {
    std::size_t count = 0;
    for (; count < width && item < items; ++count, ++item) {
      const std::size_t channel = item / items_per_channel_;
      const std::size_t place = item % items_per_channel_;
      in[count] = &piece.in[channel * piece_stride_ + place * 2 * plan_.hop_bytes];
      out[count] = samples + channel * piece_frames_ + place * item_frames(plan_);
    }
    filter.run(in, out, count);
  }
}

// Prepares the piece that takes bytes next, if its place in the ring is free.
bool Decoder::begin_piece() {
  if (filling_begun_) return true;
  if (filling_ - draining_ == pieces_.size()) return false;
  Piece& piece = pieces_[place_of(filling_)];
  filled_ = filling_ == 0 ? plan_.lead_bytes : shared_bytes_;
  // Nobody writes to the piece before until this one is done, so its tail is still there.
  const Piece& before = pieces_[place_of(filling_ + pieces_.size() - 1)];
  for (std::size_t c = 0; c < channels_; ++c) {
    std::uint8_t* head = &piece.in[c * piece_stride_];
    if (filling_ == 0) {
      std::memset(head, idle_byte_, filled_);
    } else {
      std::memcpy(head, &before.in[c * piece_stride_] + piece_bytes_ - shared_bytes_, filled_);
    }
  }
  filling_begun_ = true;
  return true;
}

// Hands the filled piece over, of whose frames the first `frames` belong to the stream.
void Decoder::submit(std::size_t frames) {
  const auto job = place_of(filling_);
  pieces_[job].number = filling_;
  pieces_[job].frames = frames;
  if (pool_ != nullptr) {
    pool_->hand_in(job);
  } else {
    work(workers_[0], pieces_[job]);
  }
  ++filling_;
  filling_begun_ = false;
}

std::size_t Decoder::store(const Source& source, std::size_t offset, std::size_t bytes) {
  Piece& piece = pieces_[place_of(filling_)];
  const std::size_t count = std::min(bytes, piece_bytes_ - filled_);
  for (std::size_t c = 0; c < channels_; ++c) {
    std::uint8_t* out = &piece.in[c * piece_stride_ + filled_];
    const std::uint8_t* in =
        source.pointers != nullptr ? source.pointers[c] : source.data + c * source.channel_stride;
    in += offset * source.byte_stride;
    pick(in, source.byte_stride, count, out);
  }
  filled_ += count;
  accepted_ += count;
  if (accepted_ == most_bytes_ && settings_.length % 8 != 0) {
    // Bits after the last sample are silence as well.
    const auto kept = static_cast<unsigned>(settings_.length % 8);
    const unsigned mask =
        settings_.bit_order == CORVIN_LSB_FIRST ? (1u << kept) - 1 : 0xffu & ~(0xffu >> kept);
    for (std::size_t c = 0; c < channels_; ++c) {
      std::uint8_t& last = piece.in[c * piece_stride_ + filled_ - 1];
      last = static_cast<std::uint8_t>((last & mask) | (idle_byte_ & ~mask));
    }
  }
  // Its bytes reach beyond its frames, all of which therefore belong to the stream.
  if (filled_ == piece_bytes_) submit(piece_frames_);
  return count;
}

std::size_t Decoder::accept(const Source& source, std::size_t bytes) {
  std::size_t done = 0;
  while (done < bytes) {
    if (accepted_ == most_bytes_) return bytes;  // beyond the length: dropped
    if (!begin_piece()) break;
    const std::uint64_t left = most_bytes_ - accepted_;
    done +=
        store(source, done, static_cast<std::size_t>(std::min<std::uint64_t>(bytes - done, left)));
  }
  return done;
}

// Passes a gathered block on; false when some of it is left.
bool Decoder::empty_group() {
  if (group_length_ == 0) return true;
  const Source source = {group_.data() + group_passed_, settings_.block_bytes, 1, nullptr};
  group_passed_ += accept(source, group_length_ - group_passed_);
  if (group_passed_ < group_length_) return false;
  group_bytes_ = group_length_ = group_passed_ = 0;
  return true;
}

int Decoder::push(const std::uint8_t* data, std::size_t bytes, std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  const std::size_t block = settings_.block_bytes;
  const std::size_t group = group_.size();
  while (taken < bytes && empty_group()) {
    const std::uint8_t* from = data + taken;
    const std::size_t left = bytes - taken;
    if (group_bytes_ == 0 && left >= group) {
      // Straight from the caller's memory: all frames of interleaved bytes, or a block.
      if (block == 1) {
        const std::size_t passed = accept({from, 1, channels_, nullptr}, left / channels_);
        taken += passed * channels_;
        if (passed == 0) break;
        continue;
      }
      const std::size_t passed = accept({from, block, 1, nullptr}, block);
      if (passed == 0) break;
      taken += group;
      if (passed < block) {
        std::memcpy(group_.data(), from, group);
        group_bytes_ = group;
        group_length_ = block;
        group_passed_ = passed;
      }
      continue;
    }
    const std::size_t part = std::min(left, group - group_bytes_);
    std::memcpy(&group_[group_bytes_], from, part);
    group_bytes_ += part;
    taken += part;
    if (group_bytes_ == group) group_length_ = block;
  }
  empty_group();
  return CORVIN_OK;
}

int Decoder::push_planar(const std::uint8_t* const* channels, std::size_t bytes,
                         std::size_t& taken) {
  taken = 0;
  if (finishing_) return CORVIN_E_STATE;
  if (!empty_group()) return CORVIN_OK;
  if (group_bytes_ != 0) return CORVIN_E_STATE;
  taken = accept({nullptr, 0, 1, channels}, bytes);
  return CORVIN_OK;
}

void Decoder::finish() {
  if (finishing_) return;
  finishing_ = true;
  if (group_length_ == 0 && group_bytes_ > 0) {
    // As far as the last channel reaches, all do.
    const std::size_t before_last = (channels_ - 1) * settings_.block_bytes;
    group_length_ = group_bytes_ > before_last ? group_bytes_ - before_last : 0;
    if (group_length_ == 0) group_bytes_ = 0;
  }
  settle_length();
}

// After finish: passes on what is left and fills up with silence until all frames are on their way.
void Decoder::settle_length() {
  if (!finishing_ || !empty_group()) return;
  if (!length_known_) {
    length_known_ = true;
    const std::uint64_t samples = accepted_ == most_bytes_ ? settings_.length : accepted_ * 8;
    length_frames_ = frames_of(samples);
  }
  while (filling_ * piece_frames_ < length_frames_ && begin_piece()) {
    Piece& piece = pieces_[place_of(filling_)];
    for (std::size_t c = 0; c < channels_; ++c) {
      std::memset(&piece.in[c * piece_stride_ + filled_], idle_byte_, piece_bytes_ - filled_);
    }
    submit(static_cast<std::size_t>(
        std::min<std::uint64_t>(piece_frames_, length_frames_ - filling_ * piece_frames_)));
  }
}

// Whether the oldest piece has samples. Waits for it only when the ring takes nothing more.
bool Decoder::ready() {
  if (draining_ == filling_) return false;
  if (pool_ == nullptr) return true;
  const auto job = place_of(draining_);
  if (pool_->finished(job)) return true;
  const bool full = filling_ - draining_ == pieces_.size();
  if (!finishing_ && !full) return false;
  // Being woken costs as much as a good part of a piece: with a full ring, half of it at a time.
  // The workers go on with the other half meanwhile.
  if (full && settings_.low_latency == 0) {
    pool_->wait_for(place_of(draining_ + pieces_.size() / 2));
  }
  pool_->wait_for(job);
  return true;
}

// Has frames taken piece by piece: take(piece, first, count), from frame `first` of the piece on.
template <typename Take>
std::size_t Decoder::pull_pieces(std::size_t frames, Take take) {
  std::size_t done = 0;
  while (done < frames) {
    settle_length();
    if (length_known_ && frames_out_ == length_frames_) break;
    // With workers: having something to give is no reason to wait for more.
    if (done > 0 && pool_ != nullptr && draining_ != filling_ &&
        !pool_->finished(place_of(draining_))) {
      break;
    }
    if (!ready()) break;
    const Piece& piece = pieces_[place_of(draining_)];
    const std::size_t count = std::min(frames - done, piece.frames - drained_);
    if (drained_ == 0) {
      tally_.peak = std::max(tally_.peak, piece.tally.peak);
      tally_.clips += piece.tally.clips;
    }
    take(piece, drained_, count);
    done += count;
    drained_ += count;
    frames_out_ += count;
    if (drained_ == piece.frames) {
      drained_ = 0;
      ++draining_;
    }
  }
  return done;
}

// Writes frames of a piece, interleaved. `index` is that of the first one in the stream.
void Decoder::write_frames(const Piece& piece, std::size_t first, std::size_t count,
                           std::uint64_t index, std::uint8_t* out) {
  SampleOutput& output = workers_[0].output;
  if (!output.is_serial()) {
    std::memcpy(out, &piece.finished[first * frame_bytes()], count * frame_bytes());
    return;
  }
  const double* rows[kMostChannels];
  for (std::size_t c = 0; c < channels_; ++c) rows[c] = &piece.samples[c * piece_frames_ + first];
  output.write(rows, index, count, out, tally_);
}

std::size_t Decoder::pull(void* out, std::size_t frames) {
  auto* place = static_cast<std::uint8_t*>(out);
  return pull_pieces(frames, [&](const Piece& piece, std::size_t first, std::size_t count) {
    write_frames(piece, first, count, frames_out_, place);
    place += count * frame_bytes();
  });
}

std::size_t Decoder::pull_planar(void* const* out, std::size_t frames) {
  constexpr std::size_t kFrames = 64;
  std::uint8_t interleaved[kFrames * kMostChannels * sizeof(double)];
  const std::size_t bytes = workers_[0].output.sample_bytes();
  std::size_t offset = 0;
  return pull_pieces(frames, [&](const Piece& piece, std::size_t first, std::size_t count) {
    for (std::size_t done = 0; done < count; done += kFrames) {
      const std::size_t part = std::min(count - done, kFrames);
      write_frames(piece, first + done, part, frames_out_ + done, interleaved);
      for (std::size_t c = 0; c < channels_; ++c) {
        std::uint8_t* place = static_cast<std::uint8_t*>(out[c]) + offset;
        for (std::size_t i = 0; i < part; ++i) {
          std::memcpy(place + i * bytes, &interleaved[i * frame_bytes() + c * bytes], bytes);
        }
      }
      offset += part * bytes;
    }
  });
}

void Decoder::reset() {
  if (pool_ != nullptr) pool_->clear();
  group_bytes_ = group_length_ = group_passed_ = 0;
  accepted_ = filling_ = draining_ = frames_out_ = length_frames_ = 0;
  filled_ = drained_ = 0;
  filling_begun_ = finishing_ = length_known_ = false;
  tally_ = {};
  workers_[0].output.reset();
}

std::uint64_t Decoder::latency() const {
  // Right before a piece is complete, everything since the one before waits; a block of the input's
  // layout may wait on top.
  const std::uint64_t bytes = piece_bytes_ - plan_.lead_bytes + settings_.block_bytes - 1;
  return frames_of(bytes * 8) + 1;
}

std::uint64_t Decoder::frames_of(std::uint64_t samples) const {
  return studio::frames_of(samples, settings_.dsd_rate, settings_.pcm_rate);
}

void Decoder::report(corvin_decoder_report& report) const {
  report.frames = frames_out_;
  report.clips = tally_.clips;
  report.peak = tally_.peak * workers_[0].output.gain();
}

}  // namespace corvin::studio
