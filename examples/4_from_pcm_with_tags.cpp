// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Bare PCM from standard input, 16-bit little-endian stereo of 44100 Hz, to a DSF file of DSD64 with
// a title and a cover:
//   4_from_pcm_with_tags OUT TITLE COVER.jpg

#include <corvin.hpp>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: 4_from_pcm_with_tags OUT TITLE COVER.jpg\n");
    return 2;
  }
  std::ifstream cover(argv[3], std::ios::binary);
  const std::string picture((std::istreambuf_iterator<char>(cover)), {});
  if (!cover.is_open() || cover.bad()) {
    std::fprintf(stderr, "%s: cannot be read\n", argv[3]);
    return 1;
  }
  try {
    corvin::Tags tags;
    corvin::set_text(tags.title, argv[2]);
    corvin::set_text(tags.genre, "Classical");
    tags.add_picture(3, "image/jpeg", std::as_bytes(std::span(picture)));

    // The file takes its name when it is complete; until then an older one stays as it is.
    corvin::Writer writer(argv[1], corvin::WriterSettings());
    writer.set_tags(tags);
    const corvin::PcmSource source = {
        .format = CORVIN_S16, .read = [](void* frames, std::size_t count) {
          const std::size_t got = std::fread(frames, 4, count, stdin);
          return std::ferror(stdin) != 0 ? std::int64_t{-1} : static_cast<std::int64_t>(got);
        }};
    corvin::ConvertSettings settings;
    settings.modulator = CORVIN_MODULATOR_HIGH;
    const auto report = corvin::convert_to_dsd(source, writer, settings);
    std::printf("%llu frames became %llu samples, peak %.2f\n",
                static_cast<unsigned long long>(report.frames),
                static_cast<unsigned long long>(report.samples), report.peak);
    return 0;
  } catch (const corvin::Error& error) {
    std::fprintf(stderr, "%s: %s\n", error.status() == CORVIN_E_READ ? "standard input" : argv[1],
                 error.what());
    return 1;
  }
}
