// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// PCM that goes on from track to track: the files joined are one run of the encoder, cut where the
// tracks meet, and what pads a block is the run's too.

#include <gtest/gtest.h>

#include <deque>
#include <limits>

#include "tests/support/pcm_memory.h"
#include "tests/support/sound_files.h"

namespace corvin::studio {
namespace {

struct Case {
  std::uint32_t pcm_rate;
  std::uint32_t dsd_rate;
  std::uint32_t channels;
  std::uint32_t modulator;
  std::vector<std::size_t> frames;  // of each track
};

// Where several tracks begin within one byte, where the first and last ones are shorter than one,
// where a track has no frame; where all cuts lie at whole bytes; where a track fills its last block
// to the byte and where it exceeds it by one.
const Case kCases[] = {
    {48000, 2822400, 2, CORVIN_MODULATOR_STANDARD, {1, 441, 44101, 7, 3000}},
    {44100, 2822400, 1, CORVIN_MODULATOR_HIGH, {1, 512, 9999, 513, 1}},
    {768000, 2822400, 3, CORVIN_MODULATOR_STANDARD, {1, 1, 0, 60001, 1, 2}},
    {192000, 3072000, 1, CORVIN_MODULATOR_STANDARD, {5, 3, 30000, 1}},
    {768000, 2822400, 1, CORVIN_MODULATOR_STANDARD, {3, 1, 0}},
};

// Containers of the tracks in turn.
const std::vector<corvin_container> kOrders[] = {
    {CORVIN_DSF}, {CORVIN_DSDIFF}, {CORVIN_ONE_BIT}, {CORVIN_DSF, CORVIN_ONE_BIT}};

// One for each sample of a channel.
using Bits = std::vector<bool>;

Bits bits_of(const Bytes& interleaved, std::size_t channels, std::size_t channel,
             std::uint32_t order) {
  Bits bits;
  for (std::size_t at = channel; at < interleaved.size(); at += channels) {
    for (int i = 0; i < 8; ++i) {
      bits.push_back((interleaved[at] >> (order == CORVIN_LSB_FIRST ? i : 7 - i) & 1) != 0);
    }
  }
  return bits;
}

// The sound of a DSF file as it stands there, padding included.
Bits dsf_bits(const Bytes& file, std::size_t channels, std::size_t channel) {
  constexpr std::size_t kHeader = 92;
  constexpr std::size_t kBlock = 4096;
  Bytes bytes;
  for (std::size_t at = kHeader + channel * kBlock; at < file.size(); at += channels * kBlock) {
    bytes.insert(bytes.end(), &file[at], &file[at] + kBlock);
  }
  return bits_of(bytes, 1, 0, CORVIN_LSB_FIRST);
}

std::uint64_t up_to_eight(std::uint64_t samples) { return (samples + 7) / 8 * 8; }

bool silence_at(std::uint64_t sample) { return (kIdle >> (7 - sample % 8) & 1) != 0; }

// A track's bit, with that of the padding: what the encoder's run has; then silence up to the end
// of the byte, then zeros. `run` is whole bytes.
bool padded_bit(const Bits& run, std::uint64_t first, std::uint64_t samples, bool last,
                std::uint64_t i) {
  const std::uint64_t made = last ? samples : run.size() - first;
  if (i < made) return run[static_cast<std::size_t>(first + i)];
  return i < up_to_eight(made) && silence_at(last ? i : first + i);
}

// Tracks of noise, and the conversion of them.
class Album {
 public:
  explicit Album(Case what) : what_(std::move(what)) {
    Random random(31);
    for (const std::size_t frames : what_.frames) {
      sources_.push_back({random.quiet_pcm(frames * what_.channels, 2), 2 * what_.channels});
    }
  }

  Bytes joined() const {
    Bytes all;
    for (const Pcm& pcm : sources_) all.insert(all.end(), pcm.data.begin(), pcm.data.end());
    return all;
  }

  EncoderSettings encoder() const {
    EncoderSettings settings;
    settings.pcm_rate = what_.pcm_rate;
    settings.dsd_rate = what_.dsd_rate;
    settings.channels = what_.channels;
    settings.format = CORVIN_S16;
    settings.modulator = what_.modulator;
    return settings;
  }

