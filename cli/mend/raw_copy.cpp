// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/mend/raw_copy.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/files/descriptor_bytes.h"
#include "cli/files/payload.h"
#include "cli/words/job_progress.h"

namespace corvin::cli {
namespace {

constexpr size_t kBytesAtOnce = 1 << 16;

std::vector<std::byte> big_endian(uint64_t number, size_t width) {
  std::vector<std::byte> bytes(width);
  for (size_t i = 0; i < width; ++i)
    bytes[i] = static_cast<std::byte>(number >> (8 * (width - 1 - i)));
  return bytes;
}

std::span<const std::byte> bytes_of(std::string_view text) {
  return std::as_bytes(std::span(text));
}

// The copy as it grows, and the file that it is one of.
class Copy {
 public:
  Copy(DsdInput& input, const OutputFile& output, std::string name)
      : input_(input),
        from_(open(input.path().c_str(), O_RDONLY | O_CLOEXEC)),
        to_(output.descriptor()),
        name_(std::move(name)) {
    if (from_ < 0) throw Failure(kBadInput, input.path(), std::strerror(errno));
  }
  ~Copy() { close(from_); }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;

  void put(std::span<const std::byte> bytes) {
    put_at(place_, bytes);
    place_ += bytes.size();
  }

  void put_at(uint64_t place, std::span<const std::byte> bytes) {
    if (!write_at(to_, place, bytes)) throw Failure(kWriteError, name_, std::strerror(errno));
  }

  void put_stretch(uint64_t offset, uint64_t bytes) {
    std::vector<std::byte> buffer(static_cast<size_t>(std::min<uint64_t>(bytes, kBytesAtOnce)));
    while (bytes > 0) {
      const auto part =
          std::span(buffer).first(static_cast<size_t>(std::min<uint64_t>(bytes, buffer.size())));
      const int64_t got = read_at(from_, offset, part);
      if (got != static_cast<int64_t>(part.size()))
        throw Failure(kBadInput, input_.path(),
                      got < 0 ? std::strerror(errno) : "ends while it is being read");
      put(part);
      offset += part.size();
      bytes -= part.size();
    }
  }

  void put_sound() {
    JobProgress progress(input_.path(), input_.info().dsd_rate);
    try {
      read_payload(input_.file(), [&](std::span<const uint8_t> bytes, uint64_t done) {
        put(std::as_bytes(bytes));
        progress.show(done, input_.info().samples);
      });
    } catch (const Error& error) {
      throw Failure(kBadInput, input_.path(), error.what());
    }
  }

  // A DSDIFF chunk's beginning; end_chunk() gets what comes back.
  uint64_t begin_chunk(std::string_view id) {
    put(bytes_of(id.substr(0, 4)));
    put(big_endian(0, 8));
    return place_;
  }

  void end_chunk(uint64_t begin) {
    const uint64_t bytes = place_ - begin;
    put_at(begin - 8, big_endian(bytes, 8));
    if (bytes % 2 != 0) put(big_endian(0, 1));
  }

  void put_chunk(std::string_view id, std::span<const std::byte> content) {
    const uint64_t begin = begin_chunk(id);
    put(content);
    end_chunk(begin);
  }

  void put_chunk(const corvin_file_chunk& chunk) {
    const uint64_t begin = begin_chunk(std::string_view(chunk.id, 4));
    put_stretch(chunk.offset, chunk.bytes);
    end_chunk(begin);
  }

  std::vector<std::byte> bytes_at(uint64_t offset, uint64_t most) const {
    std::vector<std::byte> bytes(static_cast<size_t>(most));
    const int64_t got = read_at(from_, offset, bytes);
    bytes.resize(static_cast<size_t>(std::max<int64_t>(got, 0)));
    return bytes;
  }

  uint64_t place() const { return place_; }

 private:
  DsdInput& input_;
  int from_, to_;
  std::string name_;
  uint64_t place_ = 0;
};

// ---- DSDIFF ---------------------------------------------------------------------------------

bool is(const corvin_file_chunk& chunk, std::string_view id) {
  return std::string_view(chunk.id, 4) == id;
}

// Chunks in the file's order; the parts of one follow it.
class DsdiffCopy {
 public:
  DsdiffCopy(DsdInput& input, const Faults& faults, Copy& copy)
      : input_(input),
        faults_(faults),
        copy_(copy),
        chunks_(input.file().chunks()),
        is_used_(chunks_.size(), false),
        writes_tags_(!faults.of_tags.empty()) {}

