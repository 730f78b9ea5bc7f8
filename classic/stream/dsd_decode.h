// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The stream behind DSDDecodeInit() and its companions: the host pushes DSD and pulls PCM, the
// converter the other way round.

#ifndef CORVIN_CLASSIC_STREAM_DSD_DECODE_H_
#define CORVIN_CLASSIC_STREAM_DSD_DECODE_H_

#include "classic/stream/stream_rings.h"
#include "corvin.h"

class CORVIN_API CDSDDecode : public StreamRings {
 public:
  CDSDDecode();
  /// May run while other threads wait in the functions below; they return what they have moved.
  ~CDSDDecode();

  /// Builds the rings: blocks of 4096 bytes per channel of DSD, and of the PCM that belongs to 4096
  /// samples. No other call may be running.
  /// @param channels  1..4096; @param bits  8 or more
  /// @param dsdRate   Hz; @param pcmRate  Hz, at least dsdRate / 4096
  /// @return  0; -1 for other arguments, after which nothing can be pushed or pulled
  /// Throws std::bad_alloc.
  int Init(int channels, int dsdRate, int pcmRate, int bits);

  /// The host's sides. Both return the bytes moved: `size`, or less when the stream ends meanwhile;
  /// 0 for a null pointer or a size that is not positive.
  int DSDWrite(const unsigned char* data, int size);
  int PCMRead(unsigned char* buffer, int size);

  /// The converter's sides; they return alike. PCMWrite places bytes inside a block as if blocks
  /// were `dsdBlockSize` long, as far as such a place exists: converters are written to that.
  int DSDRead(unsigned char* buffer, int size);
  int PCMWrite(const unsigned char* data, int size);
};

/// DSDRead() and PCMWrite() of the CDSDDecode at `context`.
CORVIN_API int BufferReadProcDec(void* buffer, int size, void* context);
CORVIN_API int BufferWriteProcDec(void* buffer, int size, void* context);

#endif  // CORVIN_CLASSIC_STREAM_DSD_DECODE_H_
