// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// An encoder within a conversion: takes PCM of any amount and passes on what comes out of it, each
// channel's bytes alone. Where the PCM is from and the bytes go is the conversion's business.

#ifndef CORVIN_STUDIO_CONVERT_ENCODING_H_
#define CORVIN_STUDIO_CONVERT_ENCODING_H_

#include <cstddef>
#include <cstdint>
#include <functional>

#include "corvin.h"
#include "formats/sound_writer.h"
#include "studio/convert/channel_bytes.h"
#include "studio/encode/encoder.h"

namespace corvin::studio {

/// Of an encoder of PCM for a file of the format `target`.
corvin_encoder_settings encoder_settings(std::uint32_t pcm_rate, std::uint32_t format,
                                         const formats::SoundFormat& target,
                                         const corvin_convert_settings& settings);

class Encoding {
 public:
  /// Takes `bytes` bytes of each channel, earliest sample in the most significant bit. Returns a
  /// corvin_status; another one than CORVIN_OK ends the conversion.
  using Take = std::function<int(const std::uint8_t* const* channels, std::size_t bytes)>;

  /// `encoder`, of interleaved frames of `frame_bytes` bytes, outlives this.
  Encoding(Encoder& encoder, std::size_t channels, std::size_t frame_bytes, Take take);

  // Both return what `take` ended with.
  int push(const void* data, std::size_t frames);
  int finish();

  std::uint64_t frames() const { return frames_; }  ///< pushed

  void tell(corvin_convert_report& report) const;

 private:
  int drain();

  Encoder& encoder_;
  std::size_t frame_bytes_;
  std::uint64_t frames_ = 0;
  Take take_;
  ChannelBytes out_;
};

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_CONVERT_ENCODING_H_
