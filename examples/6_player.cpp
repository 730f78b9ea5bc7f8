// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A player: from file to file without a gap, or into the middle of one. In place of a sound card OUT
// takes the sound, floats of 88200 Hz:  6_player OUT [+MILLISECONDS] FILE [[+MILLISECONDS] FILE]...

#include <corvin.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>

void drain(corvin::Decoder& decoder, std::size_t channels, std::FILE* card) {
  std::vector<float> pcm(1024 * channels);
  while (const std::size_t frames = decoder.pull(pcm.data(), 1024)) {
    if (std::fwrite(pcm.data(), sizeof(float) * channels, frames, card) != frames)
      throw corvin::Error(CORVIN_E_WRITE);
  }
}

// From where the file stands to its end. The decoder takes file after file as one stream; where a
// DSF file ends within a byte, up to seven samples of silence fill that up.
void play(corvin::File& file, corvin::Decoder& decoder, std::size_t channels, std::FILE* card) {
  std::vector<std::uint8_t> dsd(4096 * channels);
  while (const std::size_t bytes = file.read(dsd.data(), 4096)) {
    std::span<const std::uint8_t> left(dsd.data(), bytes * channels);
    while (!left.empty()) {
      left = left.subspan(decoder.push(left));
      drain(decoder, channels, card);
    }
  }
}

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: 6_player OUT [+MILLISECONDS] FILE...\n");
    return 2;
  }
  const char* at_work = argv[1];  // for messages
  try {
    std::unique_ptr<corvin::Decoder> decoder;
    corvin::DecoderSettings settings;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> card(nullptr, std::fclose);
    for (int i = 2; i < argc; ++i) {
      const char* place = argv[i][0] == '+' && i + 1 < argc ? argv[i++] : nullptr;
      at_work = argv[i];
      corvin::File file(at_work);
      const corvin_file_info info = file.info();
      corvin::check(info.readable);
      if (decoder == nullptr) {
        settings.dsd_rate = info.dsd_rate;
        settings.channels = info.channels;
        settings.pcm_rate = 88200;
        settings.format = CORVIN_F32;
        settings.low_latency = 1;  // at once what can be heard
        decoder = std::make_unique<corvin::Decoder>(settings);
        card.reset(std::fopen(argv[1], "wb"));
        if (card == nullptr) throw corvin::Error(CORVIN_E_WRITE);
      }
      if (info.dsd_rate != settings.dsd_rate || info.channels != settings.channels)
        throw corvin::Error(CORVIN_E_UNSUPPORTED);  // a card would have to be set anew
      if (place != nullptr)  // what is not heard yet of the file before is dropped
        file.seek_decoder(*decoder, std::strtoull(place, nullptr, 10) * info.dsd_rate / 1000);
      play(file, *decoder, info.channels, card.get());
    }
    decoder->finish();
    drain(*decoder, settings.channels, card.get());
    if (std::fclose(card.release()) != 0) throw corvin::Error(CORVIN_E_WRITE);
    return 0;
  } catch (const corvin::Error& error) {
    std::fprintf(stderr, "%s: %s\n", error.status() == CORVIN_E_WRITE ? argv[1] : at_work,
                 error.what());
    return 1;
  }
}