  void write() {
    const uint64_t form = copy_.begin_chunk("FRM8");
    copy_.put(bytes_of("DSD "));
    put_version();
    put_properties();
    bool has_sound = false;
    for (size_t i = 1; i < chunks_.size(); ++i) {
      const corvin_file_chunk& chunk = chunks_[i];
      const bool is_sound = is(chunk, "DSD ");
      if (is_used_[i] || chunk.is_part || (is_sound && has_sound)) continue;
      if (is_sound) {
        const uint64_t begin = copy_.begin_chunk("DSD ");
        copy_.put_sound();
        copy_.end_chunk(begin);
        has_sound = true;
      } else if (i + 1 < chunks_.size() && chunks_[i + 1].is_part) {
        const uint64_t begin = copy_.begin_chunk(std::string_view(chunk.id, 4));
        for (size_t k = i + 1; k < chunks_.size() && chunks_[k].is_part; ++k)
          copy_.put_chunk(chunks_[k]);
        copy_.end_chunk(begin);
      } else if (!writes_tags_ || !is(chunk, "ID3 ")) {
        copy_.put_chunk(chunk);
      }
    }
    if (writes_tags_ && !faults_.tags.empty())
      copy_.put_chunk("ID3 ", faults_.tags.write_id3(CORVIN_ID3_V24));
    copy_.end_chunk(form);
  }

 private:
  void put_version() {
    const corvin_file_chunk* version = nullptr;
    for (size_t i = 0; i < chunks_.size(); ++i) {
      if (!is(chunks_[i], "FVER")) continue;
      is_used_[i] = true;
      if (chunks_[i].bytes == 4) version = &chunks_[i];
    }
    if (version) return copy_.put_chunk(*version);
    copy_.put_chunk("FVER", big_endian(0x01050000, 4));
  }

  void put_properties() {
    const uint64_t begin = copy_.begin_chunk("PROP");
    copy_.put(bytes_of("SND "));
    copy_.put_chunk("FS  ", big_endian(input_.info().dsd_rate, 4));
    put_channels();
    put_compression();
    bool is_within = false;
    for (size_t i = 1; i < chunks_.size(); ++i) {
      const corvin_file_chunk& chunk = chunks_[i];
      if (!chunk.is_part) {
        is_within = is(chunk, "PROP");
        if (is_within) is_used_[i] = true;
        continue;
      }
      const bool is_put = is(chunk, "FS  ") || is(chunk, "CHNL") || is(chunk, "CMPR") ||
                          (writes_tags_ && is(chunk, "ID3 "));
      if (is_within && !is_put) copy_.put_chunk(chunk);
    }
    copy_.end_chunk(begin);
  }

  const corvin_file_chunk* last(std::string_view id) const {
    const corvin_file_chunk* found = nullptr;
    for (const corvin_file_chunk& chunk : chunks_)
      if (chunk.is_part && is(chunk, id)) found = &chunk;
    return found;
  }

  // The names that are there; others are numbered.
  void put_channels() {
    const uint32_t channels = input_.info().channels;
    std::vector<std::byte> content = big_endian(channels, 2);
    const corvin_file_chunk* chunk = last("CHNL");
    if (chunk && chunk->bytes > 2) {
      const auto names = copy_.bytes_at(
          chunk->offset + 2, std::min<uint64_t>(chunk->bytes - 2, 4u * channels) / 4 * 4);
      content.insert(content.end(), names.begin(), names.end());
    }
    for (auto named = static_cast<uint32_t>(content.size() - 2) / 4; named < channels; ++named) {
      char name[16];
      std::snprintf(name, sizeof name, "C%03u", static_cast<unsigned>(named));
      const auto bytes = bytes_of(name);
      content.insert(content.end(), bytes.begin(), bytes.begin() + 4);
    }
    copy_.put_chunk("CHNL", content);
  }

  void put_compression() {
    const corvin_file_chunk* chunk = last("CMPR");
    constexpr uint64_t kLongestName = 255;
    std::vector<std::byte> content;
    if (chunk) content = copy_.bytes_at(chunk->offset, std::min(chunk->bytes, 5 + kLongestName));
    const bool is_plain = content.size() >= 5 && std::memcmp(content.data(), "DSD ", 4) == 0 &&
                          content.size() >= 5 + static_cast<size_t>(content[4]);
    if (is_plain) return copy_.put_chunk("CMPR", content);
    constexpr std::string_view kPlain = "DSD \x0enot compressed";
    copy_.put_chunk("CMPR", bytes_of(kPlain));
  }

  DsdInput& input_;
  const Faults& faults_;
  Copy& copy_;
  std::vector<corvin_file_chunk> chunks_;
  std::vector<bool> is_used_;
  bool writes_tags_;  // anew, as what stands there is damaged
};

}  // namespace

void copy_dsdiff(DsdInput& input, const Faults& faults, const OutputFile& output,
                 const std::string& name) {
  Copy copy(input, output, name);
  DsdiffCopy(input, faults, copy).write();
}

// The header is kept with its text; the words of its size stand low word first.
void copy_one_bit(DsdInput& input, const OutputFile& output, const std::string& name) {
  Copy copy(input, output, name);
  const auto chunks = input.file().chunks();
  copy.put_stretch(0, chunks[0].bytes);
  copy.put_sound();
  copy.put_at(12, big_endian(copy.place() & 0xffffffff, 4));
  copy.put_at(16, big_endian(copy.place() >> 32, 4));
}

}  // namespace corvin::cli
