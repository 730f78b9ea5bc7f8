// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A PCM stream in, DSD out: lets the frames run through a ring of pieces with the stages of
// encoding, and hands out the bytes in the caller's layout.

#ifndef CORVIN_STUDIO_ENCODE_ENCODER_H_
#define CORVIN_STUDIO_ENCODE_ENCODER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "corvin.h"
#include "studio/encode/encode_chain.h"
#include "studio/encode/encode_stages.h"
#include "studio/stream/block_output.h"
#include "studio/stream/piece_ring.h"

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
  Encoder(const corvin_encoder_settings& settings, EncodeChain chain, const Kernels& kernels);

  template <typename Place>
  std::size_t accept(std::size_t frames, std::size_t stride, Place place);
  void copy(std::size_t channel, std::size_t count, std::uint8_t* out, std::size_t stride) const;

  corvin_encoder_settings settings_;
  EncodeChain chain_;
  double gain_;
  std::uint64_t length_samples_;  // once it is known
  PieceRing<double> ring_;
  BlockOutput blocks_;
  EncodeStages stages_;  // last: its threads end before what they read
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_ENCODE_ENCODER_H_
