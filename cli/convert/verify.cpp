// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/verify.h"

#include <new>
#include <vector>

#include "cli/files/packed_samples.h"
#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"
#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

constexpr size_t kFramesAtOnce = 1 << 14;
constexpr size_t kBytesAtOnce = 1 << 16;  // of a channel

template <class Sample>
uint64_t hash_samples(PcmInput& input, corvin_sample_format format, PayloadHash& hash) {
  std::vector<Sample> samples(kFramesAtOnce * input.channels());
  std::vector<uint8_t> bytes;
  uint64_t frames = 0;
  while (const size_t got = input.read(samples)) {
    bytes.clear();
    pack(std::span<const Sample>(samples).first(got * input.channels()), format, bytes);
    hash.add(bytes);
    frames += got;
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

Failure verification_failed(const std::string& name, const std::string& why) {
  return {kVerifyFailed, name,
          "does not hold what was written: " + why + "; nothing is kept of it"};
}

void verify_pcm(const WrittenPcm& written) {
  try {
    PcmInput input(written.path);
    PayloadHash hash;
    const uint64_t frames = is_float(written.format)
                                ? hash_samples<double>(input, written.format, hash)
                                : hash_samples<int>(input, written.format, hash);
    if (frames != written.frames)
      throw verification_failed(written.name, "has " + std::to_string(frames) + " frames of " +
                                                  std::to_string(written.frames));
    if (!XXH128_isEqual(hash.value(), written.hash))
      throw verification_failed(written.name, "its samples are others");
  } catch (const Failure& failure) {
    if (failure.code() == kVerifyFailed) throw;
    throw verification_failed(written.name, failure.what());
  }
}

DsdPayload dsd_payload_of(File& file, const std::string& name) {
  try {
    const corvin_file_info info = file.info();
    std::vector<uint8_t> bytes(kBytesAtOnce * info.channels);
    PayloadHash hash;
    file.seek(0);
    while (const size_t got = file.read(bytes.data(), kBytesAtOnce))
      hash.add(std::span(bytes).first(got * info.channels));
    return {.samples = info.samples, .hash = hash.value()};
  } catch (const Error& error) {
    throw verification_failed(name, error.what());
  }
}

}  // namespace corvin::cli
