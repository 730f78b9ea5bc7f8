// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/tags/id3_frames.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "formats/bytes/byte_order.h"
#include "formats/tags/id3_block.h"

namespace corvin::formats {
namespace {

constexpr std::uint64_t kLargestSize = (1u << 28) - 1;  // four times seven bits

// A file of nothing but frame headers would take many times its size in memory.
constexpr std::size_t kMostFrames = 16384;

// Frames of version 2.2 that 2.4 or 2.3 has under another name, with the same content.
constexpr std::pair<std::string_view, std::string_view> kNamesOf22[] = {
    {"BUF", "RBUF"}, {"CNT", "PCNT"}, {"COM", "COMM"}, {"CRA", "AENC"}, {"EQU", "EQUA"},
    {"ETC", "ETCO"}, {"GEO", "GEOB"}, {"IPL", "IPLS"}, {"MCI", "MCDI"}, {"MLL", "MLLT"},
    {"POP", "POPM"}, {"REV", "RVRB"}, {"RVA", "RVAD"}, {"SLT", "SYLT"}, {"STC", "SYTC"},
    {"TAL", "TALB"}, {"TBP", "TBPM"}, {"TCM", "TCOM"}, {"TCO", "TCON"}, {"TCP", "TCMP"},
    {"TCR", "TCOP"}, {"TDA", "TDAT"}, {"TDY", "TDLY"}, {"TEN", "TENC"}, {"TFT", "TFLT"},
    {"TIM", "TIME"}, {"TKE", "TKEY"}, {"TLA", "TLAN"}, {"TLE", "TLEN"}, {"TMT", "TMED"},
    {"TOA", "TOPE"}, {"TOF", "TOFN"}, {"TOL", "TOLY"}, {"TOR", "TORY"}, {"TOT", "TOAL"},
    {"TP1", "TPE1"}, {"TP2", "TPE2"}, {"TP3", "TPE3"}, {"TP4", "TPE4"}, {"TPA", "TPOS"},
    {"TPB", "TPUB"}, {"TRC", "TSRC"}, {"TRD", "TRDA"}, {"TRK", "TRCK"}, {"TS2", "TSO2"},
    {"TSA", "TSOA"}, {"TSC", "TSOC"}, {"TSI", "TSIZ"}, {"TSP", "TSOP"}, {"TSS", "TSSE"},
    {"TST", "TSOT"}, {"TT1", "TIT1"}, {"TT2", "TIT2"}, {"TT3", "TIT3"}, {"TXT", "TEXT"},
    {"TXX", "TXXX"}, {"TYE", "TYER"}, {"UFI", "UFID"}, {"ULT", "USLT"}, {"WAF", "WOAF"},
    {"WAR", "WOAR"}, {"WAS", "WOAS"}, {"WCM", "WCOM"}, {"WCP", "WCOP"}, {"WPB", "WPUB"},
    {"WXX", "WXXX"}, {"PIC", "PIC "},  // whose content is of another form
};

std::uint32_t SevenBitSize(const std::uint8_t* bytes) {
  std::uint32_t size = 0;
  for (int i = 0; i < 4; ++i) size = size << 7 | (bytes[i] & 0x7fu);
  return size;
}

bool IsSevenBit(const std::uint8_t* bytes) {
  return std::none_of(bytes, bytes + 4, [](std::uint8_t byte) { return byte > 0x7f; });
}

// Takes back the zero byte that was put behind each 0xff.
std::vector<std::uint8_t> Resynchronised(ByteSpan bytes) {
  std::vector<std::uint8_t> plain;
  plain.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    plain.push_back(bytes[i]);
    if (bytes[i] == 0xff && i + 1 < bytes.size() && bytes[i + 1] == 0) ++i;
  }
  return plain;
}

bool IsFrameId(ByteSpan bytes, std::size_t length) {
  return bytes.size() >= length && std::all_of(bytes.begin(), bytes.begin() + length, [](auto c) {
           return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
         });
}

class Splitter {
 public:
  explicit Splitter(Id3Frames& to) : to_(to) {}

  bool Run(ByteSpan block) {
    if (Id3BlockBytes(block) == 0 || block[3] < 2 || block[3] > 4) return false;
    to_.version = block[3];
    flags_ = block[5];
    const std::size_t size = SevenBitSize(&block[6]);
    block = block.subspan(kId3HeaderBytes);
    if (size > block.size()) to_.warnings.emplace_back("the tag is cut short");
    block = block.first(std::min(size, block.size()));
    constexpr std::uint8_t kExtendedOrCompressed = 0x40;
    if (to_.version == 2 && (flags_ & kExtendedOrCompressed) != 0) {
      to_.warnings.emplace_back("the tag is compressed in a way that was never published");
      return true;
    }
    if (to_.version < 4 && IsUnsynchronised()) block = Resynchronise(block);
    if (to_.version > 2 && (flags_ & kExtendedOrCompressed) != 0) SkipExtendedHeader(block);
    Walk(block);
    return true;
  }

