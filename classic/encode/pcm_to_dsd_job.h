// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One PCM to DSD conversion: plans the rates, designs filter and modulator, builds and runs the
// threads. It writes sound data only.

#ifndef CORVIN_CLASSIC_ENCODE_PCM_TO_DSD_JOB_H_
#define CORVIN_CLASSIC_ENCODE_PCM_TO_DSD_JOB_H_

#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "classic/encode/dsd_writer.h"
#include "classic/encode/modulator.h"
#include "classic/encode/pcm_reader.h"
#include "classic/encode/rate_plan.h"
#include "classic/encode/upsampling_stage.h"
#include "classic/foundation/aligned_storage.h"
#include "classic/foundation/polyphase.h"
#include "corvin.h"

class CORVIN_API CPCMtoDSD {
 public:
  static constexpr int kMaxChannels = 8;

  /// Builds the job; its threads run from here on. An argument out of range, or memory or threads
  /// that the system refuses, give a job that does nothing and whose result is -1.
  /// @param read        source of big-endian interleaved PCM; null with `pcmBuffer`
  /// @param out         stream behind the header; not touched with `outBuffer`
  /// @param channels    1..8
  /// @param dsdRate     Hz, up to 98304000
  /// @param pcmRate     Hz, dsdRate / 4096 .. dsdRate
  /// @param lsbFirst    first sample of a byte in its least significant bit
  /// @param bitsPerSample  8, 16, 24 or 32
  /// @param interleavedWriter  one byte per channel in turn; false: blocks of 4096 bytes a channel
  /// @param frames      PCM frames in the source: (frames * dsdRate / pcmRate + 7) / 8 bytes a
  ///                    channel come out
  /// @param flags       bit 0 starts filter workers, without which only equal rates are converted
  /// @param reserved    not used
  /// @param pcmBuffer   source in memory, or null; @param pcmBufferBytes its length
  /// @param outBuffer   destination in memory, or null; laid out as the writers do
  CPCMtoDSD(CorvinReadCallback read, void* readData, std::FILE* out, int channels, int dsdRate,
            int pcmRate, bool lsbFirst, int bitsPerSample, bool interleavedWriter,
            unsigned long long frames, unsigned char flags, unsigned int reserved, char* pcmBuffer,
            int pcmBufferBytes, char* outBuffer);
  CPCMtoDSD(const CPCMtoDSD&) = delete;
  CPCMtoDSD& operator=(const CPCMtoDSD&) = delete;
  /// Lets the conversion come to its end and joins every thread.
  ~CPCMtoDSD();

  /// Calls progress(data) every half second until it returns false, then waits for the end.
  /// @param progress  without it the call never returns
  /// @return 0 after a normal end; -1 (as unsigned) when writing failed or the job was not built
  unsigned long Translate(bool (*progress)(void*), void* data);
  /// Waits for the end and returns as Translate() does.
  unsigned long Translate2();

 private:
  void Design(int dsd_rate, int pcm_rate);
  void BuildWriter(std::FILE* out, char* out_buffer, int block_bytes, int ring_depth,
                   int skip_bytes, unsigned long long total_bytes, bool interleaved);
  void TearDown();
  void Abandon();

  EncodePlan plan_{};
  int channels_ = 0;
  AlignedFloats prototype_;
  PolyphaseSets sets_;
  std::vector<DOT8_DATA> schedule_;
  ModulatorCoefficients modulator_{};
  std::unique_ptr<CDiskReader> reader_;
  std::unique_ptr<CWriter> writer_;
  std::array<std::unique_ptr<CShaper>, kMaxChannels> shapers_;
  std::array<std::unique_ptr<CRateConvert2>, kMaxChannels> converters_;
};

#endif  // CORVIN_CLASSIC_ENCODE_PCM_TO_DSD_JOB_H_
