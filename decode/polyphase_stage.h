// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The filter stage of every planned pair of rates: turns a channel's bits into floats and has a pool
// of workers compute the output samples, each from one of several coefficient sets as a schedule
// tells. It neither designs the sets nor quantises.

#ifndef CORVIN_DECODE_POLYPHASE_STAGE_H_
#define CORVIN_DECODE_POLYPHASE_STAGE_H_

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "corvin.h"
#include "decode/dsd_reader.h"
#include "decode/polyphase_output.h"
#include "foundation/aligned_storage.h"
#include "foundation/block_ring.h"
#include "foundation/dispatch_semaphore.h"
#include "foundation/gate.h"
#include "foundation/kernels.h"

class CFormatChangeDen;

/// A worker with a mailbox for one job.
class CORVIN_API CLpfDen {
 public:
  /// @param sets        coefficient sets, `phases` of them, on 32-byte boundaries
  /// @param batchSamples  input samples in a job, at most
  CLpfDen(int channel, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
          int blockParam);
  CLpfDen(const CLpfDen&) = delete;
  CLpfDen& operator=(const CLpfDen&) = delete;
  virtual ~CLpfDen() = default;

  /// Hands over `bytes` bytes of history and new samples, to be filtered into `out`; 0 bytes ends the
  /// stream. Waits until the mailbox is free.
  void Post(int tag, const float* data, int bytes, CBufferDec* out);
  /// Waits until the worker's thread runs.
  void WaitReady() { ready_.Close(); }

 protected:
  CBufferDec mailbox_;
  float** sets_;
  int phases_;
  int taps_total_;
  int block_samples_;
  CFormatChangeDen* owner_;
  Gate ready_;
  std::mutex data_lock_;  ///< guards the mailbox's contents and `out_block_`
  std::atomic<bool> running_ = false;
  CBufferDec* out_block_ = nullptr;
  std::thread thread_;
};

class CORVIN_API CLpfCPUDen : public CLpfDen {
 public:
  CLpfCPUDen(int channel, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
             int blockParam, DOT8Dec_DATA* schedule, int scheduleLength);
  /// Wakes the worker if it waits for a job, and joins it.
  ~CLpfCPUDen() override;

 private:
  static void LpfCPUDenThread(CLpfCPUDen* self) { self->Run(); }
  void Run();
  int Filter();

  DOT8Dec_DATA* schedule_;
  int schedule_length_;
  Dot8Planned kernel_;
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
  void DispatchFIR(int tag, const float* data, int bytes, CBufferDec* out);
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
  bool lsb_first_;
  std::size_t history_floats_;
  AlignedFloats history_;  ///< filter memory, then the new samples of the block
  std::mutex queue_lock_;
  std::vector<CLpfDen*> idle_queue_;
  std::size_t take_count_ = 0;
  std::size_t put_count_ = 0;
  std::unique_ptr<DispatchSemaphore> idle_workers_;
  std::vector<std::unique_ptr<CLpfDen>> workers_;  ///< last, for they use all of the above
  std::thread thread_;
};

#endif  // CORVIN_DECODE_POLYPHASE_STAGE_H_