 private:
  bool IsUnsynchronised() const { return (flags_ & 0x80) != 0; }

  ByteSpan Resynchronise(ByteSpan bytes) {
    return to_.resynchronised.emplace_back(Resynchronised(bytes));
  }

  void SkipExtendedHeader(ByteSpan& block) {
    // Some writers set the flag and begin with a frame.
    if (block.size() < 4 || IsFrameId(block, 4)) return;
    const std::size_t bytes =
        to_.version == 4 ? SevenBitSize(block.data())
                         : std::size_t{4} + Load<std::uint32_t>(ByteOrder::kBig, block.data());
    block = block.subspan(std::min(bytes, block.size()));
  }

  void Walk(ByteSpan block) {
    const std::size_t id_bytes = to_.version == 2 ? 3 : 4;
    const std::size_t header_bytes = to_.version == 2 ? 6 : 10;
    while (block.size() >= header_bytes && block[0] != 0) {
      if (!IsFrameId(block, id_bytes)) {
        to_.warnings.push_back(std::to_string(block.size()) + " bytes of the tag are no frame");
        return;
      }
      if (to_.frames.size() == kMostFrames) {
        to_.warnings.push_back("frames beyond the first " + std::to_string(kMostFrames) +
                               " are left out");
        return;
      }
      Id3Frame frame;
      frame.header.id.assign(block.begin(), block.begin() + static_cast<long>(id_bytes));
      const std::size_t stated = StatedSize(block);
      const std::uint8_t status = to_.version == 2 ? 0 : block[8];
      const std::uint8_t form = to_.version == 2 ? 0 : block[9];
      block = block.subspan(header_bytes);
      if (stated > block.size()) {
        to_.warnings.push_back("frame " + frame.header.id + " is cut short");
      }
      frame.body = block.first(std::min(stated, block.size()));
      block = block.subspan(frame.body.size());
      Take(frame, status, form);
    }
  }

  std::size_t StatedSize(ByteSpan frame) const {
    if (to_.version == 2) {
      return static_cast<std::size_t>(frame[3]) << 16 | static_cast<std::size_t>(frame[4]) << 8 |
             frame[5];
    }
    const std::size_t plain = Load<std::uint32_t>(ByteOrder::kBig, &frame[4]);
    if (to_.version == 3) return plain;
    // A widespread writer of 2.4 states plain sizes: they show where only they lead to a frame.
    const std::size_t size = SevenBitSize(&frame[4]);
    if (!IsSevenBit(&frame[4])) return plain;
    return !LeadsOn(frame, size) && LeadsOn(frame, plain) ? plain : size;
  }

  // Whether a frame, padding or the end follows.
  static bool LeadsOn(ByteSpan frame, std::size_t size) {
    const ByteSpan body = frame.subspan(kId3HeaderBytes);
    if (size > body.size()) return false;
    const ByteSpan next = body.subspan(size);
    return next.empty() || next[0] == 0 || IsFrameId(next, 4);
  }

  void Take(Id3Frame& frame, std::uint8_t status, std::uint8_t form) {
    bool whole = true;
    if (to_.version == 2) {
      const auto name =
          std::find_if(std::begin(kNamesOf22), std::end(kNamesOf22),
                       [&](const auto& pair) { return pair.first == frame.header.id; });
      if (name == std::end(kNamesOf22)) {
        to_.warnings.push_back("frame " + frame.header.id + " of ID3v2.2 has no successor");
        return;
      }
      frame.header.id = name->second;
    } else if (to_.version == 3) {
      whole = Unwrap23(frame, status, form);
    } else {
      whole = Unwrap24(frame, status, form);
    }
    if (!whole) {
      to_.warnings.push_back("frame " + frame.header.id + " is damaged");
      return;
    }
    to_.frames.push_back(std::move(frame));
  }

  static std::optional<std::uint8_t> TakeByte(ByteSpan& body, bool is_there) {
    if (!is_there || body.empty()) return std::nullopt;
    const std::uint8_t byte = body[0];
    body = body.subspan(1);
    return byte;
  }

  static bool Unwrap23(Id3Frame& frame, std::uint8_t status, std::uint8_t form) {
    Id3FrameHeader& header = frame.header;
    header.dropped_with_tag = (status & 0x80) != 0;
    header.dropped_with_file = (status & 0x40) != 0;
    header.read_only = (status & 0x20) != 0;
    header.is_compressed = (form & 0x80) != 0;
    const bool encrypted = (form & 0x40) != 0;
    const bool grouped = (form & 0x20) != 0;
    const std::size_t extra = (header.is_compressed ? 4u : 0u) + encrypted + grouped;
    if (frame.body.size() < extra) return false;
    if (header.is_compressed) {
      header.data_bytes = Load<std::uint32_t>(ByteOrder::kBig, frame.body.data());
      frame.body = frame.body.subspan(4);
    }
    header.encryption = TakeByte(frame.body, encrypted);
    header.group = TakeByte(frame.body, grouped);
    return true;
  }

