// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/verify.h"

#include "cli/files/pcm_input.h"
#include "cli/files/pcm_kind.h"
#include "cli/words/failure.h"

namespace corvin::cli {

Failure verification_failed(const std::string& name, const std::string& why) {
  return {kVerifyFailed, name,
          "does not hold what was written: " + why + "; nothing is kept of it"};
}

void verify_pcm(const WrittenPcm& written) {
  try {
    PcmInput input(written.path);
    PayloadHash hash;
    const PcmPayload form{.is_float = is_float(written.format), .bits = bits_of(written.format)};
    const uint64_t frames = read_payload(
        input, form, [&](std::span<const uint8_t> bytes, uint64_t) { hash.add(bytes); });
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
    PayloadHash hash;
    read_payload(file, [&](std::span<const uint8_t> bytes, uint64_t) { hash.add(bytes); });
    return {.samples = file.info().samples, .hash = hash.value()};
  } catch (const Error& error) {
    throw verification_failed(name, error.what());
  }
}

}  // namespace corvin::cli
