// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/engine_response.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <span>

#include "cli/measure/real_fft.h"

namespace corvin::cli {
namespace {

constexpr uint8_t kSilence = 0x69;
constexpr double kTwoPi = 2 * std::numbers::pi;
constexpr double kTenthsOfPass[] = {0.02, 1, 2.5, 5, 7.5, 9, 10};

double db_of(double ratio) { return 20 * std::log10(std::max(ratio, 1e-15)); }

// All frames of interleaved bytes, each channel's silence in the end left out.
std::vector<double> decode(const DecoderSettings& settings, std::span<const uint8_t> bytes) {
  Decoder decoder(settings);
  std::vector<double> out, frames(size_t{1 << 14} * settings.channels);
  const auto pull = [&] {
    while (const size_t got = decoder.pull(frames.data(), frames.size() / settings.channels))
      out.insert(out.end(), frames.begin(),
                 frames.begin() + static_cast<ptrdiff_t>(got * settings.channels));
  };
  while (!bytes.empty()) {
    bytes = bytes.subspan(decoder.push(bytes));
    pull();
  }
  decoder.finish();
  pull();
  return out;
}

std::vector<uint8_t> encode(const EncoderSettings& settings, std::span<const double> frames) {
  Encoder encoder(settings);
  std::vector<uint8_t> out, bytes(1 << 16);
  const auto pull = [&] {
    while (const size_t got = encoder.pull(bytes))
      out.insert(out.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(got));
  };
  while (!frames.empty()) {
    const size_t taken = encoder.push(frames.data(), frames.size() / settings.channels);
    frames = frames.subspan(taken * settings.channels);
    pull();
  }
  encoder.finish();
  pull();
  return out;
}

// ---- DSD to PCM -----------------------------------------------------------------------------

// A response in time, at a rate above the PCM's, which stands in the middle.
struct Impulse {
  std::vector<double> samples;
  double rate_hz = 0;
  size_t centre = 0;  // the sample of the event itself
};

Impulse impulse_of(const DecoderSettings& settings) {
  const uint64_t divisor = std::gcd(settings.dsd_rate, settings.pcm_rate);
  const uint64_t up = settings.dsd_rate / divisor, down = settings.pcm_rate / divisor;
  // Bits stand at so many places between two frames.
  uint64_t places = 32;
  while (up % places != 0) --places;
  const uint64_t reach = 8 * Decoder(settings).preroll();
  const uint64_t apart = (2 * reach / up + 1) * up + up / places;
  const uint64_t first = (reach / up + 1) * up;

  std::vector<uint8_t> bytes((first + places * apart) / 8 + 1, kSilence);
  const std::vector<double> silent = decode(settings, bytes);
  for (uint64_t i = 0; i < places; ++i) {
    const uint64_t bit = first + i * apart;
    bytes[bit / 8] ^= static_cast<uint8_t>(0x80 >> bit % 8);
  }
  const std::vector<double> flipped = decode(settings, bytes);

  Impulse impulse{.samples = {},
                  .rate_hz = static_cast<double>(settings.pcm_rate) * static_cast<double>(places),
                  .centre = reach * places * down / up};
  impulse.samples.resize(2 * impulse.centre + 1);
  for (uint64_t i = 0; i < places; ++i) {
    const uint64_t bit = first + i * apart;
    // Which of silence's bits are ones is known; a flip is two up or two down.
    const double sign = (kSilence & 0x80 >> bit % 8) != 0 ? -1 : 1;
    const uint64_t begin = (bit - reach) * down / up + 1;
    for (uint64_t frame = begin; frame < std::min(flipped.size(), silent.size()); ++frame) {
      const uint64_t place = frame * places + impulse.centre - down * (bit * places / up);
      if (place >= impulse.samples.size()) break;
      impulse.samples[place] = sign * (flipped[frame] - silent[frame]);
    }
  }
  return impulse;
}

// ---- PCM to DSD -----------------------------------------------------------------------------

// Hann's window: what stands a few bins off does not count.
double window(size_t i, size_t length) {
  return 1 - std::cos(kTwoPi * static_cast<double>(i) / static_cast<double>(length));
}

// A tone's share in bits, as what it is multiplied by.
std::complex<double> tone_in(std::span<const uint8_t> bytes, double cycles) {
  const size_t length = 8 * bytes.size();
  std::complex<double> sum = 0;
  // Turned on from byte to byte; within one the steps are few.
  const double step = kTwoPi * cycles / static_cast<double>(length);
  for (size_t byte = 0; byte < bytes.size(); ++byte)
    for (size_t k = 0; k < 8; ++k) {
      const size_t i = 8 * byte + k;
      const double sample = (bytes[byte] & 0x80 >> k) != 0 ? 1 : -1;
      sum += window(i, length) * sample * std::polar(1.0, -step * static_cast<double>(i));
    }
  return 2.0 * sum / static_cast<double>(length);
}

template <class Convert>
double speed(double seconds, Convert convert) {
  using Clock = std::chrono::steady_clock;
  double best = 0;
  // The best of several: whatever else the machine does only slows it down.
  for (int i = 0; i < 3; ++i) {
    const auto begun = Clock::now();
    convert();
    const std::chrono::duration<double> took = Clock::now() - begun;
    best = std::max(best, seconds / std::max(took.count(), 1e-9));
  }
  return best;
}

}  // namespace

EngineResponse response_of(const DecoderSettings& given, const BandEdges& edges) {
  DecoderSettings settings = given;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  Impulse impulse = impulse_of(settings);
  const double sum = std::accumulate(impulse.samples.begin(), impulse.samples.end(), 0.0);
  double moment = 0;
  for (size_t i = 0; i < impulse.samples.size(); ++i)
    moment += (static_cast<double>(i) - static_cast<double>(impulse.centre)) * impulse.samples[i];
  EngineResponse response{.delay_s = moment / sum / impulse.rate_hz};

  RealFft fft(std::bit_ceil(impulse.samples.size()));
  impulse.samples.resize(fft.length());
  const auto bins = fft.run(impulse.samples);
  const double bin_hz = impulse.rate_hz / static_cast<double>(fft.length());
  double highest = 0;
  for (size_t i = 0; i < bins.size(); ++i) {
    const double hz = bin_hz * static_cast<double>(i), ratio = std::abs(bins[i]) / std::abs(sum);
    if (hz <= edges.pass_hz)
      response.ripple_db = std::max(response.ripple_db, std::abs(db_of(ratio)));
    if (hz >= edges.stop_hz) highest = std::max(highest, ratio);
  }
  if (edges.stop_hz < impulse.rate_hz / 2) response.stop_db = db_of(highest);
  const auto add = [&](double hz) {
    const auto bin = static_cast<size_t>(std::lround(hz / bin_hz));
    if (bin < bins.size())
      response.points.push_back({.hz = hz, .db = db_of(std::abs(bins[bin]) / std::abs(sum))});
  };
  for (const double tenths : kTenthsOfPass) add(tenths / 10 * edges.pass_hz);
  for (int quarter = 1; quarter <= 4; ++quarter)
    add(edges.pass_hz + quarter / 4.0 * (edges.stop_hz - edges.pass_hz));
  return response;
}

EngineResponse response_of(const EncoderSettings& given, const BandEdges& edges) {
  EncoderSettings settings = given;
  settings.channels = 1;
  settings.format = CORVIN_F64;
  settings.gain_db = 0;
  constexpr size_t bytes_read = 1 << 16;
  const double bin_hz = settings.dsd_rate / (8.0 * static_cast<double>(bytes_read));
  const double margin_s = 0.15;  // until all filters hear the tones, on either side
  const double seconds = 2 * margin_s + 1 / bin_hz;

  struct Tone {
    double cycles, amplitude;
  };
  std::vector<Tone> tones;
  for (const double tenths : kTenthsOfPass)
    tones.push_back({std::max(4.0, std::floor(tenths / 10 * edges.pass_hz / bin_hz)), 0.05});
  std::vector<double> frames(static_cast<size_t>(seconds * settings.pcm_rate));
  for (const Tone& tone : tones)
    for (size_t i = 0; i < frames.size(); ++i)
      frames[i] += tone.amplitude * std::cos(kTwoPi * tone.cycles * bin_hz *
                                             static_cast<double>(i) / settings.pcm_rate);
  const std::vector<uint8_t> bits = encode(settings, frames);
  const auto begin = static_cast<size_t>(margin_s * settings.dsd_rate / 8);
  const auto stretch = std::span(bits).subspan(begin, bytes_read);

  EngineResponse response;
  for (const Tone& tone : tones) {
    // Full scale becomes half of full modulation.
    const std::complex<double> found = tone_in(stretch, tone.cycles) / (0.5 * tone.amplitude);
    const double hz = tone.cycles * bin_hz;
    response.points.push_back({.hz = hz, .db = db_of(std::abs(found))});
    response.ripple_db = std::max(response.ripple_db, std::abs(response.points.back().db));
    if (&tone != &tones.front()) continue;
    const double at_begin = kTwoPi * hz * 8 * static_cast<double>(begin) / settings.dsd_rate;
    response.delay_s = -std::remainder(std::arg(found) - at_begin, kTwoPi) / (kTwoPi * hz);
  }
  return response;
}

double speed_of(DecoderSettings settings) {
  settings.channels = 2;
  settings.threads = 0;
  constexpr double kSeconds = 2;
  const auto bytes = static_cast<size_t>(kSeconds * settings.dsd_rate / 8) * settings.channels;
  const std::vector<uint8_t> silence(bytes, kSilence);
  settings.format = CORVIN_F64;
  return speed(kSeconds, [&] { decode(settings, silence); });
}

double speed_of(EncoderSettings settings) {
  settings.channels = 2;
  settings.threads = 0;
  settings.format = CORVIN_F64;
  constexpr double kSeconds = 0.5;
  std::vector<double> frames(static_cast<size_t>(kSeconds * settings.pcm_rate) * settings.channels);
  for (size_t i = 0; i < frames.size(); ++i)
    frames[i] = 0.25 * std::sin(kTwoPi * 440 * static_cast<double>(i / 2) / settings.pcm_rate);
  return speed(kSeconds, [&] { encode(settings, frames); });
}

}  // namespace corvin::cli
