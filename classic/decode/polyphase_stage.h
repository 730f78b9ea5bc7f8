// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The filter stage of every planned pair of rates: hands a channel's bits to a pool of workers,
// which turn them into floats and compute the output samples, each from one of several coefficient
// sets as a schedule tells. It neither designs the sets nor quantises.

#ifndef CORVIN_CLASSIC_DECODE_POLYPHASE_STAGE_H_
#define CORVIN_CLASSIC_DECODE_POLYPHASE_STAGE_H_

#include <memory>
#include <thread>
#include <vector>

#include "classic/decode/dsd_reader.h"
#include "classic/decode/polyphase_output.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/block_ring.h"
#include "classic/foundation/filter_worker.h"
#include "classic/foundation/kernels.h"
#include "corvin.h"

class CFormatChangeDen;

class CORVIN_API CLpfDen : public FilterWorker {
 public:
  /// @param sets          coefficient sets, `phases` of them, on 32-byte boundaries
  /// @param batchSamples  input samples in a job, at most
  /// @param blockParam    input samples that the schedule covers
  CLpfDen(int channel, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
          int blockParam);
  ~CLpfDen() override;

  /// Hands over `bytes` bytes of history and new samples, to be filtered into `out`; 0 bytes ends
  /// the stream. Waits until the mailbox is free.
  /// @param unset  leading bytes from before the stream's start, which count as samples of 0
  void Post(int tag, const char* data, int bytes, int unset, CBufferDec* out);

 protected:
  void BecomeIdle() override;

  float** sets_;
  int phases_;
  int taps_total_;
  int block_samples_;
  int unset_bytes_ = 0;

 private:
  CFormatChangeDen* owner_;
};

class CORVIN_API CLpfCPUDen : public CLpfDen {
 public:
  CLpfCPUDen(int channel, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
             int blockParam, bool lsbFirst, DOT8Dec_DATA* schedule, int scheduleLength);
  ~CLpfCPUDen() override;

 private:
  /// Runs the schedule over each of the job's blocks.
  int Filter(const char* in, int bytes, CBufferDec& out) override;

  bool lsb_first_;
  DOT8Dec_DATA* schedule_;
  int schedule_length_;
  Dot8Planned kernel_;
  AlignedFloats work_;  ///< filter memory, then the samples of a block
};

class CORVIN_API CFormatChangeDen {
 public:
  /// Starts the stage. DEFTAPS holds the design's length at this moment.
  /// @param batchSamples    input samples in the reader's blocks, whole multiples of blockParam
  /// @param bits            not used
  /// @param channels        channels in the reader's blocks
  /// @param sets            coefficient sets of DEFTAPS / phases taps
  /// @param next            the channel's output stage
  /// @param interleaved     bytes of the channels in turn; else the stereo block is halved
  /// @param decimation      not used
  /// @param blockParam      input samples that the schedule covers
  /// @param schedule        one entry per output sample of them
  CFormatChangeDen(CDiskReaderDec* reader, int channel, int batchSamples, int bits, int channels,
                   float** sets, CDecimationDen* next, bool interleaved, bool lsbFirst, int phases,
                   int decimation, int blockParam, DOT8Dec_DATA* schedule, int scheduleLength);
  CFormatChangeDen(const CFormatChangeDen&) = delete;
  CFormatChangeDen& operator=(const CFormatChangeDen&) = delete;
  /// Joins the dispatcher and the workers.
  ~CFormatChangeDen();

  /// Waits for an idle worker and posts a job to it.
  void DispatchFIR(int tag, const char* data, int bytes, int unset, CBufferDec* out);
  /// Returns a worker to the idle queue.
  void AddTail(CLpfDen* worker);

 private:
  static void FormatChangeDenThread(CFormatChangeDen* self) { self->Run(); }
  void Run();

  CDiskReaderDec* reader_;
  int channel_;
  int channels_;
  CDecimationDen* next_;
  bool interleaved_;
  int history_bytes_;
  std::vector<char> packed_;  ///< filter memory, then the new samples of the block
  std::unique_ptr<IdleQueue<CLpfDen>> idle_;
  std::vector<std::unique_ptr<CLpfDen>> workers_;  ///< last, for they use all of the above
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_DECODE_POLYPHASE_STAGE_H_
