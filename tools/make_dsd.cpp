// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Makes a short DSD file to try the converter on: one sine per channel, 6 dB below the level that
// the decoder returns as full scale. The modulator is a plain second-order one, good enough to tell
// a right conversion from a wrong one; it is not the library's and no measure of quality.
//
//   make_dsd dsf|dsdiff|1bit OUT [SECONDS [RATE [CHANNELS]]]     default: 3 s, 2822400 Hz, 2

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr double kFullScale = 0.5;  // 50 % modulation is 0 dBFS
constexpr double kLevel = 0.5;      // -6.02 dB
constexpr size_t kDsfBlock = 4096;
constexpr uint32_t kMaxChannels = 8;

struct Sound {
  uint32_t rate_hz;
  uint32_t channels;
  size_t samples;                                   // per channel, a multiple of 8
  std::vector<std::vector<uint8_t>> channel_bytes;  // earliest sample in the most significant bit
};

// Bytes of a header, most or least significant first.
class Header {
 public:
  explicit Header(bool big_endian) : big_endian_(big_endian) {}
  Header& id(const char* text) {
    bytes_.insert(bytes_.end(), text, text + 4);
    return *this;
  }
  Header& number(uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
      const int shift = 8 * (big_endian_ ? width - 1 - i : i);
      bytes_.push_back(static_cast<uint8_t>(value >> shift));
    }
    return *this;
  }
  Header& fill(size_t size, uint8_t value) {
    bytes_.resize(size, value);
    return *this;
  }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  bool big_endian_;
  std::vector<uint8_t> bytes_;
};

std::vector<uint8_t> modulate(size_t samples, double cycles_per_sample) {
  std::vector<uint8_t> bytes(samples / 8);
  double first = 0, second = 0, fed_back = 0;
  for (size_t i = 0; i < samples; ++i) {
    const double phase = 2 * std::numbers::pi * cycles_per_sample * static_cast<double>(i);
    first += kFullScale * kLevel * std::sin(phase) - fed_back;
    second += first - fed_back;
    fed_back = second >= 0 ? 1 : -1;
    if (second >= 0) bytes[i / 8] = static_cast<uint8_t>(bytes[i / 8] | 0x80u >> i % 8);
  }
  return bytes;
}

Sound make_sound(double seconds, uint32_t rate_hz, uint32_t channels) {
  Sound sound{rate_hz, channels, static_cast<size_t>(seconds * rate_hz) / 8 * 8, {}};
  // Each channel has its own tone, so that swapped channels are heard and seen.
  for (uint32_t c = 0; c < channels; ++c)
    sound.channel_bytes.push_back(modulate(sound.samples, (1000.0 + 500.0 * c) / rate_hz));
  return sound;
}

void append(std::vector<uint8_t>& to, const std::vector<uint8_t>& what) {
  to.insert(to.end(), what.begin(), what.end());
}

std::vector<uint8_t> interleaved(const Sound& sound) {
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < sound.samples / 8; ++i)
    for (const auto& channel : sound.channel_bytes) bytes.push_back(channel[i]);
  return bytes;
}

// The headers stand as they lie in the files, a field or a chunk a line.
// clang-format off

std::vector<uint8_t> dsf(const Sound& sound) {
  const size_t blocks = (sound.samples / 8 + kDsfBlock - 1) / kDsfBlock;
  const uint64_t payload = blocks * kDsfBlock * sound.channels;
  constexpr uint32_t kTypes[] = {0, 1, 2, 3, 4, 6, 7};  // by channels; none for more than six
  const uint32_t type = sound.channels <= 6 ? kTypes[sound.channels] : 0;
  std::vector<uint8_t> file =
      Header(false)
          .id("DSD ").number(28, 8).number(92 + payload, 8).number(0, 8)
          .id("fmt ").number(52, 8).number(1, 4).number(0, 4)
          .number(type, 4).number(sound.channels, 4)
          .number(sound.rate_hz, 4).number(1, 4).number(sound.samples, 8)
          .number(kDsfBlock, 4).number(0, 4)
          .id("data").number(12 + payload, 8)
          .bytes();
  for (size_t block = 0; block < blocks; ++block)
    for (const auto& channel : sound.channel_bytes)
      for (size_t i = block * kDsfBlock; i < (block + 1) * kDsfBlock; ++i) {
        uint8_t reversed = 0;
        for (int bit = 0; bit < 8 && i < channel.size(); ++bit)
          reversed = static_cast<uint8_t>(reversed | (channel[i] >> (7 - bit) & 1) << bit);
        file.push_back(reversed);
      }
  return file;
}

