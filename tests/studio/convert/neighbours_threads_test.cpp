// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Files that are parts of a whole: converted one by one with their neighbours, or entered in their
// middle, they make what the whole makes, bit for bit.

#include <gtest/gtest.h>

#include <deque>
#include <utility>

#include "tests/support/dsd_files.h"
#include "tests/support/sound_files.h"

namespace corvin::studio {
namespace {

constexpr std::size_t kDsfBlock = 4096;

// What stands behind the last sample of a DSF file becomes ones, which would be heard.
void pad_with_ones(Bytes& dsf, std::size_t channels, std::uint64_t samples) {
  if (samples % (8 * kDsfBlock) == 0) return;
  const std::size_t used = samples % (8 * kDsfBlock);
  for (std::size_t c = 0; c < channels; ++c) {
    std::uint8_t* block = dsf.data() + dsf.size() - (channels - c) * kDsfBlock;
    std::fill(block + (used + 7) / 8, block + kDsfBlock, std::uint8_t{0xff});
    if (used % 8 != 0)
      block[used / 8] = static_cast<std::uint8_t>(block[used / 8] | 0xff << used % 8);
  }
}

// Samples of every channel, one behind the other; a stretch of them can be had as a file.
class Sound {
 public:
  Sound(std::size_t channels, std::uint64_t samples, Random& random) : channels_(channels) {
    for (std::size_t i = 0; i < samples * channels; ++i) bits_.push_back((random() & 1) != 0);
  }

  void append(const Sound& other) {
    bits_.insert(bits_.end(), other.bits_.begin(), other.bits_.end());
  }

  std::uint64_t samples() const { return bits_.size() / channels_; }

  Bytes file(corvin_container container, std::uint32_t rate) const {
    Bytes sound((samples() + 7) / 8 * channels_);
    for (std::size_t i = 0; i < bits_.size(); ++i) {
      const std::size_t sample = i / channels_;
      std::uint8_t& byte = sound[sample / 8 * channels_ + i % channels_];
      if (bits_[i]) byte = static_cast<std::uint8_t>(byte | 0x80 >> sample % 8);
    }
    Bytes file = file_of(writer_settings(container, static_cast<std::uint32_t>(channels_), rate),
                         sound, samples());
    if (container == CORVIN_DSF) pad_with_ones(file, channels_, samples());
    return file;
  }

 private:
  std::size_t channels_;
  std::vector<bool> bits_;
};

struct Output {
  Bytes bytes;
  std::uint64_t announced = 0;
  bool begun = false;
};

Output converted(File& file, const ConvertSettings& settings, int expected = CORVIN_OK) {
  Output out;
  std::size_t width = 0;
  const PcmSink sink = {.begin =
                            [&](const corvin_pcm_format& format) {
                              out.begun = true;
                              out.announced = format.frames;
                              width = format.channels * std::size_t{4};
                              if (format.format == CORVIN_S16) width /= 2;
                              if (format.format == CORVIN_F64) width *= 2;
                              return true;
                            },
                        .write =
                            [&](const void* frames, std::size_t count) {
                              const auto* from = static_cast<const std::uint8_t*>(frames);
                              out.bytes.insert(out.bytes.end(), from, from + count * width);
                              return true;
                            }};
  EXPECT_EQ(
      status_of([&] { EXPECT_EQ(convert_to_pcm(file, sink, settings).frames, out.announced); }),
      expected);
  return out;
}

// The files of an album, of which several tracks may be the same one.
struct Album {
  std::deque<MemoryFile> files;
  std::vector<std::size_t> tracks;

  std::uint64_t samples(std::size_t track) const { return files[tracks[track]].info().samples; }

