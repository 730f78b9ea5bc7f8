// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The buffer-mode engine against whole conversions: however the stream is cut, the same bytes.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <future>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "classic/decode/dsd_to_pcm_job.h"
#include "corvin.h"
#include "tests/support/dsd_signals.h"
#include "tests/support/watchdog.h"

namespace {

using corvin::testing::Watchdog;
using Bytes = std::vector<unsigned char>;

struct Stream {
  int dsd_rate;
  int pcm_rate;
  int bits;
  bool lsb_first;
  bool big_endian;
  std::size_t bytes;  ///< per channel

  std::size_t frame_bytes() const { return 2 * static_cast<std::size_t>(bits) / 8; }
  /// Output frames of `count` bytes, rounded up or down.
  std::size_t frames(std::size_t count, bool up) const {
    const std::uint64_t samples = 8 * count, dsd = static_cast<std::uint64_t>(dsd_rate);
    return static_cast<std::size_t>(
        (samples * static_cast<std::uint64_t>(pcm_rate) + (up ? dsd - 1 : 0)) / dsd);
  }
};

std::ostream& operator<<(std::ostream& out, const Stream& stream) {
  return out << stream.dsd_rate << " to " << stream.pcm_rate << ", " << stream.bits << " bits";
}

// Same family, cross family with many and few phases, the DSD rate itself, and the fallback within
// and across the families. Lengths are several blocks of the plan and end inside one.
constexpr Stream kStreams[] = {
    {2822400, 44100, 24, false, true, 20011},  {5644800, 88200, 16, true, false, 9001},
    {3072000, 44100, 32, false, false, 7003},  {12288000, 705600, 24, true, true, 3001},
    {2822400, 768000, 8, false, true, 1201},   {11289600, 48000, 24, true, false, 20011},
    {2822400, 2822400, 16, false, true, 1301}, {2822400, 32000, 16, false, true, 6007},
    {22579200, 48000, 24, true, true, 40009},
};

Bytes RandomChannel(std::size_t bytes, std::uint64_t seed) {
  return corvin::testing::PackBits(corvin::testing::RandomBits(8 * bytes, seed), false);
}

/// Both channels, one after the other.
Bytes Halves(const Bytes& left, const Bytes& right) {
  Bytes halves = left;
  halves.insert(halves.end(), right.begin(), right.end());
  return halves;
}

/// What the whole-file engine makes of the stream.
Bytes OnePass(const Stream& stream, const Bytes& left, const Bytes& right) {
  Bytes dsd = Halves(left, right);
  Bytes pcm(stream.frames(left.size(), false) * stream.frame_bytes());
  CDSDtoPCM2 job(nullptr, nullptr, nullptr, 2, static_cast<int>(left.size()), stream.dsd_rate,
                 stream.pcm_rate, stream.lsb_first, stream.bits, false, 8 * left.size(), 1, 0,
                 stream.big_endian, reinterpret_cast<char*>(dsd.data()),
                 reinterpret_cast<char*>(pcm.data()));
  EXPECT_EQ(job.Translate2(), 0);
  return pcm;
}

class Engine {
 public:
  explicit Engine(const Stream& stream)
      : stream_(stream),
        engine_(GetCDSDtoPCMBufClass(stream.dsd_rate, stream.pcm_rate, stream.lsb_first,
                                     stream.bits, stream.big_endian)) {}

  explicit operator bool() const { return engine_ != nullptr; }
  CDSDtoPCMBuf* get() const { return engine_.get(); }
  std::size_t delay() const { return static_cast<std::size_t>(DSDtoPCMBuf_Delay(get())); }
  const Bytes& pcm() const { return pcm_; }

  /// Sends a piece with exactly the room that the interface asks for, and guards behind it.
  void Send(const Bytes& left, const Bytes& right) {
    const std::size_t room = stream_.frames(left.size(), true) * stream_.frame_bytes();
    Bytes out(room + 16, 0xEE);
    const Bytes dsd = Halves(left, right);
    const int written = DSDtoPCMBuf_ToPCM(get(), dsd.data(), static_cast<int>(left.size()),
                                          out.data(), static_cast<int>(room));
    ASSERT_GE(written, 0);
    ASSERT_LE(static_cast<std::size_t>(written), room);
    ASSERT_EQ(Bytes(out.begin() + written, out.end()), Bytes(out.size() - written, 0xEE));
    pcm_.insert(pcm_.end(), out.begin(), out.begin() + written);
  }

