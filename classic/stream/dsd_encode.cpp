// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sides of an encoding stream and its entry points.

#include "classic/stream/dsd_encode.h"

CDSDEncode::CDSDEncode() = default;
CDSDEncode::~CDSDEncode() = default;

int CDSDEncode::Init(int channels, int dsdRate, int pcmRate, int bits) {
  if (!InitRings(channels, dsdRate, pcmRate, bits)) return -1;
  converter = std::make_unique<CPCMtoDSD2>(BufferReadProcEnc, this, BufferWriteProcEnc, this,
                                           channels, dsdRate, pcmRate, bits);
  return 0;
}

int CDSDEncode::DSDWrite(const unsigned char* data, int size) {
  return Push(DsdWriter(), data, size, dsdBlockSize);
}

int CDSDEncode::PCMWrite(const unsigned char* data, int size) {
  return Push(PcmWriter(), data, size, dsdBlockSize);
}

int CDSDEncode::DSDRead(unsigned char* buffer, int size) {
  return Pull(DsdReader(), buffer, size, [this]() -> std::uint64_t {
    return pcmWritePos == pcmReadPos ? 0 : dsdWritePos - dsdReadPos;
  });
}

int CDSDEncode::PCMRead(unsigned char* buffer, int size) {
  return Pull(PcmReader(), buffer, size, [this] { return pcmWritePos - pcmReadPos; });
}

int BufferReadProcEnc(void* buffer, int size, void* context) {
  return static_cast<CDSDEncode*>(context)->DSDRead(static_cast<unsigned char*>(buffer), size);
}

int BufferWriteProcEnc(void* buffer, int size, void* context) {
  return static_cast<CDSDEncode*>(context)->PCMWrite(static_cast<unsigned char*>(buffer), size);
}

// ---- Entry points -----------------------------------------------------------------------------

extern "C" {

void* DSDEncode(void) {
  try {
    auto stream = std::make_unique<CDSDEncode>();
    return stream->Init(2, 2822400, 44100, 24) == 0 ? stream.release() : nullptr;
  } catch (...) {
    return nullptr;
  }
}

int DSDEncodeSetPCMData(void* stream, const unsigned char* data, int size) {
  return stream ? static_cast<CDSDEncode*>(stream)->PCMWrite(data, size) : 0;
}

int DSDEncodeGetDSDData(void* stream, unsigned char* buffer, int size) {
  return stream ? static_cast<CDSDEncode*>(stream)->DSDRead(buffer, size) : 0;
}

int DSDEncodeExit(void* stream) {
  delete static_cast<CDSDEncode*>(stream);
  return 0;
}

}  // extern "C"
