// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Makes a short WAV file to try the converter on: one sine of -6.02 dBFS per channel, 1000 Hz and
// 500 Hz more for each further channel, so that swapped channels are heard and seen.
//
//   make_wav OUT [SECONDS [RATE [CHANNELS [BITS]]]]     default: 3 s, 44100 Hz, 2, 16

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <string>

namespace {

constexpr double kLevel = 0.5;

void put(std::string& file, uint32_t value, long bytes) {
  for (long i = 0; i < bytes; ++i) file += static_cast<char>(value >> 8 * i);
}

std::string make_wav(uint32_t frames, uint32_t rate_hz, uint32_t channels, long bits) {
  const uint32_t frame_bytes = channels * static_cast<uint32_t>(bits / 8);
  std::string file = "RIFF";
  put(file, 36 + frames * frame_bytes, 4);
  file += "WAVEfmt ";
  put(file, 16, 4);
  put(file, 1, 2);  // integers
  put(file, channels, 2);
  put(file, rate_hz, 4);
  put(file, rate_hz * frame_bytes, 4);
  put(file, frame_bytes, 2);
  put(file, static_cast<uint32_t>(bits), 2);
  file += "data";
  put(file, frames * frame_bytes, 4);
  const double amplitude = kLevel * std::ldexp(1.0, static_cast<int>(bits) - 1);
  for (uint32_t i = 0; i < frames; ++i)
    for (uint32_t c = 0; c < channels; ++c) {
      const double cycles = (1000.0 + 500.0 * c) * i / rate_hz;
      const double value = amplitude * std::sin(2 * std::numbers::pi * cycles);
      put(file, static_cast<uint32_t>(std::llround(value)), bits / 8);
    }
  return file;
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 2 ? std::atof(argv[2]) : 3;
  const long rate_hz = argc > 3 ? std::atol(argv[3]) : 44100;
  const long channels = argc > 4 ? std::atol(argv[4]) : 2;
  const long bits = argc > 5 ? std::atol(argv[5]) : 16;
  if (argc < 2 || argc > 6 || !(seconds >= 0 && seconds <= 60) || rate_hz < 8000 ||
      rate_hz > 768000 || channels < 1 || channels > 9 ||
      (bits != 16 && bits != 24 && bits != 32)) {
    std::fputs("usage: make_wav OUT [SECONDS [RATE [CHANNELS [BITS]]]]\n", stderr);
    return 2;
  }
  const std::string file =
      make_wav(static_cast<uint32_t>(seconds * static_cast<double>(rate_hz)),
               static_cast<uint32_t>(rate_hz), static_cast<uint32_t>(channels), bits);
  std::FILE* out = std::fopen(argv[1], "wb");
  const bool written = out && std::fwrite(file.data(), 1, file.size(), out) == file.size();
  if ((out && std::fclose(out) != 0) || !written) {
    std::fprintf(stderr, "make_wav: %s: %s\n", argv[1], std::strerror(errno));
    return 4;
  }
  return 0;
}