 private:
  struct Close {
    void operator()(CDSDtoPCMBuf* engine) const { CloseDSDtoPCMBuf(engine); }
  };
  Stream stream_;
  std::unique_ptr<CDSDtoPCMBuf, Close> engine_;
  Bytes pcm_;
};

/// Sends the stream in pieces of up to `longest` bytes, 0 among them.
void SendCut(Engine& engine, const Bytes& left, const Bytes& right, std::size_t longest) {
  std::mt19937 random(static_cast<unsigned>(longest));
  for (std::size_t at = 0; at < left.size();) {
    const std::size_t count = std::min(left.size() - at, random() % (longest + 1));
    const auto piece = [at, count](const Bytes& channel) {
      const auto from = channel.begin() + static_cast<std::ptrdiff_t>(at);
      return Bytes(from, from + static_cast<std::ptrdiff_t>(count));
    };
    engine.Send(piece(left), piece(right));
    at += count;
  }
}

TEST(DsdToPcmBuf, AnyCutGivesTheBytesOfOnePass) {
  const Watchdog watchdog(200);
  for (const Stream& stream : kStreams) {
    SCOPED_TRACE(::testing::Message() << stream);
    const Bytes left = RandomChannel(stream.bytes, 1), right = RandomChannel(stream.bytes, 2);
    const Bytes expected = OnePass(stream, left, right);
    for (std::size_t longest :
         {stream.bytes, std::size_t{4096}, std::size_t{701}, std::size_t{3}}) {
      Engine engine(stream);
      ASSERT_TRUE(engine);
      ASSERT_GE(engine.delay(), 1u);
      SendCut(engine, left, right, longest);
      const std::size_t all = stream.frames(stream.bytes, true);
      ASSERT_EQ(engine.pcm().size(), (all - std::min(all, engine.delay())) * stream.frame_bytes());
      const auto same = static_cast<std::ptrdiff_t>(std::min(engine.pcm().size(), expected.size()));
      ASSERT_TRUE(std::equal(expected.begin(), expected.begin() + same, engine.pcm().begin()))
          << "pieces up to " << longest;
    }
  }
}

TEST(DsdToPcmBuf, SilenceBringsOutTheRest) {
  for (const Stream& stream : {kStreams[0], kStreams[2], kStreams[7]}) {
    SCOPED_TRACE(::testing::Message() << stream);
    const Bytes left = RandomChannel(stream.bytes, 3), right = RandomChannel(stream.bytes, 4);
    const Bytes expected = OnePass(stream, left, right);
    Engine engine(stream);
    engine.Send(left, right);
    EXPECT_LT(engine.pcm().size(), expected.size());
    const auto rest = engine.delay() * static_cast<std::size_t>(stream.dsd_rate) /
                          static_cast<std::size_t>(stream.pcm_rate) / 8 +
                      1;
    engine.Send(Bytes(rest, 0x69), Bytes(rest, 0x69));
    ASSERT_GE(engine.pcm().size(), expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), engine.pcm().begin()));
  }
}

TEST(DsdToPcmBuf, RefusedPiecesCanBeSentAgain) {
  const Stream stream = kStreams[0];
  const Bytes left = RandomChannel(stream.bytes, 5), right = RandomChannel(stream.bytes, 6);
  const Bytes dsd = Halves(left, right);
  const Bytes expected = OnePass(stream, left, right);
  const Engine engine(stream);
  const int bytes = static_cast<int>(stream.bytes);
  const int wanted =
      static_cast<int>((stream.frames(stream.bytes, true) - engine.delay()) * stream.frame_bytes());
  Bytes pcm(static_cast<std::size_t>(wanted), 0xEE);
  for (int room : {wanted - 1, 0, -1})
    EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), dsd.data(), bytes, pcm.data(), room), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), nullptr, bytes, pcm.data(), wanted), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), dsd.data(), bytes, nullptr, wanted), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), dsd.data(), -1, pcm.data(), wanted), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), dsd.data(), 2147483647, pcm.data(), wanted), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(nullptr, dsd.data(), bytes, pcm.data(), wanted), -1);
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), nullptr, 0, nullptr, 0), 0);
  EXPECT_EQ(pcm, Bytes(pcm.size(), 0xEE));
  EXPECT_EQ(DSDtoPCMBuf_ToPCM(engine.get(), dsd.data(), bytes, pcm.data(), wanted), wanted);
  EXPECT_TRUE(std::equal(pcm.begin(), pcm.end(), expected.begin()));
  EXPECT_EQ(DSDtoPCMBuf_Delay(nullptr), -1);
  CloseDSDtoPCMBuf(nullptr);
}

