// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/pcm/sample_output.h"

#include <algorithm>
#include <cmath>

#include "studio/math/exact_math.h"
#include "studio/pcm/pack.h"
#include "studio/pcm/sample_format.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kChunkFrames = 1024;  // a power of two: see in_chunks()

// One key for each channel and each 2^32 frames.
std::uint32_t dither_key(std::uint64_t seed, std::size_t channel, std::uint64_t frame) {
  std::uint32_t key = mix32(static_cast<std::uint32_t>(seed) ^ 0x9e3779b9u);
  key = mix32(key ^ static_cast<std::uint32_t>(seed >> 32));
  key = mix32(key + static_cast<std::uint32_t>(channel));
  return mix32(key ^ static_cast<std::uint32_t>(frame >> 32));
}

}  // namespace

SampleOutput::SampleOutput(const corvin_quantizer_settings& settings,
                           const QuantiseVariant& quantise)
    : channels_(settings.channels),
      sample_bytes_(studio::sample_bytes(settings.format)),
      floating_(is_floating(settings.format)),
      padding_bits_(static_cast<unsigned>(8 * sample_bytes_) - significant_bits(settings.format)),
      gain_(from_db(settings.gain_db)),
      seed_(settings.seed),
      quantise_(quantise.run),
      shaped_(settings.channels),
      integer_rows_(settings.channels),
      rows_(settings.channels) {
  if (floating_) return;
  const double full = std::ldexp(1.0, static_cast<int>(significant_bits(settings.format)) - 1);
  scale_ = {full * gain_, -full, full - 1, settings.dither != CORVIN_DITHER_NONE};
  if (settings.dither == CORVIN_DITHER_SHAPED) shaper_.emplace(settings.pcm_rate);
  integers_ = AlignedArray<std::int32_t>(channels_ * kChunkFrames);
  for (std::size_t c = 0; c < channels_; ++c) integer_rows_[c] = &integers_[c * kChunkFrames];
}

void SampleOutput::reset() { std::fill(shaped_.begin(), shaped_.end(), DitherShaper::State{}); }

void SampleOutput::quantise(const double* const* in, std::uint64_t first, std::size_t count,
                            QuantiseTally& tally) {
  const auto index = static_cast<std::uint32_t>(first);
  if (first % kShapedFrames == 0) reset();
  for (std::size_t c = 0; c < channels_; ++c) {
    const std::uint32_t key = dither_key(seed_, c, first);
    std::int32_t* out = &integers_[c * kChunkFrames];
    if (shaper_) {
      shaper_->run(in[c], count, scale_, key, index, out, tally, shaped_[c]);
    } else {
      quantise_(in[c], count, scale_, key, index, out, tally);
    }
    for (std::size_t i = 0; padding_bits_ != 0 && i < count; ++i) out[i] <<= padding_bits_;
  }
}

void SampleOutput::write_chunk(const double* const* in, std::uint64_t first, std::size_t count,
                               std::uint8_t* out, QuantiseTally& tally) {
  const auto bytes = static_cast<unsigned>(sample_bytes_);
  if (!floating_) {
    quantise(in, first, count, tally);
    return pack_integers(integer_rows_.data(), channels_, count, bytes, out);
  }
  for (std::size_t c = 0; c < channels_; ++c) {
    for (std::size_t i = 0; i < count; ++i) tally.peak = std::max(tally.peak, std::fabs(in[c][i]));
  }
  pack_floats(in, channels_, count, gain_, bytes, out);
}

// Cuts rows into what the scratch memory holds: chunk(first, count), of rows_.
template <typename Chunk>
void SampleOutput::in_chunks(const double* const* in, std::uint64_t first, std::size_t count,
                             Chunk chunk) {
  std::copy(in, in + channels_, rows_.begin());
  while (count > 0) {
    // Chunks end on multiples of their size, so none crosses a multiple of 2^32 frames or one at
    // which shaping begins anew.
    const std::size_t part =
        std::min(count, kChunkFrames - static_cast<std::size_t>(first % kChunkFrames));
    chunk(first, part);
    for (const double*& row : rows_) row += part;
    first += part;
    count -= part;
  }
}

void SampleOutput::write(const double* const* in, std::uint64_t first, std::size_t count,
                         std::uint8_t* out, QuantiseTally& tally) {
  in_chunks(in, first, count, [&](std::uint64_t at, std::size_t part) {
    write_chunk(rows_.data(), at, part, out, tally);
    out += part * frame_bytes();
  });
}

void SampleOutput::pass_over(const double* const* in, std::uint64_t first, std::size_t count) {
  QuantiseTally uncounted;
  in_chunks(in, first, count, [&](std::uint64_t at, std::size_t part) {
    quantise(rows_.data(), at, part, uncounted);
  });
}

}  // namespace corvin::studio
