// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The stream behind DSDEncode() and its companions: the host pushes PCM and pulls DSD. Its pulls
// take what has been pushed and never wait for more.

#ifndef CORVIN_CLASSIC_STREAM_DSD_ENCODE_H_
#define CORVIN_CLASSIC_STREAM_DSD_ENCODE_H_

#include "classic/stream/stream_rings.h"
#include "corvin.h"

class CORVIN_API CDSDEncode : public StreamRings {
 public:
  CDSDEncode();
  /// May run while other threads wait in the functions below; they return what they have moved.
  ~CDSDEncode();

  /// As CDSDDecode::Init(). Before it nothing can be pushed or pulled.
  int Init(int channels, int dsdRate, int pcmRate, int bits);

  /// As their namesakes in CDSDDecode.
  int DSDWrite(const unsigned char* data, int size);
  int PCMWrite(const unsigned char* data, int size);

  /// Both end when all has been taken that was pushed into their ring, and when all PCM has been
  /// pulled. Of a block that its pusher still holds they wait for the rest.
  int DSDRead(unsigned char* buffer, int size);
  int PCMRead(unsigned char* buffer, int size);
};

/// DSDRead() and PCMWrite() of the CDSDEncode at `context`: the same sides that the host has.
CORVIN_API int BufferReadProcEnc(void* buffer, int size, void* context);
CORVIN_API int BufferWriteProcEnc(void* buffer, int size, void* context);

#endif  // CORVIN_CLASSIC_STREAM_DSD_ENCODE_H_
