// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// One DSD to PCM conversion: plans the rates, designs the filter, builds and runs the threads.

#ifndef CORVIN_CLASSIC_DECODE_DSD_TO_PCM_JOB_H_
#define CORVIN_CLASSIC_DECODE_DSD_TO_PCM_JOB_H_

#include <array>
#include <memory>

#include "classic/decode/conversion_filter.h"
#include "classic/decode/dsd_reader.h"
#include "classic/decode/fallback_output.h"
#include "classic/decode/fallback_stage.h"
#include "classic/decode/pcm_writer.h"
#include "classic/decode/planar_source.h"
#include "classic/decode/polyphase_output.h"
#include "classic/decode/polyphase_stage.h"
#include "corvin.h"

class CORVIN_API CDSDtoPCM2 {
 public:
  static constexpr int kMaxChannels = 8;

  /// Builds the job; its threads run from here on. An argument out of range, or memory or threads
  /// that the system refuses, give a job that does nothing and whose result is -1.
  /// @param readProc      source; null with `inBuffer`
  /// @param output        FILE* for the PCM; ignored with `outBuffer`
  /// @param channels      1..8; two at most come out
  /// @param blockSamples  with `inBuffer` its bytes per channel; otherwise samples per channel in a
  ///                      delivery that is not interleaved. The bytes that come out do not depend on
  ///                      the source's blocks
  /// @param dsdRate       Hz, up to 98304000
  /// @param pcmRate       Hz, dsdRate / 16384 .. dsdRate
  /// @param lsbFirst      earliest sample of a byte in its least significant bit
  /// @param bits          8, 16, 24 or 32
  /// @param interleaved   one byte per channel in turn; false (1 or 2 channels): two halves of what
  ///                      each call of `readProc` delivers. It is asked for `blockSamples` samples of
  ///                      each channel, or for a block of the plan where the rates are of two
  ///                      families; for `blockSamples` bytes where they have no plan
  /// @param totalBits     samples per channel in the source
  /// @param tapsHint      a set top bit presets DEFTAPS to 4096 instead of 1024; the design then
  ///                      overwrites it
  /// @param reserved      not used
  /// @param bigEndian     most significant byte of each sample first
  /// @param inBuffer      stereo source in memory: left half, right half; or null
  /// @param outBuffer     destination in memory, or null
  CDSDtoPCM2(CorvinReadCallback readProc, void* readData, void* output, int channels,
             int blockSamples, int dsdRate, int pcmRate, bool lsbFirst, int bits, bool interleaved,
             unsigned long long totalBits, unsigned char tapsHint, unsigned int reserved,
             bool bigEndian, char* inBuffer, char* outBuffer);
  CDSDtoPCM2(const CDSDtoPCM2&) = delete;
  CDSDtoPCM2& operator=(const CDSDtoPCM2&) = delete;
  /// Lets the conversion come to its end and joins every thread.
  ~CDSDtoPCM2();

  /// Calls progress(data) every half second until it returns false, then waits for the end.
  /// @param progress  without it the call never returns
  /// @return the writer's end marker, 0 after a normal end; -1 for a job that could not be built
  int Translate(bool (*progress)(void*), void* data);
  /// Waits for the end and returns as Translate() does.
  int Translate2();

 private:
  struct Source {
    CorvinReadCallback read;
    void* data;
    char* memory;
    long long memory_bytes;
    bool lsb_first;
    bool interleaved;
    int block_samples;
    unsigned long long total_bits;
  };
  struct Sink {
    void* file;
    char* memory;
    int bits;
    bool big_endian;
  };

  void BuildPipeline(const Source& source, const Sink& sink, int dsd_rate, int pcm_rate);
  void TearDown();
  void Abandon();

  ConversionFilter filter_;
  int channels_ = 0;
  std::unique_ptr<PlanarSource> planar_;
  std::unique_ptr<CDiskReaderDec> reader_;
  std::unique_ptr<CDiskWriterDec> writer_;
  std::array<std::unique_ptr<CFormatChangeDec>, kMaxChannels> fallback_stages_;
  std::array<std::unique_ptr<CDecimationDec>, kMaxChannels> fallback_outputs_;
  std::array<std::unique_ptr<CFormatChangeDen>, kMaxChannels> polyphase_stages_;
  std::array<std::unique_ptr<CDecimationDen>, kMaxChannels> polyphase_outputs_;
};

#endif  // CORVIN_CLASSIC_DECODE_DSD_TO_PCM_JOB_H_