  // Where each track begins, and where the last one ends.
  std::vector<std::uint64_t> cuts() const {
    const Encoder made(encoder());
    std::vector<std::uint64_t> cuts = {0};
    std::uint64_t frames = 0;
    for (const std::size_t more : what_.frames) cuts.push_back(made.samples(frames += more));
    return cuts;
  }

  Pcm& source(std::size_t track) { return sources_[track]; }
  MemoryStream& file(std::size_t track) { return files_[track]; }
  corvin_writer* writer(std::size_t track) { return writers_[track].handle(); }

  void open(const std::vector<corvin_container>& containers,
            corvin_bit_order order = CORVIN_MSB_FIRST) {
    writers_.clear();
    files_.clear();
    for (std::size_t track = 0; track < sources_.size(); ++track) {
      sources_[track].position = 0;
      WriterSettings settings =
          writer_settings(containers[track % containers.size()], what_.channels, what_.dsd_rate);
      settings.bit_order = order;
      writers_.emplace_back(files_.emplace_back().callbacks(), settings);
    }
  }

  corvin_convert_report convert(ConvertSettings settings = ConvertSettings(),
                                const Progress& progress = {}) {
    settings.modulator = what_.modulator;
    std::vector<corvin_pcm_source> sources;
    for (Pcm& pcm : sources_) {
      sources.push_back(pcm.source(what_.pcm_rate, what_.channels, CORVIN_S16));
    }
    return convert_to_dsd_tracks(sources, writers_, settings, progress);
  }

