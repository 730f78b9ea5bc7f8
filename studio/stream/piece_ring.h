// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The way of a stream through a conversion, in either direction: what comes in fills pieces, stages
// work on them, on the caller's thread or on others, and what they made goes out in order. What is
// done with a piece is the stages' business; how the caller's bytes stand in memory is that of the
// decoder and the encoder.
//
// The ring holds pieces in stream order. Each begins with a copy of what it shares with the one
// before, so that pieces never share memory. Nothing allocates after the constructor.

#ifndef CORVIN_STUDIO_STREAM_PIECE_RING_H_
#define CORVIN_STUDIO_STREAM_PIECE_RING_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "studio/math/aligned_array.h"
#include "studio/stream/piece_shape.h"

namespace corvin::studio {

/// A filled piece.
template <typename In>
struct Piece {
  std::size_t slot;      ///< in the ring; nobody else has it until the piece is drained
  std::uint64_t number;  ///< of the piece, from 0 at the start
  std::uint64_t made;    ///< the place in the stream of the first thing it makes
  const In* in;          ///< in[channels][in_stride]
  std::size_t out;       ///< to be made of each channel: shape.out, fewer in the last piece
  std::size_t skips;     ///< of these, at the head: do not come out
};

/// The part of a stream that comes out of the ring; by default all of it.
struct PieceStart {
  std::uint64_t made = 0;   ///< the first thing that the first piece makes, where an item begins
  std::uint64_t given = 0;  ///< the first thing that comes out
  std::uint64_t end = std::numeric_limits<std::uint64_t>::max();  ///< the first one that does not
  std::uint64_t in = 0;                                           ///< the first element handed in
  std::size_t silent = 0;  ///< elements at the first piece's head, in place of those before it
};

/// What a ring has done with its pieces. Called on the ring's thread only.
template <typename In>
class PieceStages {
 public:
  /// Begins with a piece, or does all of it.
  virtual void start(const Piece<In>& piece) = 0;
  virtual bool finished(std::size_t slot) = 0;
  /// Waits until the oldest piece is finished. `ring_is_full`: nobody can give the stages more
  /// before that.
  virtual void wait_for(std::size_t slot, bool ring_is_full) = 0;
  /// Told as the next piece fills up, by `in` of the `shape.in` elements that it reads. Stages may
  /// use the time to go on with pieces that they were given.
  virtual void progress(std::size_t in) = 0;
  /// How much of what it gives a piece that is not finished has ready.
  virtual std::size_t ready(std::size_t slot) = 0;
  /// Told once of each piece, in order, when some of it is ready and before it is drained.
  virtual void open(std::size_t slot) = 0;

 protected:
  ~PieceStages() = default;
};

/// Counts are of one channel.
template <typename In>
class PieceRing {
 public:
  /// @param most     that the stream has, from its first on; what comes beyond is dropped
  /// @param silence  fills up before the stream's first and behind its last element
  /// @param stages   take no piece after the ring is gone
  PieceRing(const PieceShape<In>& shape, std::size_t pieces, std::uint64_t most, In silence,
            PieceStages<In>& stages)
      : shape_(shape), most_(most), silence_(silence), stages_(stages), slots_(pieces) {
    for (Slot& slot : slots_) slot.in = AlignedArray<In>(shape.channels * shape.in_stride);
    reset();
  }

  const PieceShape<In>& shape() const { return shape_; }

  // ---- Filling

  /// Takes up to `count` elements of each channel, as far as there is room, and returns how many.
  /// Room never lacks for the sake of what does not come out: for that it waits.
  /// @param store  store(channel, first, count, to) stores those from `first` on
  template <typename Store>
  std::size_t accept(std::size_t count, Store store) {
    std::size_t done = 0;
    while (done < count) {
      if (accepted_ >= most_) return count;  // the rest is dropped
      if (!begin() && !(pass_over() && begin())) break;
      const auto part = static_cast<std::size_t>(
          std::min<std::uint64_t>(std::min(count - done, shape_.in - filled_), most_ - accepted_));
      for (std::size_t c = 0; c < shape_.channels; ++c) store(c, done, part, filling_place(c));
      filled_ += part;
      accepted_ += part;
      done += part;
      if (filled_ < shape_.in) stages_.progress(filled_);
      // What it reads reaches beyond what it makes, all of which therefore belongs to the stream,
      // up to the end of what is to come out.
      if (filled_ == shape_.in) submit(shape_.out);
    }
    return done;
  }

  /// Of the stream, those before the start included.
  std::uint64_t accepted() const { return accepted_; }

  /// Nothing follows; `length` is to come out in all, what lies before the start included.
  void end(std::uint64_t length) {
    ending_ = true;
    length_ = std::max(length, start_.given);
    fill_up();
  }

  bool ending() const { return ending_; }

  // ---- Draining

  /// How much the oldest piece has left to give; 0 when nothing is ready. `patient`: waits for it,
  /// when nothing more can be filled before that.
  std::size_t available(bool patient) {
    for (;;) {
      fill_up();
      if (drained_all() || draining_ == filling_) return 0;
      const bool whole = finished(patient);
      const std::size_t ready = whole ? slots_[slot()].gives : stages_.ready(slot());
      if (!whole && ready <= drained_) return 0;
      open();
      if (drained_ < ready) return ready - drained_;
      release();
    }
  }

  /// Has up to `wanted` taken and returns how much.
  /// @param take    take(done, count): the next `count`, from drained() of slot() on
  /// @param supply  supply(): may fill the room that became free
  template <typename Take, typename Supply>
  std::size_t drain(std::size_t wanted, Take take, Supply supply) {
    std::size_t done = 0;
    while (done < wanted) {
      supply();
      // Having something to give is no reason to wait for more.
      const std::size_t count = std::min(wanted - done, available(done == 0));
      if (count == 0) break;
      take(done, count);
      advance(count);
      done += count;
    }
    return done;
  }

