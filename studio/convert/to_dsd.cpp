// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/convert/to_dsd.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "formats/bytes/bit_order.h"
#include "studio/convert/encoding.h"
#include "studio/convert/to_pcm.h"
#include "studio/encode/encoder.h"
#include "studio/pcm/sample_format.h"
#include "studio/plan/pass_band.h"
#include "studio/plan/rate_family.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kBufferBytes = 1 << 18;

// The frames of all sources; 0 when one does not know.
std::uint64_t total_frames(std::span<const corvin_pcm_source> sources) {
  std::uint64_t total = 0;
  for (const corvin_pcm_source& source : sources) {
    if (source.frames == 0) return 0;
    total += source.frames;
  }
  return total;
}

// Reads one source after the other and calls at_end() behind each.
template <typename AtEnd>
int read_all(std::span<const corvin_pcm_source> sources, std::size_t frame_bytes,
             const corvin_convert_settings& settings, Encoding& encoding, AtEnd at_end) {
  const std::uint64_t total = total_frames(sources);
  const std::size_t frames = std::max<std::size_t>(1, kBufferBytes / frame_bytes);
  std::vector<std::uint8_t> buffer(frames * frame_bytes);
  for (const corvin_pcm_source& source : sources) {
    for (;;) {
      const std::int64_t got = source.read(source.user, buffer.data(), frames);
      if (got < 0 || static_cast<std::uint64_t>(got) > frames) return CORVIN_E_READ;
      if (got == 0) break;
      const int status = encoding.push(buffer.data(), static_cast<std::size_t>(got));
      if (status != CORVIN_OK) return status;
      if (settings.progress != nullptr &&
          settings.progress(settings.progress_user, encoding.frames(), total) != 0) {
        return CORVIN_E_CANCELLED;
      }
    }
    at_end();
  }
  return encoding.finish();
}

/// The PCM rate between two DSD rates, of the source's family.
std::uint32_t rate_between(const RateFamily& source, const RateFamily& target) {
  return source.base << std::min(source.doublings, target.doublings) >> 5;
}

}  // namespace

int convert_to_dsd(std::span<const corvin_pcm_source> sources,
                   std::span<formats::SoundWriter* const> targets, TrackCuts::Finish finish,
                   const corvin_convert_settings& settings, corvin_convert_report& report) {
  const corvin_pcm_source& pcm = sources[0];
  const formats::SoundFormat& format = targets[0]->format();
  corvin_encoder_settings encoding_settings =
      encoder_settings(pcm.pcm_rate, pcm.format, format, settings);
  encoding_settings.pass_hz = settings.pass_hz;
  encoding_settings.stop_hz = settings.stop_hz;
  std::unique_ptr<Encoder> encoder;
  const int status = Encoder::create(encoding_settings, encoder);
  if (status != CORVIN_OK) return status;
  TrackCuts cuts(targets, std::move(finish));
  const std::size_t frame_bytes = sample_bytes(pcm.format) * format.channels;
  Encoding encoding(
      *encoder, format.channels, frame_bytes,
      [&](const std::uint8_t* const* bytes, std::size_t count) { return cuts.take(bytes, count); });
  int result = read_all(sources, frame_bytes, settings, encoding,
                        [&] { cuts.cut(encoder->samples_of(encoding.frames())); });
  if (result == CORVIN_OK) result = cuts.end();
  encoding.tell(report);
  report.gain_db = settings.gain_db;
  return result;
}

int convert_dsd_rate(formats::SoundReader& source, const Stretch& stretch,
                     formats::SoundWriter& target, const corvin_convert_settings& settings,
                     corvin_convert_report& report) {
  const formats::SoundFile& file = source.file();
  const auto from = dsd_family(file.rate_hz);
  const formats::SoundFormat& format = target.format();
  const auto to = dsd_family(format.rate_hz);
  if (!from || !to) return CORVIN_E_UNSUPPORTED;

  // The gain belongs to the encoder, the level of which the report tells.
  corvin_convert_settings decoding = settings;
  decoding.pcm_rate = rate_between(*from, *to);
  decoding.format = CORVIN_F64;
  decoding.gain_db = 0;
  // A place in a whole where the stretch begins with a frame.
  const std::uint64_t frame = file.rate_hz / std::gcd(file.rate_hz, decoding.pcm_rate);
  decoding.first_sample = (frame - stretch.begin % frame) % frame;
  if (decoding.pass_hz == 0 && decoding.stop_hz == 0) {
    // The source's noise is of no use to anybody, the target's modulator least of all.
    const PassBand band = sound_band(*from, decoding.pcm_rate / 2.0);
    decoding.pass_hz = band.pass_hz;
    decoding.stop_hz = band.stop_hz;
  }

  std::unique_ptr<Encoder> encoder;
  const int status =
      Encoder::create(encoder_settings(decoding.pcm_rate, CORVIN_F64, format, settings), encoder);
  if (status != CORVIN_OK) return status;
  std::uint64_t samples = samples_of(stretch.samples(), file.rate_hz, format.rate_hz);
  const auto take = [&](const std::uint8_t* const* bytes, std::size_t count) {
    // What follows the last sample is dropped.
    const auto wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(count, formats::BytesOf(samples) - target.channel_bytes()));
    return target.Write(bytes, 1, wanted, false) ? CORVIN_OK : CORVIN_E_WRITE;
  };
  Encoding encoding(*encoder, format.channels, sizeof(double) * format.channels, take);

  corvin_pcm_sink sink = {};
  sink.size = sizeof sink;
  sink.user = &encoding;
  sink.write = [](void* user, const void* frames, std::size_t count) {
    return static_cast<Encoding*>(user)->push(frames, count) == CORVIN_OK ? 0 : 1;
  };
  int result = convert_to_pcm(source, {}, stretch, decoding, sink, report);
  if (result == CORVIN_OK || (result == CORVIN_E_READ && settings.keep_damaged != 0)) {
    samples = samples_of(report.samples, file.rate_hz, format.rate_hz);
    // The PCM ends with the last whole frame, which may lie before the last sample.
    const std::vector<double> silence(format.channels);
    int ended = CORVIN_OK;
    while (ended == CORVIN_OK && encoder->samples_of(encoding.frames()) < samples) {
      ended = encoding.push(silence.data(), 1);
    }
    if (ended == CORVIN_OK) ended = encoding.finish();
    if (ended != CORVIN_OK) result = ended;
  }
  encoding.tell(report);
  report.samples = std::min(report.samples, samples);
  report.gain_db = settings.gain_db;
  return result;
}

}  // namespace corvin::studio
