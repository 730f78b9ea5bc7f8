// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The up-sampling stage: a thread per channel decodes PCM to floats, and a pool of workers filters
// it to the modulator's rate, block by block into the modulator's ring.

#ifndef CORVIN_CLASSIC_ENCODE_UPSAMPLING_STAGE_H_
#define CORVIN_CLASSIC_ENCODE_UPSAMPLING_STAGE_H_

#include <pthread.h>

#include <memory>
#include <thread>
#include <vector>

#include "classic/encode/modulator.h"
#include "classic/encode/pcm_reader.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/filter_worker.h"
#include "classic/foundation/kernels.h"
#include "corvin.h"

class CRateConvert2;

/// A worker with a mailbox for one job.
class CORVIN_API CLpf : public FilterWorker {
 public:
  ~CLpf() override;

  /// Hands over `bytes` bytes of history and new samples, to be filtered into `dest`; 0 bytes end
  /// the stream. Waits until the mailbox is free.
  void Post(int seq, const float* data, int bytes, CBuffer* dest);
  /// As Post(), the name that other hosts know.
  void Post2(int seq, const float* data, int bytes, CBuffer* dest);

 protected:
  CLpf(CRateConvert2* owner, int mailbox_bytes) : FilterWorker(mailbox_bytes), owner_(owner) {}
  void BecomeIdle() override;

 private:
  CRateConvert2* owner_;
};

class CORVIN_API CLpfCPU2 : public CLpf {
 public:
  /// @param phases       coefficient sets, L of them, on 32-byte boundaries
  /// @param frames       new frames in a job, at most
  /// @param blockFrames  frames that the schedule covers
  CLpfCPU2(CRateConvert2* owner, int L, float** phases, DOT8_DATA* schedule, int entries,
           int frames, int blockFrames);
  ~CLpfCPU2() override;

 private:
  /// Runs the schedule over each of the job's blocks.
  int Filter(const char* in, int bytes, CBufferDec& out) override;

  int phase_count_;
  float** phases_;
  int taps_total_;
  DOT8_DATA* schedule_;
  int entries_;
  int block_frames_;
  Dot8Planned kernel_;
};

class CORVIN_API CRateConvert2 {
 public:
  /// Starts the stage. DEFTAPS_PCMtoDSD and iSamples hold the design at this moment.
  /// @param bits       8, 16, 24 or 32
  /// @param prototype  not used: the sets are made of it
  /// @param phases     coefficient sets; not used when the rates are equal
  /// @param shaper     the channel's modulator
  /// @param schedule   one entry per output sample of iSamples frames
  /// @param flags      bit 0 starts workers; without it only equal rates can be converted
  /// @param frames     frames in the reader's blocks, a multiple of iSamples
  /// @param mutex      not used: the stage guards its own queue
  CRateConvert2(CDiskReader* reader, int ch, int pcmRate, int bits, int channels, int dsdRate,
                float* prototype, float** phases, int L, int M, CShaper* shaper,
                DOT8_DATA* schedule, int entries, unsigned char flags, unsigned int frames,
                pthread_mutex_t* mutex);
  CRateConvert2(const CRateConvert2&) = delete;
  CRateConvert2& operator=(const CRateConvert2&) = delete;
  /// Joins the thread and the workers.
  ~CRateConvert2();

  /// Returns a worker to the idle queue.
  void AddTail(CLpf* worker);

 private:
  static void RateConvertThread(CRateConvert2* self) { self->Run(); }
  void Run();

  CDiskReader* reader_;
  int channel_;
  int bits_;
  int channels_;
  bool direct_;  ///< the rates are equal
  CShaper* shaper_;
  std::size_t history_floats_;
  AlignedFloats history_;  ///< filter memory, then the new samples of the block
  std::unique_ptr<IdleQueue<CLpf>> idle_;
  std::vector<std::unique_ptr<CLpf>> workers_;  ///< last, for they use all of the above
  std::thread thread_;
};

#endif  // CORVIN_CLASSIC_ENCODE_UPSAMPLING_STAGE_H_
