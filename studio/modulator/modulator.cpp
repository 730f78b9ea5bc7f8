// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Limits the samples, and cuts the stream into the units that the loops take.

#include "studio/modulator/modulator.h"

#include <algorithm>

#include "studio/modulator/input_limiter.h"
#include "studio/modulator/modulator_loop.h"

namespace corvin::studio {

struct Modulator::Stream {
  // Samples before the loop's next one, and samples waiting for it.
  static constexpr std::size_t kHistory = Interpolation::kMaxTaps / 2 - 1;
  static constexpr std::size_t kCapacity = 1024;
  static constexpr std::size_t kSlack = 16;  // loops read whole vectors

  explicit Stream(const ModulatorConfig& config) : channels(config.channels) {
    const int paths = search_paths(config.grade, config.oversampling);
    loop = paths > 1 ? make_search_loop(config, paths) : make_pair_loop(config);
    const ShaperDesign& shaper = shaper_design(config.grade, config.oversampling);
    limiter = {shaper.knee, shaper.ceiling};
  }

  // Takes up to kCapacity samples less those that wait.
  std::size_t take(const double* const* in, std::size_t at, std::size_t samples) {
    const std::size_t count = std::min(samples, kCapacity - waiting);
    for (int c = 0; c < channels; ++c) {
      limiter.run(in[c] + at, count, staged[c] + kHistory + waiting);
    }
    waiting += count;
    return count;
  }

  // Runs the loop over what waits. Returns bytes written.
  std::size_t run(std::uint8_t* const* out) {
    const std::size_t ahead = loop->ahead();
    if (waiting < ahead + loop->unit()) return 0;
    const std::size_t units = (waiting - ahead) / loop->unit();
    const double* const in[2] = {staged[0] + kHistory, staged[1] + kHistory};
    const std::size_t written = loop->run(in, units, out);
    const std::size_t done = units * loop->unit();
    for (int c = 0; c < channels; ++c) {
      std::copy(staged[c] + done, staged[c] + kHistory + waiting, staged[c]);
    }
    waiting -= done;
    return written;
  }

  void reset() {
    loop->reset();
    waiting = 0;
    for (double* channel : staged) std::fill_n(channel, kHistory, 0.0);
  }

  int channels;
  InputLimiter limiter;
  std::unique_ptr<ModulatorLoop> loop;
  std::size_t waiting = 0;
  double staged[2][kHistory + kCapacity + kSlack] = {};
};

Modulator::Modulator(const ModulatorConfig& config) : stream_(std::make_unique<Stream>(config)) {}
Modulator::~Modulator() = default;
Modulator::Modulator(Modulator&&) noexcept = default;
Modulator& Modulator::operator=(Modulator&&) noexcept = default;

std::size_t Modulator::modulate(const double* const* in, std::size_t samples,
                                std::uint8_t* const* out) {
  Stream& stream = *stream_;
  std::size_t written = 0;
  for (std::size_t taken = 0; taken < samples;) {
    taken += stream.take(in, taken, samples - taken);
    std::uint8_t* const place[2] = {out[0] + written,
                                    stream.channels == 2 ? out[1] + written : nullptr};
    written += stream.run(place);
  }
  return written;
}

void Modulator::reset() { stream_->reset(); }

std::uint64_t Modulator::overload_events(int channel) const {
  return stream_->loop->overload_events(channel);
}

}  // namespace corvin::studio
