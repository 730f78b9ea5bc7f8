// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Whether what has been written is on the disk: the sound of the new file, read as any reader does,
// against the sound that was handed to its writer.

#ifndef CORVIN_CLI_CONVERT_VERIFY_H_
#define CORVIN_CLI_CONVERT_VERIFY_H_

#include <cstdint>
#include <string>

#include "cli/files/payload.h"
#include "cli/words/failure.h"
#include "corvin.hpp"

namespace corvin::cli {

/** A PCM file that was written. */
struct WrittenPcm {
  std::string path;  // where it is now
  std::string name;  // that it will have, for messages
  corvin_sample_format format = CORVIN_S24;
  uint64_t frames = 0;
  XXH128_hash_t hash{};  // of its interleaved samples in that format
};

/** Throws a Failure, kVerifyFailed, unless the file holds what was written. */
void verify_pcm(const WrittenPcm& written);

/** The samples and the hash of a DSD file's sound, its bytes interleaved, oldest bit first.
 *  @param name  of the file in messages. Throws Failure */
struct DsdPayload {
  uint64_t samples = 0;
  XXH128_hash_t hash{};
};
DsdPayload dsd_payload_of(File& file, const std::string& name);

Failure verification_failed(const std::string& name, const std::string& why);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CONVERT_VERIFY_H_
