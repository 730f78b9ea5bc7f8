// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The filter stage of pairs of rates without a plan: turns a channel's bits into floats and has a
// pool of workers run the prototype filter at the input positions that the PCM grid keeps.

#ifndef CORVIN_CLASSIC_DECODE_FALLBACK_STAGE_H_
#define CORVIN_CLASSIC_DECODE_FALLBACK_STAGE_H_

#include <memory>
#include <thread>
#include <vector>

#include "classic/decode/dsd_reader.h"
#include "classic/decode/fallback_output.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/block_ring.h"
#include "classic/foundation/filter_worker.h"
#include "classic/foundation/kernels.h"
#include "corvin.h"

class CFormatChangeDec;

class CORVIN_API CLpfDec : public FilterWorker {
 public:
  /// @param filter      DEFTAPS taps on a 32-byte boundary
  /// @param blockBytes  B, bytes per channel in a block
  CLpfDec(int channel, float* filter, CFormatChangeDec* owner, int blockBytes, int pcmRate,
          int dsdRate);
  ~CLpfDec() override;

  /// Hands over DEFTAPS floats of history and the new samples, to be filtered into `dest`.
  /// @param bytes   bytes at `samples`; 0 ends the stream
  /// @param outPos  number of the first output sample
  /// @param inPos   number of the first new input sample
  void Post(int blockNumber, const float* samples, int bytes, long long outPos, long long inPos,
            CBufferDec* dest);

 protected:
  void BecomeIdle() override;

  const float* filter_;
  int taps_;
  long long block_samples_;
  long long pcm_rate_;
  long long dsd_rate_;
  long long out_position_ = 0;
  long long in_position_ = 0;

 private:
  CFormatChangeDec* owner_;
};

class CORVIN_API CLpfCPUDec : public CLpfDec {
 public:
  CLpfCPUDec(int channel, float* filter, CFormatChangeDec* owner, int blockBytes, int pcmRate,
             int dsdRate);
  ~CLpfCPUDec() override;

 private:
  /// Fills the destination sparsely: element i - in_position_ for each kept input position i.
  int Filter(const char* in, int bytes, CBufferDec& out) override;

  Dot8Plain kernel_;
};

class CORVIN_API CFormatChangeDec {
 public:
  /// Starts the stage. DEFTAPS holds the design's length at this moment.
  /// @param B            bytes per channel in a block
  /// @param pcmRate, bits  not used; the rates that count are pcmRate2 and dsdRate
  /// @param filter       DEFTAPS taps on a 32-byte boundary
  /// @param interleaved  bytes of the channels in turn; else each channel's bytes stand together
  CFormatChangeDec(CDiskReaderDec* reader, int channel, int B, int pcmRate, int bits, int channels,
                   float* filter, CDecimationDec* next, bool interleaved, bool lsbFirst,
                   int pcmRate2, int dsdRate, unsigned int reserved);
  CFormatChangeDec(const CFormatChangeDec&) = delete;
  CFormatChangeDec& operator=(const CFormatChangeDec&) = delete;
  /// Joins the dispatcher and the workers.
  ~CFormatChangeDec();

  /// Waits for an idle worker and posts a job to it.
  void DispatchFIR(int blockNumber, const float* samples, int bytes, long long outPos,
                   long long inPos, CBufferDec* dest);
  /// Returns a worker to the idle queue.
  void AddTail(CLpfDec* worker);

 private:
  static void FormatChangeThread(CFormatChangeDec* self) { self->Run(); }
  void Run();

  CDiskReaderDec* reader_;
  int channel_;
  int channels_;
  bool interleaved_;
  bool lsb_first_;
  std::size_t block_bytes_;
  long long pcm_rate_;
  long long dsd_rate_;
  CDecimationDec* next_;
  std::size_t taps_;
  AlignedFloats history_;  ///< filter memory, then the new samples of the block
  std::unique_ptr<IdleQueue<CLpfDec>> idle_;
  std::vector<std::unique_ptr<CLpfDec>> workers_;  ///< last, for they use all of the above
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_FALLBACK_STAGE_H_