 private:
  Case what_;
  std::vector<Pcm> sources_;
  std::deque<MemoryStream> files_;
  std::vector<Writer> writers_;
};

TEST(ConvertToDsdTracks, AreOneRunCutInPieces) {
  for (const Case& what : kCases) {
    Album album(what);
    for (const corvin_bit_order order : {CORVIN_MSB_FIRST, CORVIN_LSB_FIRST}) {
      EncoderSettings encoder = album.encoder();
      encoder.bit_order = order;
      const Bytes run = encode(encoder, album.joined());
      const std::vector<std::uint64_t> exact = album.cuts();
      for (const auto& containers : kOrders) {
        const bool whole_bytes = containers != std::vector{CORVIN_DSF};
        ConvertSettings settings;
        settings.threads = order == CORVIN_MSB_FIRST ? 0 : 2;
        album.open(containers, order);
        album.source(1).most_at_once = 100;
        const corvin_convert_report report = album.convert(settings);
        EXPECT_EQ(report.finished, what.frames.size());
        EXPECT_EQ(report.samples, exact.back());
        for (std::size_t c = 0; c < what.channels; ++c) {
          const Bits expected = bits_of(run, what.channels, c, order);
          std::uint64_t first = 0;
          for (std::size_t track = 0; track < what.frames.size(); ++track) {
            SCOPED_TRACE(::testing::Message()
                         << what.pcm_rate << " to " << what.dsd_rate << ", " << containers.size()
                         << " containers, first " << containers[0] << ", track " << track
                         << ", channel " << c << ", order " << order);
            const bool last = track + 1 == what.frames.size();
            const std::uint64_t end = !whole_bytes ? exact[track + 1]
                                      : last       ? std::max(up_to_eight(exact[track + 1]), first)
                                                   : up_to_eight(exact[track + 1]);
            MemoryFile file(album.file(track).bytes);
            EXPECT_EQ(file.info().stated_samples, file.info().samples);
            if (!last || !whole_bytes) {
              EXPECT_EQ(file.info().samples, end - first);
            }
            Bits bits = bits_of(read_all(file, order), what.channels, c, order);
            ASSERT_GE(bits.size(), end - first);
            bits.resize(static_cast<std::size_t>(end - first));
            EXPECT_TRUE(std::equal(bits.begin(), bits.end(), expected.begin() + first));
            if (containers[track % containers.size()] == CORVIN_DSF) {
              const Bits padded = dsf_bits(album.file(track).bytes, what.channels, c);
              const std::uint64_t samples = file.info().samples;
              std::size_t wrong = 0;
              for (std::size_t i = 0; i < padded.size(); ++i) {
                if (padded[i] != padded_bit(expected, first, samples, last, i)) ++wrong;
              }
              EXPECT_EQ(wrong, 0u);
            }
            first = end;
          }
        }
      }
    }
  }
}

// The files of tracks that were complete stay; of the others nothing becomes one.
TEST(ConvertToDsdTracks, EndWhereverTheyAreAsked) {
  Album album({48000, 2822400, 2, CORVIN_MODULATOR_STANDARD, {9000, 441, 30001, 44100, 100}});
  album.open({CORVIN_DSF});
  album.convert();
  std::vector<Bytes> whole;
  for (std::size_t track = 0; track < 5; ++track) whole.push_back(album.file(track).bytes);

  for (const std::uint32_t threads : {0u, 2u}) {
    ConvertSettings settings;
    settings.threads = threads;
    const auto ends = [&](int expected, const Progress& progress = {}) -> std::uint64_t {
      try {
        album.convert(settings, progress);
      } catch (const ConvertError& error) {
        EXPECT_EQ(error.status(), expected);
        for (std::size_t track = 0; track < 5; ++track) {
          const bool finished = track < error.report().finished;
          EXPECT_EQ(album.file(track).bytes == whole[track], finished) << track;
          EXPECT_NE(corvin_writer_finish(album.writer(track), 1), CORVIN_OK);
        }
        return error.report().finished;
      }
      ADD_FAILURE() << "it was to fail";
      return 0;
    };

    album.open({CORVIN_DSF});
    album.file(2).calls_left = 0;
    EXPECT_EQ(ends(CORVIN_E_WRITE), 2u);
    EXPECT_EQ(corvin_writer_finish(album.writer(2), 1), CORVIN_E_WRITE);
    album.open({CORVIN_DSF});
    album.file(1).calls_left = 0;  // met when it is finished
    EXPECT_EQ(ends(CORVIN_E_WRITE), 1u);

    // How far the encoder's threads are is not known, but no track waits for the end.
    album.open({CORVIN_DSF});
    std::uint64_t before = 0;
    const std::uint64_t finished =
        ends(CORVIN_E_CANCELLED, [&](std::uint64_t done, std::uint64_t total) {
          EXPECT_EQ(total, 83642u);
          EXPECT_GT(done, before);
          before = done;
          return done < 83542;
        });
    EXPECT_EQ(before, 83542u);
    EXPECT_GE(finished, 2u);
    EXPECT_LE(finished, 3u);
    album.open({CORVIN_DSF});
    album.source(3).calls_left = 0;
    EXPECT_LE(ends(CORVIN_E_READ), 2u);
    album.source(3).calls_left = std::numeric_limits<int>::max();
  }
}

TEST(ConvertToDsdTracks, RefuseWhatDoesNotGoTogether) {
  Pcm pcm{Bytes(400), 4};
  const corvin_pcm_source good = pcm.source(44100, 2, CORVIN_S16);
  MemoryStream streams[2];
  const auto status = [&](const corvin_pcm_source& second, const WriterSettings& to,
                          bool twice = false, std::size_t count = 2) {
    Writer writers[] = {{streams[0].callbacks(), writer_settings(CORVIN_DSF, 2)},
                        {streams[1].callbacks(), to}};
    const corvin_pcm_source* sources[] = {&good, &second};
    corvin_writer* targets[] = {writers[0].handle(), writers[twice ? 0 : 1].handle()};
    pcm.position = 0;
    return corvin_convert_to_dsd_tracks(sources, targets, count, nullptr, nullptr);
  };
  const WriterSettings to = writer_settings(CORVIN_DSF, 2);
  EXPECT_EQ(status(good, to), CORVIN_OK);
  EXPECT_EQ(status(good, to, true), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(good, to, false, 0), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(pcm.source(48000, 2, CORVIN_S16), to), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(pcm.source(44100, 2, CORVIN_S24), to), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(pcm.source(44100, 1, CORVIN_S16), to), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(good, writer_settings(CORVIN_DSF, 1)), CORVIN_E_ARGUMENT);
  EXPECT_EQ(status(good, writer_settings(CORVIN_DSF, 2, 5644800)), CORVIN_E_ARGUMENT);

  Writer writers[] = {{streams[0].callbacks(), to}, {streams[1].callbacks(), to}};
  writers[1].write("sound", 2);
  const corvin_pcm_source sources[] = {good, good};
  EXPECT_EQ(status_of([&] { convert_to_dsd_tracks(sources, writers); }), CORVIN_E_STATE);
  EXPECT_EQ(status_of([&] { convert_to_dsd_tracks(sources, std::span(writers, 1)); }),
            CORVIN_E_ARGUMENT);
}

}  // namespace
}  // namespace corvin::studio