  template <typename Take>
  std::size_t drain(std::size_t wanted, Take take) {
    return drain(wanted, take, [] {});
  }

  /// Counts what was taken of the oldest piece.
  void advance(std::size_t count) {
    drained_ += count;
    given_ += count;
    if (drained_ == slots_[slot()].gives) release();
  }

  /// The oldest piece, how much of it was taken or skipped, and how much was taken since the start.
  std::size_t slot() const { return slot_of(draining_); }
  std::size_t drained() const { return drained_; }
  std::uint64_t given() const { return given_; }
  /// Whether the next `count` are the stream's last, or nothing is left.
  bool ends_with(std::size_t count) const {
    return ending_ && start_.given + given_ + count == length_;
  }
  bool drained_all() const { return ends_with(0); }

  /// As new, within a stream. The stages have no piece any more.
  void restart(const PieceStart& start) {
    start_ = start;
    accepted_ = start.in;
    filling_ = draining_ = given_ = length_ = 0;
    filled_ = drained_ = 0;
    begun_ = opened_ = ending_ = false;
  }

  /// The same at the stream's first element.
  void reset() {
    PieceStart start;
    start.silent = shape_.lead;
    restart(start);
  }

 private:
  struct Slot {
    AlignedArray<In> in;    // [channel][in_stride]
    std::size_t gives = 0;  // comes out with this piece, and what it skips
    std::size_t skips = 0;
  };

  std::size_t slot_of(std::uint64_t number) const {
    return static_cast<std::size_t>(number % slots_.size());
  }
  bool full() const { return filling_ - draining_ == slots_.size(); }
  In* filling_place(std::size_t channel) {
    return &slots_[slot_of(filling_)].in[channel * shape_.in_stride + filled_];
  }

  // Prepares the piece to be filled next, if its slot is free.
  bool begin() {
    if (begun_) return true;
    if (full()) return false;
    Slot& slot = slots_[slot_of(filling_)];
    // Nobody writes to the piece before until this one is done, so its tail is still there.
    const Slot& before = slots_[slot_of(filling_ + slots_.size() - 1)];
    for (std::size_t c = 0; c < shape_.channels; ++c) {
      const std::size_t head = c * shape_.in_stride;
      if (filling_ == 0) {
        std::fill_n(&slot.in[head], start_.silent, silence_);
      } else {
        std::copy_n(&before.in[head + shape_.in - shape_.shared], shape_.shared, &slot.in[head]);
      }
    }
    filled_ = filling_ == 0 ? start_.silent : shape_.shared;
    begun_ = true;
    return true;
  }

  // Hands the filled piece to the stages.
  void submit(std::size_t out) {
    const std::size_t slot = slot_of(filling_);
    const std::uint64_t first = made();
    out = static_cast<std::size_t>(
        std::min<std::uint64_t>(out, start_.end - std::min(first, start_.end)));
    const std::uint64_t left_out = start_.given > first ? start_.given - first : 0;
    Slot& filled = slots_[slot];
    filled.gives = static_cast<std::size_t>(out_after(first + out) - out_after(first));
    filled.skips = static_cast<std::size_t>(std::min<std::uint64_t>(left_out, filled.gives));
    begun_ = false;
    stages_.start({slot, filling_++, first, filled.in.data(), out, filled.skips});
  }

  // What the pieces before the one that is filled make, of the stream.
  std::uint64_t made() const { return start_.made + filling_ * shape_.out; }

  // What came out once `made` were made.
  std::uint64_t out_after(std::uint64_t made) const {
    return made > shape_.delay ? made - shape_.delay : 0;
  }

  // At the end: silence until everything is on its way.
  void fill_up() {
    const std::uint64_t to_make = length_ == start_.given ? 0 : length_ + shape_.delay;
    while (ending_ && made() < to_make && begin()) {
      for (std::size_t c = 0; c < shape_.channels; ++c) {
        std::fill_n(filling_place(c), shape_.in - filled_, silence_);
      }
      submit(static_cast<std::size_t>(std::min<std::uint64_t>(shape_.out, to_make - made())));
    }
  }

  // Whether the oldest piece is finished.
  bool finished(bool patient) {
    if (stages_.finished(slot())) return true;
    if (!patient || !(ending_ || full())) return false;
    stages_.wait_for(slot(), full());
    return true;
  }

  // Lets the oldest piece go if it is there for the sake of later ones alone.
  bool pass_over() {
    const Slot& oldest = slots_[slot()];
    if (draining_ == filling_ || oldest.skips == 0 || oldest.skips < oldest.gives) return false;
    if (!stages_.finished(slot())) stages_.wait_for(slot(), true);
    open();
    release();
    return true;
  }

  void open() {
    if (opened_) return;
    stages_.open(slot());
    drained_ = slots_[slot()].skips;
    opened_ = true;
  }

  void release() {
    drained_ = 0;
    opened_ = false;
    ++draining_;
  }

  PieceShape<In> shape_;
  std::uint64_t most_;
  In silence_;
  PieceStages<In>& stages_;
  std::vector<Slot> slots_;

  PieceStart start_;
  std::uint64_t accepted_ = 0;
  std::uint64_t filling_ = 0;  // number of the piece that is filled
  bool begun_ = false;
  std::size_t filled_ = 0;      // elements of it
  std::uint64_t draining_ = 0;  // number of the oldest piece
  bool opened_ = false;
  std::size_t drained_ = 0;  // of what it gives, once it is open
  std::uint64_t given_ = 0;
  bool ending_ = false;
  std::uint64_t length_ = 0;  // once ending_
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_STREAM_PIECE_RING_H_
