// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The numbers that come out, for pairs of every kind, against a double-precision model.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

#include "classic/decode/dsd_to_pcm_job.h"
#include "tests/support/decode_model.h"
#include "tests/support/dsd_signals.h"
#include "tests/support/temp_file.h"

namespace {

using corvin::testing::Bits;
using corvin::testing::DecodeModel;
using corvin::testing::DecodePair;

struct ByteSource {
  std::vector<std::uint8_t> bytes;
  std::size_t at = 0;

  /// Delivers odd amounts, as a pipe would.
  static int Read(void* buffer, int size, void* data) {
    auto& self = *static_cast<ByteSource*>(data);
    const std::size_t count =
        std::min({static_cast<std::size_t>(size), self.bytes.size() - self.at, std::size_t{997}});
    std::memcpy(buffer, self.bytes.data() + self.at, count);
    self.at += count;
    return static_cast<int>(count);
  }
};

struct Format {
  int bits = 24;
  bool big_endian = false;
  bool lsb_first = false;
};

/// Returns out_channels vectors of integer samples.
std::vector<std::vector<std::int64_t>> Convert(const DecodePair& pair,
                                               const std::vector<Bits>& channels,
                                               std::uint64_t total_bits, Format format) {
  std::vector<std::vector<std::uint8_t>> packed;
  for (const Bits& bits : channels)
    packed.push_back(corvin::testing::PackBits(bits, format.lsb_first));
  ByteSource source{corvin::testing::Interleave(packed)};
  const std::size_t outs = std::min<std::size_t>(channels.size(), 2);
  const std::size_t width = static_cast<std::size_t>(format.bits) / 8;
  const corvin::testing::StreamPointer file(std::tmpfile());
  {
    CDSDtoPCM2 job(ByteSource::Read, &source, file.get(), static_cast<int>(channels.size()), 4096,
                   pair.dsd_rate, pair.pcm_rate, format.lsb_first, format.bits, true, total_bits, 1,
                   0, format.big_endian, nullptr, nullptr);
    EXPECT_EQ(job.Translate2(), 0);
  }
  const std::vector<std::uint8_t> bytes = corvin::testing::ReadBack(file.get());
  EXPECT_EQ(bytes.size() % (width * outs), 0u);
  std::vector<std::vector<std::int64_t>> out(outs);
  for (std::size_t i = 0; i + width <= bytes.size(); i += width) {
    std::uint64_t value = 0;
    for (std::size_t b = 0; b < width; ++b)
      value = value << 8 | bytes[i + (format.big_endian ? b : width - 1 - b)];
    const auto sign = static_cast<std::int64_t>(value << (64 - format.bits)) >> (64 - format.bits);
    out[i / width % outs].push_back(sign);
  }
  return out;
}

/// Bound on the error of single-precision sums, full scale 1.0. The taps are rounded twice (2 u)
/// and multiplied (1 u); each of the chains adds window / chains products, and a chain's running
/// sum is on average at most half of its share of the absolute sum, which with the last few
/// additions makes (window / (2 chains) + 5) u of it.
double ErrorBound(const DecodeModel& model) {
#ifdef CORVIN_HAS_SSE_KERNELS
  constexpr double kChains = 16;
#else
  constexpr double kChains = 4;
#endif
  const double u = std::ldexp(1.0, -24);
  return (model.window() / (2 * kChains) + 8) * u * model.absolute_sum();
}

double FullScale(int bits) { return bits == 8 ? 128.0 : std::ldexp(1.0, bits - 1) - 1; }

/// Each sample is the model's, truncated, give or take the bound: at a width whose step is wider
/// than the bound that means equal unless the exact value sits on a step.
void Compare(const std::vector<double>& model, const std::vector<std::int64_t>& samples, int bits,
             double bound) {
  ASSERT_EQ(model.size(), samples.size());
  const double full = FullScale(bits);
  // 16 bits are scaled in single precision on the planned path: half a unit in the last of 24 bits.
  const double slack = bound * full + (bits <= 16 ? full * std::ldexp(1.0, -24) : 0.0) + 1e-9;
  for (std::size_t i = 0; i < model.size(); ++i) {
    const double exact = std::clamp(model[i], -1.0, 1.0) * full;
    auto low = static_cast<std::int64_t>(std::clamp(exact - slack, -full, full));
    auto high = static_cast<std::int64_t>(std::clamp(exact + slack, -full, full));
    if (bits == 8 && samples[i] == -128 && high == 128) continue;  // +1.0 wraps in 8 bits
    ASSERT_GE(samples[i], low) << "sample " << i << " of " << model.size();
    ASSERT_LE(samples[i], high) << "sample " << i << " of " << model.size();
  }
}

class DecodeAgainstModel : public testing::TestWithParam<DecodePair> {};

TEST_P(DecodeAgainstModel, TonesAndRandomBits) {
  const DecodePair& pair = GetParam();
  DecodeModel model(pair);
  model.set_lsb_first(true);
  // Long enough for the delay that the pair skips, some blocks and an odd rest.
  const std::size_t bytes = (static_cast<std::size_t>(model.skip()) *
                                 static_cast<std::size_t>(pair.dsd_rate / pair.pcm_rate) +
                             static_cast<std::size_t>(5 * std::max(pair.block, model.window()))) /
                                8 +
                            333;
  const Bits tone = corvin::testing::ToneBits(8 * bytes, 1009, pair.dsd_rate, 0.3);
  const Bits noise = corvin::testing::RandomBits(8 * bytes, 11);
  const std::uint64_t total = 8 * bytes + 5;  // a last byte that the source does not fill
  const auto out = Convert(pair, {tone, noise}, total, {24, false, true});
  const double bound = ErrorBound(model);
  Compare(model.Run(tone, total), out[0], 24, bound);
  Compare(model.Run(noise, total), out[1], 24, bound);
  if (pair.trim != 0) {
    EXPECT_EQ(out[0].size(), total * static_cast<std::uint64_t>(pair.pcm_rate) /
                                 static_cast<std::uint64_t>(pair.dsd_rate));
  }
}

constexpr DecodePair kPairs[] = {
    // One family, by powers of two.
    {2822400, 44100, 1, 64, 1.05, 65536},
    {2822400, 88200, 1, 32, 0.96, 65536},
    {2822400, 352800, 1, 8, 0.96, 65536},
    {2822400, 11025, 1, 256, 0.96, 65536},
    {2822400, 2822400, 1, 1, 0.96, 65536},
    {5644800, 44100, 1, 128, 1.0, 65536},
    {5644800, 88200, 1, 64, 0.96, 65536},
    {11289600, 44100, 1, 256, 0.905, 65536},
    {11289600, 88200, 1, 128, 0.95, 65536},
    {11289600, 705600, 1, 16, 0.95, 65536},
    {3072000, 48000, 1, 64, 1.05, 65536},
    {6144000, 48000, 1, 128, 0.93, 65536},
    {6144000, 96000, 1, 64, 0.96, 65536},
    {12288000, 48000, 1, 256, 0.85, 65536},
    {12288000, 192000, 1, 64, 0.95, 65536},
    {22579200, 88200, 1, 256, 1.0, 65536},
    {1411200, 88200, 1, 16, 1.0, 65536},
    // Across families, by table.
    {3072000, 44100, 147, 10240, 1.65, 32768, 10240},
    {3072000, 705600, 147, 640, 0.96, 131072, 640},
    {6144000, 88200, 147, 10240, 1.08, 65536, 10240},
    {12288000, 44100, 147, 40960, 0.95, 65536, 40960},
    {12288000, 176400, 147, 10240, 1.07, 65536, 10240},
    {2822400, 48000, 5, 294, 1.02, 8192, 2352},
    {2822400, 96000, 5, 147, 0.96, 8192, 2352},
    {2822400, 192000, 10, 147, 0.96, 8192, 2352},
    {2822400, 768000, 40, 147, 0.96, 32768, 1176},
    {5644800, 48000, 5, 588, 0.95, 8192, 4704},
    {5644800, 384000, 10, 147, 0.96, 8192, 4704},
    {11289600, 48000, 5, 1176, 0.83, 8192, 4704},
    {11289600, 768000, 10, 147, 0.96, 32768, 9408},
    // Without a plan, in one family and across: no level correction, and across families a delay
    // that is skipped as if nothing were decimated.
    {2822400, 32000, 1, 88, 0, 65536},
    {2822400, 14700, 1, 192, 0, 65536},
    {22579200, 48000, 1, 1, 0, 8192},
};

std::string PairName(const testing::TestParamInfo<DecodePair>& info) {
  return std::to_string(info.param.dsd_rate) + "To" + std::to_string(info.param.pcm_rate);
}

INSTANTIATE_TEST_SUITE_P(Pairs, DecodeAgainstModel, testing::ValuesIn(kPairs), PairName);

TEST(Decode, EveryWidthAndByteOrder) {
  const DecodePair pair = kPairs[1];
  DecodeModel model(pair);
  // Loud enough to clip at both ends, where the widths differ.
  const Bits loud = corvin::testing::ToneBits(40000, 3000, pair.dsd_rate, 0.5);
  Bits full(40000);
  for (std::size_t i = 0; i < full.size(); ++i)
    full[i] = static_cast<std::int8_t>(i / 10000 % 2 != 0 ? 1 : -1);
  for (int bits : {8, 16, 24, 32}) {
    const auto little = Convert(pair, {loud, full}, 40000, {bits, false, false});
    const auto big = Convert(pair, {loud, full}, 40000, {bits, true, false});
    EXPECT_EQ(little, big) << bits;
    Compare(model.Run(loud, 40000), little[0], bits, ErrorBound(model));
    Compare(model.Run(full, 40000), little[1], bits, ErrorBound(model));
  }
}

TEST(Decode, FullScaleIsSymmetricButForEightBits) {
  Bits high(200000, 1), low(200000, -1);
  for (int bits : {8, 16, 24, 32}) {
    const auto out = Convert(kPairs[1], {high, low}, 200000, {bits, true, false});
    const auto middle = out[0].size() / 2;
    const std::int64_t full = (std::int64_t{1} << (bits - 1)) - 1;
    EXPECT_EQ(out[0][middle], bits == 8 ? -128 : full);
    EXPECT_EQ(out[1][middle], bits == 8 ? -128 : -full);
  }
}

TEST(Decode, OneChannelAndTheFirstTwoOfMore) {
  for (const DecodePair& pair : {kPairs[1], kPairs[22], kPairs[30]}) {
    std::vector<Bits> channels;
    for (std::uint64_t c = 0; c < 6; ++c)
      channels.push_back(corvin::testing::RandomBits(8 * 20011, c));
    const auto six = Convert(pair, channels, 8 * 20011, {});
    const auto two = Convert(pair, {channels[0], channels[1]}, 8 * 20011, {});
    const auto one = Convert(pair, {channels[1]}, 8 * 20011, {});
    EXPECT_EQ(six, two);
    EXPECT_EQ(one[0], two[1]);
  }
}

/// Stereo in memory that is delivered in halves of any size, or in blocks as they stand.
struct Halves {
  std::vector<std::uint8_t> left, right;
  std::size_t half;  ///< bytes of each channel in a delivery, at most
  std::size_t at = 0;

