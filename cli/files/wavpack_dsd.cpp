// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/wavpack_dsd.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <fstream>
#include <string_view>

#include "cli/files/pcm_tags.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;

class Memory : public ByteStream {
 public:
  bool seek(std::uint64_t offset) override {
    offset_ = offset;
    return true;
  }
  bool write(std::span<const std::byte> bytes) override {
    content.resize(std::max<size_t>(content.size(), offset_ + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), content.begin() + static_cast<std::ptrdiff_t>(offset_));
    offset_ += bytes.size();
    return true;
  }
  std::vector<std::byte> content;

 private:
  uint64_t offset_ = 0;
};

// The header that the library writes before any sound.
std::vector<std::byte> header_of(const WriterSettings& settings) {
  Memory memory;
  const Writer writer(memory, settings);
  return memory.content;
}

void put_big_endian(uint64_t number, std::byte* to) {
  for (int i = 0; i < 8; ++i) to[i] = static_cast<std::byte>(number >> (56 - 8 * i));
}

std::vector<std::byte> tag_chunk(const TagSet& tags) {
  std::vector<std::byte> chunk;
  if (tags.empty()) return chunk;
  const std::vector<std::byte> block = tags.write_id3();
  for (const char c : std::string_view("ID3 ")) chunk.push_back(static_cast<std::byte>(c));
  chunk.resize(12);
  put_big_endian(block.size(), &chunk[4]);
  chunk.insert(chunk.end(), block.begin(), block.end());
  if (chunk.size() % 2 != 0) chunk.push_back(std::byte{});
  return chunk;
}

}  // namespace

std::unique_ptr<WavPackDsd> WavPackDsd::open(const std::string& path) {
  struct stat status;
  // What is read of a pipe is gone for those who look at it next.
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  char start[4] = {};
  std::ifstream(path, std::ios::binary).read(start, sizeof start);
  if (std::string_view(start, sizeof start) != "wvpk") return nullptr;
  char error[80] = {};
  Handle context(WavpackOpenFileInput(path.c_str(), error, OPEN_DSD_NATIVE | OPEN_ALT_TYPES, 0));
  if (!context || (WavpackGetQualifyMode(context.get()) & QMODE_DSD_AUDIO) == 0 ||
      WavpackGetNumSamples64(context.get()) < 0)
    return nullptr;
  return std::unique_ptr<WavPackDsd>(new WavPackDsd(path, std::move(context)));
}

bool WavPackDsd::seek(std::uint64_t offset) {
  offset_ = offset;
  return true;
}

std::int64_t WavPackDsd::read(std::span<std::byte> bytes) {
  size_t done = 0;
  const auto copy = [&](const std::vector<std::byte>& from, uint64_t at) {
    const size_t part = std::min<uint64_t>(bytes.size() - done, from.size() - at);
    std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(at), part,
                bytes.begin() + static_cast<std::ptrdiff_t>(done));
    done += part;
    offset_ += part;
  };
  while (done < bytes.size()) {
    if (offset_ < head_.size()) {
      copy(head_, offset_);
      continue;
    }
    const uint64_t place = offset_ - head_.size();
    if (place >= sound_bytes_) {
      if (place - sound_bytes_ < tail_.size()) copy(tail_, place - sound_bytes_);
      break;
    }
    const uint64_t frame = place / channels_;
    const bool is_there = frame >= first_ && frame < first_ + unpacked_.size() / channels_;
    if (!is_there && !unpack_from(frame)) return -1;
    for (size_t i = place - first_ * channels_;
         i < unpacked_.size() && done < bytes.size() && offset_ < head_.size() + sound_bytes_;
         ++i) {
      bytes[done++] = static_cast<std::byte>(unpacked_[i]);
      ++offset_;
    }
  }
  return static_cast<std::int64_t>(done);
}

std::int64_t WavPackDsd::length() {
  return static_cast<std::int64_t>(head_.size() + sound_bytes_ + tail_.size());
}

std::string WavPackDsd::damage() const {
  const int errors = WavpackGetNumErrors(context_.get());
  if (is_cut_short_) return "is cut short: silence stands for what is missing";
  if (errors == 0) return {};
  return "is damaged: " + std::to_string(errors) + " of its blocks fail their check";
}

// ---- Details --------------------------------------------------------------------------------

WavPackDsd::WavPackDsd(const std::string& path, Handle context) : context_(std::move(context)) {
  WriterSettings settings;
  settings.container = CORVIN_DSDIFF;
  settings.dsd_rate = WavpackGetNativeSampleRate(context_.get());
  settings.channels = static_cast<uint32_t>(WavpackGetNumChannels(context_.get()));
  const auto mask = static_cast<uint32_t>(WavpackGetChannelMask(context_.get()));
  if (std::popcount(mask) == static_cast<int>(settings.channels)) settings.speakers = mask;
  try {
    head_ = header_of(settings);
  } catch (const Error&) {
    settings.speakers = 0;  // a layout that DSDIFF has no names for
    head_ = header_of(settings);
  }
  channels_ = settings.channels;
  sound_bytes_ = static_cast<uint64_t>(WavpackGetNumSamples64(context_.get())) * channels_;
  if (sound_bytes_ % 2 != 0) tail_.push_back(std::byte{});
  const std::vector<std::byte> tags = tag_chunk(read_wavpack_tags(path));
  tail_.insert(tail_.end(), tags.begin(), tags.end());
  constexpr size_t kFormHeadBytes = 12;
  put_big_endian(static_cast<uint64_t>(length()) - kFormHeadBytes, &head_[4]);
  put_big_endian(sound_bytes_, &head_[head_.size() - 8]);
}

bool WavPackDsd::unpack_from(uint64_t frame) {
  const auto sample = static_cast<int64_t>(frame);
  if (frame != next_ && !is_cut_short_ && !WavpackSeekSample64(context_.get(), sample))
    return false;
  unpacked_.resize(kFramesAtOnce * channels_);
  const uint64_t got = WavpackUnpackSamples(context_.get(), unpacked_.data(), kFramesAtOnce);
  unpacked_.resize(got * channels_);
  first_ = frame;
  next_ = frame + got;
  if (got > 0) return true;
  constexpr int32_t kSilence = 0x69;
  is_cut_short_ = true;
  unpacked_.assign(kFramesAtOnce * channels_, kSilence);
  next_ = frame + kFramesAtOnce;
  return true;
}

}  // namespace corvin::cli