  bool Unwrap24(Id3Frame& frame, std::uint8_t status, std::uint8_t form) {
    Id3FrameHeader& header = frame.header;
    header.dropped_with_tag = (status & 0x40) != 0;
    header.dropped_with_file = (status & 0x20) != 0;
    header.read_only = (status & 0x10) != 0;
    header.is_compressed = (form & 0x08) != 0;
    const bool grouped = (form & 0x40) != 0;
    const bool encrypted = (form & 0x04) != 0;
    const bool sized = (form & 0x01) != 0;
    const std::size_t extra = (sized ? 4u : 0u) + encrypted + grouped;
    if (frame.body.size() < extra) return false;
    header.group = TakeByte(frame.body, grouped);
    header.encryption = TakeByte(frame.body, encrypted);
    if (sized) {
      if (header.IsPacked()) header.data_bytes = SevenBitSize(frame.body.data());
      frame.body = frame.body.subspan(4);
    }
    if ((form & 0x02) != 0 || IsUnsynchronised()) frame.body = Resynchronise(frame.body);
    return true;
  }

  Id3Frames& to_;
  std::uint8_t flags_ = 0;
};

}  // namespace

bool SplitId3Block(ByteSpan block, Id3Frames& to) { return Splitter(to).Run(block); }

void Id3BlockBuilder::PutSize(std::uint64_t size, bool seven_bits) {
  const int group = seven_bits ? 7 : 8;
  const unsigned mask = seven_bits ? 0x7f : 0xff;
  for (int i = 3; i >= 0; --i) {
    bytes_.push_back(static_cast<std::uint8_t>(size >> (group * i) & mask));
  }
}

void Id3BlockBuilder::Add(std::string_view id, std::string_view body, ByteSpan behind) {
  Id3FrameHeader header;
  header.id = id;
  Add(header, {reinterpret_cast<const std::uint8_t*>(body.data()), body.size()}, behind);
}

void Id3BlockBuilder::Add(const Id3FrameHeader& header, ByteSpan body, ByteSpan behind) {
  const bool is_24 = version_ == Id3Version::k24;
  if (bytes_.empty()) bytes_.resize(kId3HeaderBytes);
  // Of an encrypted content 2.4 has to state the length too.
  const bool sized = is_24 ? header.IsPacked() : header.is_compressed;
  const std::size_t extra =
      (sized ? 4u : 0u) + header.encryption.has_value() + header.group.has_value();
  const std::uint64_t size = extra + body.size() + behind.size();
  is_too_large_ = is_too_large_ || bytes_.size() + size > kLargestSize;
  if (is_too_large_) return;
  bytes_.insert(bytes_.end(), header.id.begin(), header.id.end());
  PutSize(size, is_24);
  const int status = header.dropped_with_tag * 4 + header.dropped_with_file * 2 + header.read_only;
  bytes_.push_back(static_cast<std::uint8_t>(status << (is_24 ? 4 : 5)));
  const int form = is_24 ? header.group.has_value() * 0x40 + header.is_compressed * 0x08 +
                               header.encryption.has_value() * 0x04 + sized * 0x01
                         : header.is_compressed * 0x80 + header.encryption.has_value() * 0x40 +
                               header.group.has_value() * 0x20;
  bytes_.push_back(static_cast<std::uint8_t>(form));
  if (sized && !is_24) PutSize(header.data_bytes, false);
  if (header.group && is_24) bytes_.push_back(*header.group);
  if (header.encryption) bytes_.push_back(*header.encryption);
  if (header.group && !is_24) bytes_.push_back(*header.group);
  if (sized && is_24) PutSize(header.data_bytes, true);
  bytes_.insert(bytes_.end(), body.begin(), body.end());
  bytes_.insert(bytes_.end(), behind.begin(), behind.end());
}

bool Id3BlockBuilder::Finish(std::vector<std::uint8_t>& block) {
  block.clear();
  const std::size_t frames = bytes_.size() - std::min(bytes_.size(), kId3HeaderBytes);
  if (is_too_large_ || frames > kLargestSize) return false;
  if (frames == 0) return true;
  const std::uint8_t start[] = {'I', 'D', '3', static_cast<std::uint8_t>(version_), 0, 0};
  std::copy(std::begin(start), std::end(start), bytes_.begin());
  for (std::size_t i = 0; i < 4; ++i) {
    bytes_[6 + i] = static_cast<std::uint8_t>(frames >> 7 * (3 - i) & 0x7f);
  }
  block = std::move(bytes_);
  return true;
}

}  // namespace corvin::formats
