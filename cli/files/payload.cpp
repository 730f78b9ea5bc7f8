// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/payload.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <vector>

#include "cli/files/dsd_input.h"
#include "cli/files/packed_samples.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;
constexpr size_t kBytesAtOnce = 1 << 16;  // of a channel

void put(std::span<double> samples, const PcmPayload& form, std::vector<uint8_t>& to) {
  pack(samples, form.bits == 32 ? CORVIN_F32 : CORVIN_F64, to);
}

// What is read fills an int from its top; the sign fills what the bits leave of their bytes.
void put(std::span<int> samples, const PcmPayload& form, std::vector<uint8_t>& to) {
  const int width = (form.bits + 7) / 8;
  for (int& sample : samples) sample >>= 8 * width - form.bits;
  pack_bytes(samples, static_cast<size_t>(width), to);
}

template <class Sample>
uint64_t read_samples(PcmInput& input, const PcmPayload& form, const TakePayload& take) {
  std::vector<Sample> samples(kFramesAtOnce * input.channels());
  std::vector<uint8_t> bytes;
  uint64_t frames = 0;
  while (const size_t got = input.read(samples)) {
    bytes.clear();
    put(std::span(samples).first(got * input.channels()), form, bytes);
    frames += got;
    take(bytes, frames);
  }
  return frames;
}

}  // namespace

PayloadHash::PayloadHash() : state_(XXH3_createState()) {
  if (!state_ || XXH3_128bits_reset(state_.get()) != XXH_OK) throw std::bad_alloc();
}

void PayloadHash::add(std::span<const uint8_t> bytes) {
  XXH3_128bits_update(state_.get(), bytes.data(), bytes.size());
}

XXH128_hash_t PayloadHash::value() const { return XXH3_128bits_digest(state_.get()); }

std::string digits_of(const XXH128_hash_t& sum) {
  XXH128_canonical_t bytes;
  XXH128_canonicalFromHash(&bytes, sum);
  std::string digits;
  for (const unsigned char byte : bytes.digest) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", byte);
    digits += pair;
  }
  return digits;
}

uint64_t read_payload(File& file, const TakePayload& take) {
  const corvin_file_info info = file.info();
  std::vector<uint8_t> bytes(kBytesAtOnce * info.channels);
  uint64_t done = 0;
  file.seek(0);
  while (const size_t got = file.read(bytes.data(), kBytesAtOnce)) {
    done += got;
    take(std::span(bytes).first(got * info.channels), std::min(8 * done, info.samples));
  }
  return done;
}

uint64_t read_payload(PcmInput& input, const PcmPayload& form, const TakePayload& take) {
  return form.is_float ? read_samples<double>(input, form, take)
                       : read_samples<int>(input, form, take);
}

std::string payload_sum(const std::string& path) {
  PayloadHash sum;
  const auto take = [&](std::span<const uint8_t> bytes, uint64_t) { sum.add(bytes); };
  if (auto dsd = DsdInput::open(path)) {
    try {
      read_payload(dsd->file(), take);
    } catch (const Error& error) {
      throw Failure(kBadInput, path, error.what());
    }
  } else {
    PcmInput pcm(path);
    read_payload(pcm, {.is_float = pcm.is_float(), .bits = static_cast<int>(pcm.bits())}, take);
  }
  return digits_of(sum.value());
}

}  // namespace corvin::cli
