// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A DSD file to bare PCM, 24-bit little-endian and interleaved, with a progress line:
//   2_to_pcm FILE OUT RATE

#include <corvin.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: 2_to_pcm FILE OUT RATE\n");
    return 2;
  }
  try {
    corvin::File file(argv[1]);
    corvin::ConvertSettings settings;  // 24 bits with dither, unless changed
    settings.pcm_rate = static_cast<std::uint32_t>(std::strtoul(argv[3], nullptr, 10));
    settings.threads = 2;

    // Made when the conversion is sure to begin: a failure before leaves an older file alone.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(nullptr, std::fclose);
    std::size_t frame_bytes = 0;
    const corvin::PcmSink sink = {.begin =
                                      [&](const corvin_pcm_format& format) {
                                        frame_bytes = 3 * format.channels;
                                        out.reset(std::fopen(argv[2], "wb"));
                                        return out != nullptr;
                                      },
                                  .write =
                                      [&](const void* frames, std::size_t count) {
                                        return std::fwrite(frames, frame_bytes, count, out.get()) ==
                                               count;
                                      }};
    const auto report =
        corvin::convert_to_pcm(file, sink, settings, [](std::uint64_t done, std::uint64_t total) {
          std::fprintf(stderr, "\r%3d %%", total != 0 ? static_cast<int>(100 * done / total) : 100);
          return true;  // false would cancel
        });
    std::fputc('\n', stderr);
    if (std::fclose(out.release()) != 0) throw corvin::Error(CORVIN_E_WRITE);
    std::printf("%llu frames, peak %.2f, %llu samples clipped\n",
                static_cast<unsigned long long>(report.frames), report.peak,
                static_cast<unsigned long long>(report.clips));
    return 0;
  } catch (const corvin::Error& error) {
    std::fprintf(stderr, "%s: %s\n", error.status() == CORVIN_E_WRITE ? argv[2] : argv[1],
                 error.what());
    return 1;
  }
}
