// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The output stage behind the polyphase filter: quantises a channel's floats into the writer's
// interleaved blocks. Output is at most stereo.

#ifndef CORVIN_CLASSIC_DECODE_POLYPHASE_OUTPUT_H_
#define CORVIN_CLASSIC_DECODE_POLYPHASE_OUTPUT_H_

#include <thread>

#include "classic/decode/pcm_writer.h"
#include "classic/foundation/block_ring.h"
#include "corvin.h"

class CORVIN_API CDecimationDen {
 public:
  /// Starts its thread.
  /// @param blocks       depth of its input ring
  /// @param blockFloats  output samples in a block
  CDecimationDen(CWriterDec* writer, int channel, int blocks, int channels, int bits,
                 int blockFloats, bool bigEndian);
  CDecimationDen(const CDecimationDen&) = delete;
  CDecimationDen& operator=(const CDecimationDen&) = delete;
  /// Joins the thread.
  ~CDecimationDen();

  /// The producer's and the consumer's side of the input ring; it has one reader, whatever the
  /// second argument of Write1Lock says.
  CBufferDec* Write1Lock(int seq, int);
  CBufferDec* Read1Lock(int seq, int reader);
  void Abandon() { blocks_.Abandon(); }

 private:
  static void DecimationDenThread(CDecimationDen* self) { self->Run(); }
  void Run();

  int channel_;
  CWriterDec* writer_;
  CBufferListDec blocks_;
  int out_channels_;
  int bits_;
  bool big_endian_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_POLYPHASE_OUTPUT_H_
