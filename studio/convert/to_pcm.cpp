// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/to_pcm.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "studio/convert/joined_sound.h"
#include "studio/convert/read_ahead.h"
#include "studio/decode/decoder.h"
#include "studio/decode/decoder_settings.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kOutputBytes = 1 << 18;

corvin_decoder_settings decoder_settings(const formats::SoundFile& file, const Neighbours& around,
                                         const corvin_convert_settings& settings) {
  corvin_decoder_settings result = default_decoder_settings();
  result.dsd_rate = file.rate_hz;
  result.pcm_rate = settings.pcm_rate;
  result.channels = file.channels;
  result.bit_order = file.lsb_first ? CORVIN_LSB_FIRST : CORVIN_MSB_FIRST;
  result.block_bytes = file.block_bytes;
  result.format = settings.format;
  result.dither = settings.dither;
  result.phase = settings.phase;
  result.threads = settings.threads;
  result.kernel_mask = settings.kernel_mask;
  result.length = file.samples;
  result.seed = settings.seed;
  result.pass_hz = settings.pass_hz;
  result.stop_hz = settings.stop_hz;
  result.gain_db = settings.gain_db;
  result.first_sample = settings.first_sample;
  if (!around.previous.empty()) result.context |= CORVIN_CONTEXT_BEFORE;
  if (!around.next.empty()) result.context |= CORVIN_CONTEXT_BEHIND;
  return result;
}

class Conversion {
 public:
  Conversion(Decoder& decoder, const corvin_convert_settings& settings, const corvin_pcm_sink& sink,
             std::size_t frame_bytes, std::uint32_t channels, std::uint64_t samples)
      : decoder_(decoder),
        settings_(settings),
        sink_(sink),
        channels_(channels),
        samples_(samples),
        frames_(std::max<std::size_t>(1, kOutputBytes / frame_bytes)),
        out_(frames_ * frame_bytes) {}

  /// @param rest  comes behind `input`
  int run(ReadAhead& input, JoinedSound& rest) {
    for (auto block = input.next(); !block.empty(); block = input.next()) {
      bytes_read_ += block.size();
      while (!block.empty()) {
        std::size_t taken = 0;
        decoder_.push(block.data(), block.size(), taken);
        block = block.subspan(taken);
        if (!drain()) return CORVIN_E_WRITE;
      }
      if (!tell_progress()) return CORVIN_E_CANCELLED;
    }
    if (input.failed()) return CORVIN_E_READ;
    while (const std::size_t bytes = rest.next()) {
      bytes_read_ += bytes * channels_;
      if (!push_planar(rest.places(), bytes)) return CORVIN_E_WRITE;
      if (!tell_progress()) return CORVIN_E_CANCELLED;
    }
    if (rest.failed()) return CORVIN_E_READ;
    decoder_.finish();
    return drain() ? CORVIN_OK : CORVIN_E_WRITE;
  }

 private:
  bool push_planar(const std::uint8_t* const* channels, std::size_t bytes) {
    std::vector<const std::uint8_t*> places(channels, channels + channels_);
    while (bytes > 0) {
      std::size_t taken = 0;
      decoder_.push_planar(places.data(), bytes, taken);
      for (const std::uint8_t*& place : places) place += taken;
      bytes -= taken;
      if (!drain()) return false;
    }
    return true;
  }

  // Hands over what is ready; after finish, everything.
  bool drain() {
    while (const std::size_t count = decoder_.pull(out_.data(), frames_)) {
      if (sink_.write(sink_.user, out_.data(), count) != 0) return false;
    }
    return true;
  }

  bool tell_progress() const {
    if (settings_.progress == nullptr) return true;
    // The neighbours count for nothing.
    const std::uint64_t done = std::min(bytes_read_ / channels_ * 8, samples_);
    return settings_.progress(settings_.progress_user, done, samples_) == 0;
  }

  Decoder& decoder_;
  const corvin_convert_settings& settings_;
  const corvin_pcm_sink& sink_;
  std::uint32_t channels_;
  std::uint64_t samples_;
  std::size_t frames_;
  std::vector<std::uint8_t> out_;
  std::uint64_t bytes_read_ = 0;
};

}  // namespace

int convert_to_pcm(formats::SoundReader& source, const Neighbours& neighbours,
                   const corvin_convert_settings& settings, const corvin_pcm_sink& sink,
                   corvin_convert_report& report) {
  const formats::SoundFile& file = source.file();
  // A decoder's length of 0 is no end: the neighbours of nothing would sound.
  const Neighbours around = file.samples == 0 ? Neighbours() : neighbours;
  std::unique_ptr<Decoder> decoder;
  int status = Decoder::create(decoder_settings(file, around, settings), decoder);
  if (status != CORVIN_OK) return status;
  status = seek_with_preroll(*decoder, source, around.previous, settings.first_sample);
  if (status != CORVIN_OK) return status;
  const std::uint64_t frames = decoder->frames_of(settings.first_sample + file.samples) -
                               decoder->frames_of(settings.first_sample);
  const corvin_pcm_format format = {sizeof format, settings.pcm_rate, file.channels,
                                    file.speakers, settings.format,   frames};
  Conversion conversion(*decoder, settings, sink, decoder->frame_bytes(), file.channels,
                        file.samples);
  // Whole blocks as they stand in the file; what pads a last one is not to sound.
  const std::uint64_t whole = file.samples / 8 / file.block_bytes * file.block_bytes;
  JoinedSound rest(rest_and_next(*decoder, source, whole, around.next), file.channels,
                   settings.first_sample, file.lsb_first);
  ReadAhead input(source.source(), {file.sound.offset, whole * file.channels},
                  settings.threads > 0);
  if (sink.begin != nullptr && sink.begin(sink.user, &format) != 0) return CORVIN_E_WRITE;
  const int result = conversion.run(input, rest);
  corvin_decoder_report decoded = {};
  decoder->report(decoded);
  report.frames = decoded.frames;
  report.clips = decoded.clips;
  report.peak = decoded.peak;
  report.gain_db = settings.gain_db;
  return result;
}

}  // namespace corvin::studio