  // A track with all others around it.
  Output convert(std::size_t track, ConvertSettings settings, int expected = CORVIN_OK) {
    std::vector<corvin_file*> previous;
    std::vector<corvin_file*> next;
    settings.first_sample = 0;
    for (std::size_t i = track; i-- > 0;) {
      settings.first_sample += samples(i);
      previous.push_back(files[tracks[i]].handle());
    }
    for (std::size_t i = track + 1; i < tracks.size(); ++i) {
      next.push_back(files[tracks[i]].handle());
    }
    settings.previous = previous.data();
    settings.previous_count = previous.size();
    settings.next = next.data();
    settings.next_count = next.size();
    return converted(files[tracks[track]], settings, expected);
  }
};

struct Case {
  std::uint32_t dsd, pcm, channels;
  corvin_sample_format format;
  corvin_dither dither;
  corvin_phase phase;
};
constexpr Case kCases[] = {
    {2822400, 44100, 2, CORVIN_S16, CORVIN_DITHER_SHAPED, CORVIN_LINEAR_PHASE},
    {2822400, 88200, 1, CORVIN_F32, CORVIN_DITHER_TPDF, CORVIN_MINIMUM_PHASE},
    {3072000, 352800, 3, CORVIN_S16, CORVIN_DITHER_SHAPED, CORVIN_LINEAR_PHASE},
    {11289600, 48000, 1, CORVIN_S32, CORVIN_DITHER_TPDF, CORVIN_LINEAR_PHASE},
    {2822400, 768000, 1, CORVIN_F64, CORVIN_DITHER_NONE, CORVIN_LINEAR_PHASE},
};

// A track that ends within a byte, one of whole blocks, some that are shorter than a frame or than a
// byte, one without sound, and in the end such as come a second time.
TEST(ConvertNeighbours, TracksMakeTheWhole) {
  constexpr struct {
    std::uint64_t samples;
    corvin_container container;
  } kFiles[] = {{300003, CORVIN_DSF},    {640000, CORVIN_DSDIFF}, {100, CORVIN_DSF},
                {24, CORVIN_ONE_BIT},    {131072, CORVIN_DSF},    {5, CORVIN_DSF},
                {80008, CORVIN_ONE_BIT}, {0, CORVIN_DSF}};
  Random random(40);
  for (const Case& test : kCases) {
    std::vector<Sound> sounds;
    Album album;
    for (const auto& file : kFiles) {
      sounds.emplace_back(test.channels, file.samples, random);
      album.files.emplace_back(sounds.back().file(file.container, test.dsd));
    }
    album.tracks = {0, 1, 2, 7, 3, 4, 5, 6, 2, 0, 2, 5};
    Sound whole(test.channels, 0, random);
    for (const std::size_t track : album.tracks) whole.append(sounds[track]);
    MemoryFile joined(whole.file(CORVIN_DSF, test.dsd));

    ConvertSettings settings;
    settings.pcm_rate = test.pcm;
    settings.format = test.format;
    settings.dither = test.dither;
    settings.phase = test.phase;
    settings.seed = 3;
    settings.gain_db = -6;
    const Bytes expected = converted(joined, settings).bytes;
    for (const std::uint32_t threads : {0u, 3u}) {
      SCOPED_TRACE(::testing::Message()
                   << test.dsd << " to " << test.pcm << ", threads " << threads);
      settings.threads = threads;
      Bytes all;
      for (std::size_t track = 0; track < album.tracks.size(); ++track) {
        const Bytes part = album.convert(track, settings).bytes;
        ASSERT_LE(all.size() + part.size(), expected.size());
        EXPECT_TRUE(std::equal(part.begin(), part.end(), expected.begin() + all.size())) << track;
        all.insert(all.end(), part.begin(), part.end());
      }
      EXPECT_TRUE(all == expected);
    }
  }
}

// The whole from one of the last file's samples on, whatever the decoder's layout.
TEST(ConvertNeighbours, AFileAndItsDecoderAreEnteredAnywhere) {
  Random random(43);
  constexpr std::uint32_t kChannels = 2;
  constexpr std::uint64_t kFirst = 700011;
  constexpr std::uint64_t kSamples = 250002;
  const Sound sounds[] = {Sound(kChannels, kFirst - 3, random), Sound(kChannels, 3, random),
                          Sound(kChannels, kSamples, random)};
  Sound whole(kChannels, 0, random);
  for (const Sound& sound : sounds) whole.append(sound);
  MemoryFile joined(whole.file(CORVIN_DSF, 2822400));
  MemoryFile files[] = {MemoryFile(sounds[0].file(CORVIN_DSF, 2822400)),
                        MemoryFile(sounds[1].file(CORVIN_DSF, 2822400)),
                        MemoryFile(sounds[2].file(CORVIN_DSF, 2822400))};
  corvin_file* const previous[] = {files[1].handle(), files[0].handle()};

  ConvertSettings conversion;
  conversion.format = CORVIN_S16;
  conversion.dither = CORVIN_DITHER_SHAPED;
  const Bytes expected = converted(joined, conversion).bytes;
  DecoderSettings settings;
  settings.format = conversion.format;
  settings.dither = conversion.dither;
  settings.first_sample = kFirst;
  settings.length = kSamples;
  settings.context = CORVIN_CONTEXT_BEFORE;
  for (const std::uint32_t block : {1u, 1000u}) {
    for (const corvin_bit_order order : {CORVIN_MSB_FIRST, CORVIN_LSB_FIRST}) {
      settings.block_bytes = block;
      settings.bit_order = order;
      Decoder decoder(settings);
      for (const std::uint64_t offset : {0u, 1u, 7u, 30000u, 222222u, 250002u}) {
        files[2].seek_decoder(decoder, kFirst + offset, previous);
        EXPECT_EQ(files[2].tell(), offset / 8 * 8);
        std::vector<Bytes> channels(kChannels);
        const Bytes rest = read_all(files[2], CORVIN_MSB_FIRST);
        for (std::size_t i = 0; i < rest.size(); ++i) channels[i % kChannels].push_back(rest[i]);
        const Bytes out = decode(decoder, settings, layout(channels, block, order), &random);
        const auto skipped =
            static_cast<std::ptrdiff_t>(decoder.frames(kFirst + offset) * frame_bytes(settings));
        EXPECT_TRUE(out == Bytes(expected.begin() + skipped, expected.end()))
            << block << ", order " << order << ", " << offset;
      }
    }
  }

  Decoder decoder(settings);
  const auto seek = [&](MemoryFile& file, std::uint64_t sample,
                        std::span<corvin_file* const> before) {
    return status_of([&] { file.seek_decoder(decoder, sample, before); });
  };
  files[2].seek(800);
  corvin_file* const too_many[] = {files[1].handle(), files[1].handle(), files[0].handle()};
  EXPECT_EQ(seek(files[2], kFirst - 1, previous), CORVIN_E_ARGUMENT);
  EXPECT_EQ(seek(files[2], kFirst + kSamples + 1, previous), CORVIN_E_ARGUMENT);
  EXPECT_EQ(seek(files[2], kFirst, too_many), CORVIN_E_ARGUMENT);
  EXPECT_EQ(files[2].tell(), 800u);
  MemoryFile mono(Sound(1, 100, random).file(CORVIN_DSF, 2822400));
  MemoryFile faster(Sound(2, 100, random).file(CORVIN_DSF, 5644800));
  EXPECT_EQ(seek(mono, kFirst, {}), CORVIN_E_ARGUMENT);
  EXPECT_EQ(seek(faster, kFirst, {}), CORVIN_E_ARGUMENT);
  EXPECT_EQ(seek(files[1], kFirst + 5, {}), CORVIN_E_ARGUMENT);
  MemoryFile failing(files[0].bytes);
  failing.calls_left = 0;
  corvin_file* const unread[] = {failing.handle()};
  EXPECT_EQ(seek(files[2], kFirst, unread), CORVIN_E_READ);
  settings.context = CORVIN_CONTEXT_NONE;
  decoder = Decoder(settings);
  EXPECT_EQ(seek(files[2], kFirst, previous), CORVIN_E_ARGUMENT);
  EXPECT_EQ(seek(files[2], kFirst, {}), CORVIN_OK);
}

// A neighbour that fails is no silence.
TEST(ConvertNeighbours, FailuresOfNeighboursAreFailures) {
  Random random(41);
  const Sound sound(1, 40003, random);
  for (const std::uint32_t threads : {0u, 3u}) {
    ConvertSettings settings;
    settings.threads = threads;
    Album album;
    for (int i = 0; i < 3; ++i) album.files.emplace_back(sound.file(CORVIN_DSF, 2822400));
    album.tracks = {0, 1, 2};
    album.files[0].calls_left = 0;
    EXPECT_FALSE(album.convert(1, settings, CORVIN_E_READ).begun);
    album.files[0].calls_left = 100;
    album.files[2].calls_left = 0;
    EXPECT_TRUE(album.convert(1, settings, CORVIN_E_READ).begun);
  }
}

TEST(ConvertNeighbours, RefusesWhatDoesNotGoTogether) {
  Random random(42);
  MemoryFile file(Sound(1, 1000, random).file(CORVIN_DSF, 2822400));
  MemoryFile stereo(Sound(2, 1000, random).file(CORVIN_DSF, 2822400));
  MemoryFile faster(Sound(1, 1000, random).file(CORVIN_DSF, 5644800));
  testing::DsdiffOptions compression;
  compression.compression_type = "DST ";
  MemoryFile compressed(testing::DsdiffFile(1, 2822400, Bytes(100), compression));
  const auto status = [&](corvin_file* const* previous, std::size_t previous_count,
                          corvin_file* const* next, std::size_t next_count, std::uint64_t first) {
    ConvertSettings settings;
    settings.previous = previous;
    settings.previous_count = previous_count;
    settings.next = next;
    settings.next_count = next_count;
    settings.first_sample = first;
    corvin_pcm_sink sink = {};
    sink.size = sizeof sink;
    sink.write = [](void*, const void*, std::size_t) { return 0; };
    return corvin_convert_to_pcm(file.handle(), &settings, &sink, nullptr);
  };
  corvin_file* const good[] = {file.handle(), file.handle()};
  EXPECT_EQ(status(good, 2, good, 2, 2000), CORVIN_OK);
  EXPECT_EQ(status(nullptr, 0, nullptr, 0, 12345), CORVIN_OK);
  EXPECT_EQ(status(good, 2, nullptr, 0, 1999), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(nullptr, 0, nullptr, 0, ~std::uint64_t{0}), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(nullptr, 1, nullptr, 0, 2000), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(nullptr, 0, nullptr, 1, 0), CORVIN_E_ARGUMENT);
  for (const auto& [other, expected] :
       {std::pair<corvin_file*, int>{stereo.handle(), CORVIN_E_ARGUMENT},
        {faster.handle(), CORVIN_E_ARGUMENT},
        {nullptr, CORVIN_E_ARGUMENT},
        {compressed.handle(), CORVIN_E_COMPRESSED}}) {
    corvin_file* const with[] = {file.handle(), other};
    EXPECT_EQ(status(with, 2, nullptr, 0, 2000), expected);
    EXPECT_EQ(status(nullptr, 0, with, 2, 0), expected);
  }

  // The other conversions have no use for them.
  MemoryStream to;
  Writer writer(to.callbacks(), writer_settings(CORVIN_DSF, 1));
  ConvertSettings settings;
  settings.next = good;
  settings.next_count = 1;
  EXPECT_EQ(status_of([&] { convert_copy(file, writer, settings); }), CORVIN_E_ARGUMENT);
  settings.next_count = 0;
  settings.first_sample = 8;
  EXPECT_EQ(status_of([&] { convert_dsd_rate(file, writer, settings); }), CORVIN_E_ARGUMENT);
  settings.first_sample = 0;
  settings.previous = good;
  settings.previous_count = 1;
  const PcmSource nothing = {.channels = 1, .read = [](void*, std::size_t) { return 0; }};
  EXPECT_EQ(status_of([&] { convert_to_dsd(nothing, writer, settings); }), CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio
