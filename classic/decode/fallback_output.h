// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The output stage behind the fallback filter: picks the samples that fall on the PCM grid and
// quantises them into the writer's interleaved blocks. Output is at most stereo.

#ifndef CORVIN_CLASSIC_DECODE_FALLBACK_OUTPUT_H_
#define CORVIN_CLASSIC_DECODE_FALLBACK_OUTPUT_H_

#include <thread>

#include "classic/decode/pcm_writer.h"
#include "classic/foundation/block_ring.h"
#include "corvin.h"

class CORVIN_API CDecimationDec {
 public:
  /// Builds the stage with a ring of `ring_depth` blocks; Start() runs it.
  /// @param stride        output samples in a frame
  /// @param blockSamples  B: 8 x B input samples in a block
  CDecimationDec(CWriterDec* writer, int channel, int channels, int stride, int dsdRate,
                 int pcmRate, int blockSamples, int bits, bool bigEndian, int ring_depth = 4);
  CDecimationDec(const CDecimationDec&) = delete;
  CDecimationDec& operator=(const CDecimationDec&) = delete;
  /// Joins the thread.
  ~CDecimationDec();

  void Start() { thread_ = std::thread(DecimationThread, this); }
  CBufferDec* Write1Lock(int block, int);
  CBufferDec* Read1Lock(int block, int);
  void Abandon() { blocks_.Abandon(); }

 private:
  static void DecimationThread(CDecimationDec* self) { self->Run(); }
  void Run();

  int channel_;
  CWriterDec* writer_;
  CBufferListDec blocks_;
  int stride_;
  long long dsd_rate_;
  long long pcm_rate_;
  long long block_samples_;
  int bits_;
  bool big_endian_;
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_FALLBACK_OUTPUT_H_
