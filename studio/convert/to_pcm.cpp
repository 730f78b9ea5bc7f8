// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/to_pcm.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "formats/bytes/block_layout.h"
#include "studio/convert/joined_sound.h"
#include "studio/convert/read_ahead.h"
#include "studio/decode/decoder.h"
#include "studio/decode/decoder_settings.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kOutputBytes = 1 << 18;

// The decoder's stretch begins with the file, so that its bytes stand as they do there, and ends with
// ours, so that its tally is ours.
corvin_decoder_settings decoder_settings(const formats::SoundReader& source,
                                         const Neighbours& around, const Stretch& stretch,
                                         const corvin_convert_settings& settings) {
  const formats::SoundFile& file = source.file();
  corvin_decoder_settings result = default_decoder_settings();
  result.dsd_rate = file.rate_hz;
  result.pcm_rate = settings.pcm_rate;
  result.channels = source.channels();
  result.bit_order = file.lsb_first ? CORVIN_LSB_FIRST : CORVIN_MSB_FIRST;
  result.block_bytes = file.block_bytes;
  result.format = settings.format;
  result.dither = settings.dither;
  result.phase = settings.phase;
  result.threads = settings.threads;
  result.kernel_mask = settings.kernel_mask;
  result.length = stretch.end;
  result.seed = settings.seed;
  result.pass_hz = settings.pass_hz;
  result.stop_hz = settings.stop_hz;
  result.gain_db = settings.gain_db;
  result.first_sample = settings.first_sample;
  if (!around.previous.empty()) result.context |= CORVIN_CONTEXT_BEFORE;
  if (!around.next.empty() || stretch.end < file.samples) result.context |= CORVIN_CONTEXT_BEHIND;
  return result;
}

class Conversion {
 public:
  Conversion(Decoder& decoder, const corvin_convert_settings& settings, const corvin_pcm_sink& sink,
             formats::SoundReader& source, const Stretch& stretch)
      : decoder_(decoder),
        settings_(settings),
        sink_(sink),
        source_(source),
        channels_(source.channels()),
        stretch_(stretch),
        layout_{source.file().channels, source.file().block_bytes},
        reached_(stretch.begin / 8),
        frames_(std::max<std::size_t>(1, kOutputBytes / decoder.frame_bytes())),
        out_(frames_ * decoder.frame_bytes()) {}

  /// In the order of the file: the rest of a block, whole blocks, what is behind them.
  int run(JoinedSound& head, ReadAhead& blocks, JoinedSound& rest) {
    int status = run(head);
    if (status == CORVIN_OK) status = run(blocks);
    if (status == CORVIN_OK && !ended_) status = run(rest);
    const bool keeps = status == CORVIN_E_READ && settings_.keep_damaged != 0;
    if (status != CORVIN_OK && !keeps) return status;
    decoder_.finish();
    return drain() ? status : CORVIN_E_WRITE;
  }

  /// The sample before which all is read.
  std::uint64_t reached() const { return 8 * reached_; }

 private:
  int run(ReadAhead& input) {
    const std::uint64_t first = reached_;
    std::uint64_t bytes_read = 0;
    for (auto block = input.next(); !block.empty(); block = input.next()) {
      bytes_read += block.size();
      reached_ = first + layout_.WholeBytes(bytes_read);
      while (!block.empty()) {
        std::size_t taken = 0;
        decoder_.push(block.data(), block.size(), taken);
        block = block.subspan(taken);
        if (!drain()) return CORVIN_E_WRITE;
      }
      if (!tell_progress()) return CORVIN_E_CANCELLED;
    }
    ended_ = input.failed() && source_.EndsEarly();
    return input.failed() && !ended_ ? CORVIN_E_READ : CORVIN_OK;
  }

  int run(JoinedSound& sound) {
    while (const std::size_t bytes = sound.next()) {
      reached_ += bytes;
      if (!push_planar(sound.places(), bytes)) return CORVIN_E_WRITE;
      if (!tell_progress()) return CORVIN_E_CANCELLED;
    }
    return sound.failed() ? CORVIN_E_READ : CORVIN_OK;
  }

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
    // What stands around the stretch counts for nothing.
    return settings_.progress(settings_.progress_user, stretch_.samples_before(reached()),
                              stretch_.samples()) == 0;
  }

  Decoder& decoder_;
  const corvin_convert_settings& settings_;
  const corvin_pcm_sink& sink_;
  formats::SoundReader& source_;
  bool ended_ = false;  // before it should
  std::uint32_t channels_;
  Stretch stretch_;
  formats::BlockLayout layout_;
  std::uint64_t reached_;  // the file's byte of each channel before which all is read
  std::size_t frames_;
  std::vector<std::uint8_t> out_;
};

}  // namespace

int convert_to_pcm(formats::SoundReader& source, const Neighbours& neighbours,
                   const Stretch& stretch, const corvin_convert_settings& settings,
                   const corvin_pcm_sink& sink, corvin_convert_report& report) {
  const formats::SoundFile& file = source.file();
  // A decoder's length of 0 is no end: the neighbours of nothing would sound.
  const Neighbours around = file.samples == 0 ? Neighbours() : neighbours;
  std::unique_ptr<Decoder> decoder;
  int status = Decoder::create(decoder_settings(source, around, stretch, settings), decoder);
  if (status != CORVIN_OK) return status;
  const std::uint64_t place = settings.first_sample + stretch.begin;
  report.missing = missing_samples(stretch, 0, file);
  status = seek_with_preroll(*decoder, source, around.previous, place);
  if (status != CORVIN_OK) return status;
  const std::uint64_t frames =
      decoder->frames_of(settings.first_sample + stretch.end) - decoder->frames_of(place);
  const corvin_pcm_format format = {sizeof format,     settings.pcm_rate, source.channels(),
                                    source.Speakers(), settings.format,   frames};
  Conversion conversion(*decoder, settings, sink, source, stretch);
  // Whole blocks as they stand in the file, when all channels are wanted; what pads a last one is not
  // to sound.
  const std::uint64_t begin = stretch.begin / 8;
  std::uint64_t first = (begin + file.block_bytes - 1) / file.block_bytes * file.block_bytes;
  std::uint64_t whole = stretch.end / 8 / file.block_bytes * file.block_bytes;
  if (source.selects() || first >= whole) first = whole = begin;
  const auto joined = [&](std::vector<SoundPart> parts) {
    return JoinedSound(std::move(parts), source.channels(), settings.first_sample, file.lsb_first);
  };
  JoinedSound head = joined({{&source, 8 * begin, 8 * first}});
  JoinedSound rest = joined(rest_and_next(*decoder, source, whole, stretch.end, around.next));
  ReadAhead blocks(source.source(),
                   {file.sound.offset + first * file.channels, (whole - first) * file.channels},
                   settings.threads > 0);
  if (sink.begin != nullptr && sink.begin(sink.user, &format) != 0) return CORVIN_E_WRITE;
  const int result = conversion.run(head, blocks, rest);
  report.samples = stretch.samples_before(conversion.reached());
  report.missing = missing_samples(stretch, report.samples, file);
  corvin_decoder_report decoded = {};
  decoder->report(decoded);
  report.frames = decoded.frames;
  report.clips = decoded.clips;
  report.peak = decoded.peak;
  report.gain_db = settings.gain_db;
  return result;
}

}  // namespace corvin::studio
