// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/mend/faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "cli/files/descriptor_bytes.h"

namespace corvin::cli {
namespace {

constexpr size_t kId3HeadBytes = 10;

// The bytes of an ID3v2 block that may begin there; 0: none does.
uint64_t id3_bytes_at(const std::byte* head) {
  const auto at = [&](size_t i) { return static_cast<uint32_t>(head[i]); };
  if (std::memcmp(head, "ID3", 3) != 0 || at(3) < 2 || at(3) > 4 || at(4) == 0xff) return 0;
  uint64_t bytes = 0;
  for (size_t i = 6; i < kId3HeadBytes; ++i) {
    if (at(i) > 0x7f) return 0;
    bytes = bytes << 7 | at(i);
  }
  const bool has_footer = at(3) == 4 && (at(5) & 0x10) != 0;
  return bytes + kId3HeadBytes * (has_footer ? 2 : 1);
}

// It stands behind the sound, if it is there at all: within that, the letters are sound.
std::optional<LostTag> find_tag(const DsdInput& input, uint64_t from) {
  constexpr size_t kMostBefore = 1 << 20;
  const int descriptor = open(input.path().c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return {};
  std::optional<LostTag> found;
  std::vector<std::byte> bytes(kMostBefore);
  struct stat status {};
  const uint64_t size_of_file =
      fstat(descriptor, &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
  const uint64_t left = size_of_file - std::min(size_of_file, from);
  const int64_t got = read_at(descriptor, from, bytes);
  bytes.resize(static_cast<size_t>(std::max<int64_t>(got, 0)));
  for (size_t i = 0; i + kId3HeadBytes <= bytes.size() && !found; ++i) {
    const uint64_t size = id3_bytes_at(&bytes[i]);
    if (size == 0 || size > left - std::min<uint64_t>(left, i)) continue;
    LostTag tag{.offset = from + i, .block = std::vector<std::byte>(size)};
    if (read_at(descriptor, tag.offset, tag.block) == static_cast<int64_t>(size))
      found = std::move(tag);
  }
  close(descriptor);
  return found;
}

void find_lost_tag(DsdInput& input, Faults& faults) {
  uint64_t end_of_sound = 0;
  for (const corvin_file_chunk& chunk : input.file().chunks()) {
    if (std::string_view(chunk.id) == "ID3 ") return;
    if (std::string_view(chunk.id) == "data") end_of_sound = chunk.offset + chunk.bytes;
  }
  faults.lost_tag = find_tag(input, end_of_sound);
  if (faults.lost_tag) faults.tags.read_id3(faults.lost_tag->block);
}

struct Remedy {
  const char* fault;  // a part of it
  const char* what;
};

// Of two that fit the first one counts.
constexpr Remedy kRemedies[] = {
    {"samples per channel that it declares", "the copy states those that are there"},
    {"bytes of padding", "the copy has them"},
    {"a tag that is not there", "the copy points to none"},
    {"belong to neither sound nor tag", "they are left out"},
    {"no pad byte", "the copy has it"},
    {"does not name each channel", "the copy numbers those without a name"},
    {"are no chunk", "they are left out"},
    {"do not belong to the sound", "they are left out"},
    {"that rest is left out", "the copy ends with whole groups"},
    {"declare no samples", "the copy states those that are there"},
    {"states no size", "the copy states it"},
    {"channel type is that of", "the copy has the usual one"},
    {"states format version", "the copy states version 1"},
    {"bits per sample", "the copy states 1"},
    {"does not say that the sound is plain DSD", "the copy says so"},
    {"impossible size", "it is left out with all that is behind it"},
    {"is cut short", "the copy states what is there of it"},
    {"the header states a file of", "the copy states its own size"},
    {"the form states", "the copy states its own size"},
    {"states a wrong size", "the copy states the true one"},
    {"the sound chunk states", "the copy states the true size"},
};

}  // namespace

Faults faults_of(DsdInput& input) {
  Faults faults{.of_file = input.oddities(), .of_tags = {}, .tags = {}, .lost_tag = {}};
  try {
    faults.tags = input.file().all_tags();
    if (input.info().container == CORVIN_DSF && !faults.of_file.empty())
      find_lost_tag(input, faults);
    faults.of_tags = faults.tags.warnings();
  } catch (const Error& error) {
    throw Failure(kBadInput, input.path(), std::string("its tags cannot be read: ") + error.what());
  }
  return faults;
}

std::string remedy_of(const std::string& fault, const Faults& faults) {
  const auto fits = [&](const char* part) { return fault.find(part) != std::string::npos; };
  if (faults.lost_tag && fits("a tag that is not there"))
    return "one was found at byte " + std::to_string(faults.lost_tag->offset) +
           ", and the copy points to it";
  if (faults.lost_tag && fits("belong to neither sound nor tag"))
    return "the tag among them, at byte " + std::to_string(faults.lost_tag->offset) + ", is kept";
  for (const Remedy& remedy : kRemedies)
    if (fits(remedy.fault)) return remedy.what;
  return "the copy has it as it should be";
}

}  // namespace corvin::cli