  static int Read(void* buffer, int size, void* data) {
    auto& self = *static_cast<Halves*>(data);
    const std::size_t count =
        std::min({static_cast<std::size_t>(size) / 2, self.left.size() - self.at, self.half});
    auto* const to = static_cast<std::uint8_t*>(buffer);
    std::memcpy(to, self.left.data() + self.at, count);
    std::memcpy(to + count, self.right.data() + self.at, count);
    self.at += count;
    return static_cast<int>(2 * count);
  }
};

std::vector<std::uint8_t> Decoded(CorvinReadCallback read, void* data, const DecodePair& pair,
                                  bool interleaved, std::size_t bytes) {
  const corvin::testing::StreamPointer file(std::tmpfile());
  {
    CDSDtoPCM2 job(read, data, file.get(), 2, 4096, pair.dsd_rate, pair.pcm_rate, false, 16,
                   interleaved, 8 * bytes, 1, 0, false, nullptr, nullptr);
    EXPECT_EQ(job.Translate2(), 0);
  }
  return corvin::testing::ReadBack(file.get());
}

// A callback that delivers the channels one behind the other gives what interleaved bytes give,
// however short its deliveries are and wherever they end.
TEST(DecodeJob, HalvesOfEachDeliveryAreTheChannels) {
  using corvin::testing::PackBits;
  using corvin::testing::RandomBits;
  for (const auto& [dsd_rate, pcm_rate] :
       {std::pair{2822400, 88200}, {2822400, 48000}, {2822400, 32000}}) {
    DecodePair pair{};
    pair.dsd_rate = dsd_rate;
    pair.pcm_rate = pcm_rate;
    for (const std::size_t bytes : {300, 150001}) {
      const auto left = PackBits(RandomBits(8 * bytes, 1), false);
      const auto right = PackBits(RandomBits(8 * bytes, 2), false);
      ByteSource turns{corvin::testing::Interleave({left, right})};
      const auto expected = Decoded(ByteSource::Read, &turns, pair, true, bytes);
      EXPECT_EQ(expected.size() % 4, 0u);
      for (const std::size_t half : {1000000, 331}) {
        Halves source{left, right, half};
        EXPECT_TRUE(Decoded(Halves::Read, &source, pair, false, bytes) == expected)
            << pcm_rate << " Hz, " << bytes << " bytes by " << half;
      }
    }
  }
}

// What is asked for are blocks of the source, so that one that stands in halves of them can be
// handed on as it is.
TEST(DecodeJob, AsksForBlocksOfHalves) {
  for (const auto& [pcm_rate, half] :
       {std::pair{88200, 4096 / 8}, {48000, 2352 / 8}, {32000, 4096}}) {
    struct Host {
      int size = 0;
      static int Read(void*, int size, void* data) {
        static_cast<Host*>(data)->size = size;
        return 0;
      }
    } host;
    DecodePair pair{};
    pair.dsd_rate = 2822400;
    pair.pcm_rate = pcm_rate;
    Decoded(Host::Read, &host, pair, false, 0);
    EXPECT_EQ(host.size, 2 * half) << pcm_rate;
  }
}

}  // namespace
