// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Reading a source through stdio and reporting how far it got.

#include "classic/foundation/callback_info.h"

#include <algorithm>
#include <cstring>

#include "formats/bytes/bit_order.h"

using corvin::formats::kSilence;

CCallbackInfoDec::CCallbackInfoDec(std::FILE* source, std::uint64_t sound_bytes,
                                   CorvinProgressCallback user_progress, void* user_data)
    : stream(source), length(sound_bytes), progress(user_progress), progressData(user_data) {}

int CCallbackInfoDec::Read(void* buffer, int size) {
  if (cancelled) return 0;
  const auto wanted = static_cast<std::size_t>(
      std::min<std::uint64_t>(static_cast<std::uint64_t>(std::max(size, 0)), Remaining()));
  const std::size_t count = wanted ? std::fread(buffer, 1, wanted, stream) : 0;
  position += count;
  if (count == 0) ended = true;
  return static_cast<int>(count);
}

bool CCallbackInfoDec::Progress() {
  if (cancelled || ended) return false;
  if (!progress || length == 0) return true;
  const auto percent =
      static_cast<int>(static_cast<double>(position) * 100.0 / static_cast<double>(length));
  if (percent != lastPercent) {
    lastPercent = percent;
    if (!progress(percent, progressData)) cancelled = true;
  }
  return !cancelled;
}

// ---- DSF blocks -------------------------------------------------------------------------------

CCallbackInfoBlock::CCallbackInfoBlock(std::FILE* source, std::uint64_t sound_bytes,
                                       CorvinProgressCallback user_progress, void* user_data,
                                       int block_size, int channel_count)
    : CCallbackInfoDec(source, sound_bytes, user_progress, user_data),
      block(static_cast<std::size_t>(block_size) * static_cast<std::size_t>(channel_count)),
      cursor(block_size),
      blockSize(block_size),
      channels(channel_count) {}

CCallbackInfoBlock::~CCallbackInfoBlock() = default;

bool CCallbackInfoBlock::Progress() { return CCallbackInfoDec::Progress(); }

bool CCallbackInfoBlock::LoadGroup() {
  const std::size_t count = std::fread(block.data(), 1, block.size(), stream);
  std::fill(block.begin() + static_cast<std::ptrdiff_t>(count), block.end(), kSilence);
  cursor = 0;
  return count != 0;
}

int CCallbackInfoBlock::Read(void* buffer, int size) {
  if (cancelled) return 0;
  const auto wanted = static_cast<int>(
      std::min<std::uint64_t>(static_cast<std::uint64_t>(std::max(size, 0)), Remaining()));
  auto* out = static_cast<unsigned char*>(buffer);
  int delivered = 0;
  while (delivered < wanted) {
    if (cursor == blockSize && !LoadGroup()) break;
    for (int c = 0; c < channels; ++c)
      *out++ = block[static_cast<std::size_t>(c) * static_cast<std::size_t>(blockSize) +
                     static_cast<std::size_t>(cursor)];
    ++cursor;
    delivered += channels;
  }
  position += static_cast<std::uint64_t>(delivered);
  if (delivered == 0) ended = true;
  return delivered;
}

// ---- PCM --------------------------------------------------------------------------------------

CCallbackInfo::CCallbackInfo(std::FILE* source, std::uint64_t pcm_bytes,
                             CorvinProgressCallback user_progress, void* user_data, int dsd_rate,
                             int pcm_rate, int bytes_per_frame)
    : CCallbackInfoDec(source, pcm_bytes, user_progress, user_data),
      dsdRate(dsd_rate),
      pcmRate(pcm_rate),
      divisor(bytes_per_frame) {}

bool CCallbackInfo::Progress() { return CCallbackInfoDec::Progress(); }

int CCallbackInfo::Read(void* buffer, int size) {
  if (cancelled || size < 1) return 0;
  framesRead += static_cast<std::uint64_t>(size / divisor);
  unitsRead += 32768;
  const int count = CCallbackInfoDec::Read(buffer, size);
  std::memset(static_cast<char*>(buffer) + count, 0, static_cast<std::size_t>(size - count));
  return count;
}

// ---- What a conversion is handed --------------------------------------------------------------

int readProc(void* buffer, int size, void* info) {
  return static_cast<CCallbackInfo*>(info)->Read(buffer, size);
}

bool progressProc(void* info) { return static_cast<CCallbackInfo*>(info)->Progress(); }

int readProcDec(void* buffer, int size, void* info) {
  return static_cast<CCallbackInfoDec*>(info)->Read(buffer, size);
}

int readProcBlock(void* buffer, int size, void* info) {
  return static_cast<CCallbackInfoBlock*>(info)->Read(buffer, size);
}

bool progressProcDec(void* info) { return static_cast<CCallbackInfoDec*>(info)->Progress(); }

bool progressProcBlock(void* info) { return static_cast<CCallbackInfoBlock*>(info)->Progress(); }