std::vector<uint8_t> dsdiff(const Sound& sound) {
  const std::vector<uint8_t> data = interleaved(sound);
  Header channels(true);
  channels.id("CHNL").number(2 + 4 * sound.channels, 8).number(sound.channels, 2);
  for (uint32_t c = 0; c < sound.channels; ++c)
    channels.id(c == 0 ? "SLFT" : c == 1 ? "SRGT" : "C003");
  const uint64_t properties = 4 + 16 + channels.bytes().size() + 32;
  const uint64_t form = 4 + 16 + 12 + properties + 12 + data.size();
  std::vector<uint8_t> file = Header(true)
                                  .id("FRM8").number(form, 8).id("DSD ")
                                  .id("FVER").number(4, 8).number(0x01050000, 4)
                                  .id("PROP").number(properties, 8).id("SND ")
                                  .id("FS  ").number(4, 8).number(sound.rate_hz, 4)
                                  .bytes();
  append(file, channels.bytes());
  append(file, Header(true)
                   .id("CMPR").number(20, 8).id("DSD ").number(14, 1)
                   .id("not ").id("comp").id("ress").number(0x656400, 3)  // "ed" and a pad byte
                   .id("DSD ").number(data.size(), 8)
                   .bytes());
  append(file, data);
  return file;
}

std::vector<uint8_t> one_bit(const Sound& sound) {
  const std::vector<uint8_t> data = interleaved(sound);
  const uint64_t file_size = 2048 + data.size();
  std::vector<uint8_t> file = Header(true)
                                  .id("1bit").number(0, 4).number(0x10, 1).number(0, 3)
                                  .number(file_size & 0xffffffff, 4).number(file_size >> 32, 4)
                                  .number(128, 4).number(2048, 4).number(0, 4)
                                  .number(0, 4)  // playing time, left unset
                                  .number(sound.rate_hz, 4).number(0, 4)
                                  .number(sound.channels, 1).number(0, 3)
                                  .number(sound.channels == 1 ? 0x40 : 0x44, 1)
                                  .fill(128, 0).fill(2048, ' ')
                                  .bytes();
  append(file, data);
  return file;
}

// clang-format on

int usage() {
  std::fputs("usage: make_dsd dsf|dsdiff|1bit OUT [SECONDS [RATE [CHANNELS]]]\n", stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 6) return usage();
  const std::string kind = argv[1];
  const double seconds = argc > 3 ? std::atof(argv[3]) : 3;
  const long rate_hz = argc > 4 ? std::atol(argv[4]) : 2822400;
  const long channels = argc > 5 ? std::atol(argv[5]) : 2;
  if (!(seconds >= 0 && seconds <= 3600) || rate_hz < 8000 || rate_hz > 100'000'000 ||
      channels < 1 || channels > static_cast<long>(kMaxChannels))
    return usage();

  const Sound sound =
      make_sound(seconds, static_cast<uint32_t>(rate_hz), static_cast<uint32_t>(channels));
  std::vector<uint8_t> file;
  if (kind == "dsf")
    file = dsf(sound);
  else if (kind == "dsdiff")
    file = dsdiff(sound);
  else if (kind == "1bit")
    file = one_bit(sound);
  else
    return usage();

  std::FILE* out = std::fopen(argv[2], "wb");
  const bool written = out && std::fwrite(file.data(), 1, file.size(), out) == file.size();
  if ((out && std::fclose(out) != 0) || !written) {
    std::fprintf(stderr, "make_dsd: %s: %s\n", argv[2], std::strerror(errno));
    return 4;
  }
  return 0;
}