TEST(DsdToPcmBuf, ArgumentsOutOfRangeGiveNoEngine) {
  const int kMax = 2147483647, kMin = -kMax - 1;
  for (int dsd_rate : {0, -1, kMin, kMax, 98304001, 44099})
    EXPECT_EQ(GetCDSDtoPCMBufClass(dsd_rate, 44100, false, 24, false), nullptr) << dsd_rate;
  for (int pcm_rate : {0, -1, kMin, kMax, 2822401, 172})
    EXPECT_EQ(GetCDSDtoPCMBufClass(2822400, pcm_rate, false, 24, false), nullptr) << pcm_rate;
  for (int bits : {0, 1, -8, 20, 64, kMax, kMin})
    EXPECT_EQ(GetCDSDtoPCMBufClass(2822400, 44100, false, bits, false), nullptr) << bits;
}

// ---- Threads ----------------------------------------------------------------------------------

TEST(DsdToPcmBuf, EnginesAtOnceGiveTheirOwnBytes) {
  const Watchdog watchdog(200);
  std::vector<std::future<bool>> running;
  for (int copy = 0; copy < 2; ++copy)
    for (const Stream& stream : {kStreams[1], kStreams[3], kStreams[7]})
      running.push_back(std::async(std::launch::async, [stream] {
        const Bytes left = RandomChannel(stream.bytes, 7), right = RandomChannel(stream.bytes, 8);
        Engine engine(stream);
        SendCut(engine, left, right, 97);
        const Bytes expected = OnePass(stream, left, right);  // jobs and engines side by side
        return std::equal(engine.pcm().begin(), engine.pcm().end(), expected.begin());
      }));
  for (auto& one : running) EXPECT_TRUE(one.get());
}

TEST(DsdToPcmBuf, ThreadsSleepBetweenBuffersAndEndWithTheEngine) {
  const Watchdog watchdog(100);
  for (bool used : {false, true}) {
    Engine engine(kStreams[0]);
    if (used) engine.Send(Bytes(100, 0x55), Bytes(100, 0x0F));
    const std::clock_t start = std::clock();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    // Processor time of all threads; one that looks round for work would use up most of it.
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 10);
  }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
/// Makes engines until the system refuses one, with `megabytes` of address space to spare: 0 when
/// the others still work and one of them can be replaced.
int MakeWithin(int megabytes) {
  const Watchdog watchdog(60);
  const Bytes dsd(2 * 512, 0x69);
  Bytes pcm(512 * 6);
  std::vector<CDSDtoPCMBuf*> engines;
  engines.reserve(1000);
  std::FILE* const statm = std::fopen("/proc/self/statm", "r");
  unsigned long pages = 0;
  if (!statm || std::fscanf(statm, "%lu", &pages) != 1) return 99;
  const rlim_t space =
      pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (static_cast<rlim_t>(megabytes) << 20);
  const rlimit limit{space, space};
  if (setrlimit(RLIMIT_AS, &limit) != 0) return 99;
  const auto make = [] { return GetCDSDtoPCMBufClass(2822400, 768000, false, 24, false); };
  while (CDSDtoPCMBuf* const engine = make()) {
    engines.push_back(engine);
    if (engines.size() == engines.capacity()) return 1;
  }
  if (engines.empty()) return 2;
  CloseDSDtoPCMBuf(engines.back());
  engines.back() = make();
  for (CDSDtoPCMBuf* const engine : engines) {
    if (DSDtoPCMBuf_ToPCM(engine, dsd.data(), 8, pcm.data(), 512 * 6) < 0) return 3;
    CloseDSDtoPCMBuf(engine);
  }
  return 0;
}

// The system refuses memory or either thread, depending on where it runs out.
TEST(DsdToPcmBuf, RefusedMemoryAndThreadsGiveNoEngine) {
  for (int megabytes = 20; megabytes < 80; megabytes += 3) {
    const pid_t child = fork();
    if (child == 0) _exit(MakeWithin(megabytes));
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << megabytes << ": " << status;
  }
}
#endif

}  // namespace
