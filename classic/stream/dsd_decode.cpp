// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sides of a decoding stream and its entry points.

#include "classic/stream/dsd_decode.h"

#include <limits>

namespace {

constexpr auto kNoLimit = [] { return std::numeric_limits<std::uint64_t>::max(); };

}  // namespace

CDSDDecode::CDSDDecode() = default;
CDSDDecode::~CDSDDecode() = default;

int CDSDDecode::Init(int channels, int dsdRate, int pcmRate, int bits) {
  if (!InitRings(channels, dsdRate, pcmRate, bits)) return -1;
  converter = std::make_unique<CDSDtoPCM>(BufferReadProcDec, this, BufferWriteProcDec, this,
                                          channels, dsdRate, pcmRate, bits);
  return 0;
}

int CDSDDecode::DSDWrite(const unsigned char* data, int size) {
  return Push(DsdWriter(), data, size, dsdBlockSize);
}

int CDSDDecode::PCMRead(unsigned char* buffer, int size) {
  return Pull(PcmReader(), buffer, size, kNoLimit);
}

int CDSDDecode::DSDRead(unsigned char* buffer, int size) {
  return Pull(DsdReader(), buffer, size, kNoLimit);
}

int CDSDDecode::PCMWrite(const unsigned char* data, int size) {
  return Push(PcmWriter(), data, size, dsdBlockSize);
}

int BufferReadProcDec(void* buffer, int size, void* context) {
  return static_cast<CDSDDecode*>(context)->DSDRead(static_cast<unsigned char*>(buffer), size);
}

int BufferWriteProcDec(void* buffer, int size, void* context) {
  return static_cast<CDSDDecode*>(context)->PCMWrite(static_cast<unsigned char*>(buffer), size);
}

// ---- Entry points -----------------------------------------------------------------------------

extern "C" {

void* DSDDecodeInit(int) {
  try {
    auto stream = std::make_unique<CDSDDecode>();
    return stream->Init(2, 2822400, 44100, 24) == 0 ? stream.release() : nullptr;
  } catch (...) {
    return nullptr;
  }
}

int DSDDecodeSetDSDData(void* stream, const unsigned char* data, int size) {
  return stream ? static_cast<CDSDDecode*>(stream)->DSDWrite(data, size) : 0;
}

int DSDDecodeGetPCMData(void* stream, unsigned char* buffer, int size) {
  return stream ? static_cast<CDSDDecode*>(stream)->PCMRead(buffer, size) : 0;
}

int DSDDecodeExit(void* stream) {
  delete static_cast<CDSDDecode*>(stream);
  return 0;
}

}  // extern "C"
