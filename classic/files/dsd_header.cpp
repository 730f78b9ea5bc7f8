// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Headers as the classic engine writes them. Hosts compare these bytes: other channel counts carry
// the stereo figures, and the size of a DSF sound chunk leaves out its own header.

#include "classic/files/dsd_header.h"

#include <algorithm>

#include "formats/bytes/byte_order.h"

namespace corvin::formats {
namespace {

constexpr std::uint64_t kDsfBlockBytes = 4096;
constexpr std::uint64_t kDsfBlockSamples = kDsfBlockBytes * 8;

/// Puts fields one after the other.
class FieldWriter {
 public:
  FieldWriter(std::FILE* file, ByteOrder order) : file_(file), order_(order) {}

  void Id(const char (&text)[5]) { Put(reinterpret_cast<const std::uint8_t*>(text), 4); }

  template <class UInt>
  void Number(UInt value) {
    std::uint8_t bytes[sizeof(UInt)];
    for (std::size_t i = 0; i < sizeof(UInt); ++i)
      bytes[order_ == ByteOrder::kLittle ? i : sizeof(UInt) - 1 - i] =
          static_cast<std::uint8_t>(std::uint64_t{value} >> 8 * i);
    for (std::size_t i = 0; i < sizeof(UInt); i += 4)
      Put(bytes + i, std::min<std::size_t>(4, sizeof(UInt) - i));
  }
  void U8(std::uint8_t value) { Number(value); }
  void U32(std::uint64_t value) { Number(static_cast<std::uint32_t>(value)); }
  void U64(std::uint64_t value) { Number(value); }
  void Fill(std::uint8_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) Put(&value, 1);
  }

  bool ok() const { return ok_; }

 private:
  void Put(const std::uint8_t* bytes, std::size_t count) {
    if (std::fwrite(bytes, 1, count, file_) == count) return;
    ok_ = false;
    // A yen sign where a backslash was meant and no line feed: log scanners look for these bytes.
    std::fwrite("Write error\xC2\xA5n", 1, 14, stderr);
  }

  std::FILE* file_;
  ByteOrder order_;
  bool ok_ = true;
};

std::uint64_t SampleCount(const DsdHeader& header) {
  return header.pcm_frames * header.dsd_rate_hz / header.pcm_rate_hz;
}

void WriteDsf(FieldWriter& out, const DsdHeader& header) {
  const std::uint64_t samples = SampleCount(header);
  const std::uint64_t sound =
      (samples + kDsfBlockSamples - 1) / kDsfBlockSamples * header.channels * kDsfBlockBytes;
  out.Id("DSD ");
  out.U64(28);
  out.U64(92 + sound);
  out.U64(0);
  out.Id("fmt ");
  out.U64(52);
  out.U32(1);
  out.U32(0);
  out.U32(2);  // channel type and number of a stereo file, whatever the channels
  out.U32(2);
  out.U32(header.dsd_rate_hz);
  out.U32(1);
  out.U64(samples);
  out.U32(kDsfBlockBytes);
  out.U32(0);
  out.Id("data");
  out.U64(sound);
}

void WriteDsdiff(FieldWriter& out, const DsdHeader& header) {
  const std::uint64_t sound = SoundBytes(header) * header.channels;
  out.Id("FRM8");
  out.U64(4ull * header.channels + 130 + sound);
  out.Id("DSD ");
  out.Id("FVER");
  out.U64(4);
  out.U32(0x01050000);
  out.Id("PROP");
  out.U64(94);  // this and the size of "CHNL" are a stereo file's
  out.Id("SND ");
  out.Id("FS  ");
  out.U64(4);
  out.U32(header.dsd_rate_hz);
  out.Id("CHNL");
  out.U64(10);
  out.Number(static_cast<std::uint16_t>(header.channels));
  out.Id("SLFT");
  if (header.channels == 2) out.Id("SRGT");
  for (std::uint32_t c = 2; c < header.channels; ++c) out.Id("    ");
  out.Id("CMPR");
  out.U64(20);
  out.Id("DSD ");
  out.U8(14);
  for (const char c : {'n', 'o', 't', ' ', 'c', 'o', 'm', 'p', 'r', 'e', 's', 's', 'e', 'd', '\0'})
    out.U8(static_cast<std::uint8_t>(c));
  out.Id("ABSS");
  out.U64(8);
  out.U64(0);
  out.Id("DSD ");
  out.U64(sound);
}

std::uint8_t Bcd(std::uint64_t value) {
  return static_cast<std::uint8_t>(value / 10 % 10 * 16 + value % 10);
}

void WriteOneBit(FieldWriter& out, const DsdHeader& header) {
  const std::uint64_t seconds = (header.pcm_frames + header.pcm_rate_hz - 1) / header.pcm_rate_hz;
  out.Id("1bit");
  out.U32(0);
  out.U32(0x10000000);
  out.U32(2048 + SoundBytes(header) * header.channels);  // the low word; the high one stays 0
  out.U32(0);
  out.U32(128);
  out.U32(2048);
  out.U32(0);
  out.U8(Bcd(seconds / 3600));
  out.U8(Bcd(seconds / 60 % 60));
  out.U8(Bcd(seconds % 60));
  out.U8(0);
  out.U32(header.dsd_rate_hz);
  out.U32(0);
  out.U32(std::uint64_t{header.channels} << 24);
  out.U32(header.channels == 1 ? 0x40000000 : 0x44000000);
  out.Fill(0, 76);
  out.Fill(' ', 1920);
}

}  // namespace

std::uint64_t SoundBytes(const DsdHeader& header) { return (SampleCount(header) + 7) / 8; }

bool WriteDsdHeader(std::FILE* file, ContainerKind kind, const DsdHeader& header) {
  FieldWriter out(file, kind == kDsf ? ByteOrder::kLittle : ByteOrder::kBig);
  if (kind == kDsf)
    WriteDsf(out, header);
  else if (kind == kDsdiff)
    WriteDsdiff(out, header);
  else
    WriteOneBit(out, header);
  return out.ok();
}

bool FinishDsf(std::FILE* file, std::uint64_t file_bytes, std::uint64_t tag_offset) {
  FieldWriter out(file, ByteOrder::kLittle);
  if (fseeko(file, 12, SEEK_SET) != 0) return false;
  out.U64(file_bytes);
  if (tag_offset != 0) out.U64(tag_offset);
  return out.ok();
}

}  // namespace corvin::formats
