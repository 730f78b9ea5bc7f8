// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

// A host in C++: a second of DSD silence through the studio engine's wrapper.

#include <corvin.hpp>
#include <iostream>
#include <vector>

int main() {
  corvin::DecoderSettings settings;
  settings.channels = 1;
  corvin::Decoder decoder(settings);
  const std::vector<std::uint8_t> silence(settings.dsd_rate / 8, 0x69);
  std::vector<std::uint8_t> pcm(3 * settings.pcm_rate);
  std::size_t pushed = 0;
  std::size_t frames = 0;
  while (pushed < silence.size()) {
    pushed += decoder.push(std::span(silence).subspan(pushed));
    frames += decoder.pull(pcm.data(), settings.pcm_rate);
  }
  decoder.finish();
  while (const std::size_t more = decoder.pull(pcm.data(), settings.pcm_rate)) frames += more;
  std::cout << frames << " frames\n";
}
