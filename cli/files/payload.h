// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of a file as bytes that are the same whatever holds it, and their sums.

#ifndef CORVIN_CLI_FILES_PAYLOAD_H_
#define CORVIN_CLI_FILES_PAYLOAD_H_

#include <xxhash.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "cli/files/pcm_input.h"
#include "corvin.hpp"

namespace corvin::cli {

/** XXH3 of bytes, 128 bits. */
class PayloadHash {
 public:
  PayloadHash();
  void add(std::span<const uint8_t> bytes);
  XXH128_hash_t value() const;

 private:
  struct Free {
    void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
  };
  std::unique_ptr<XXH3_state_t, Free> state_;
};

/** The sum in hexadecimal digits, in the usual order of its bytes. */
std::string digits_of(const XXH128_hash_t& sum);

/** Takes bytes in order, and the samples or frames of the file that are through with them. */
using TakePayload = std::function<void(std::span<const uint8_t> bytes, uint64_t done)>;

/** Reads all of a DSD file's sound: a byte of each channel in turn, the oldest sample in the highest
 *  bit. The bits behind the last sample are silence, so that a file that knows whole bytes only has
 *  the same ones.
 *  @return  bytes of each channel. Throws Error */
uint64_t read_payload(File& file, const TakePayload& take);

/** How samples of PCM are turned into bytes: interleaved, least significant byte first, in as many
 *  bytes as the bits need; integers of fewer bits with their sign in front. */
struct PcmPayload {
  bool is_float = false;
  int bits = 24;
};

/** Reads all of a PCM file's sound so.
 *  @return  frames. Throws Failure */
uint64_t read_payload(PcmInput& input, const PcmPayload& form, const TakePayload& take);

/** The sum of a file's payload, as digits. Throws Failure. */
std::string payload_sum(const std::string& path);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PAYLOAD_H_
