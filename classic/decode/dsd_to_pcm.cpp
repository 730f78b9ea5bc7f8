// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The entry points of DSD to PCM: a file into a stream, memory into memory.

#include <cstdio>

#include "classic/decode/dsd_to_pcm_job.h"
#include "classic/files/sound_search.h"
#include "classic/foundation/callback_info.h"
#include "corvin.h"
#include "formats/bytes/input_file.h"

namespace {

constexpr int kSourceBlockSamples = 4096;
constexpr std::uint32_t kMaxDsdRate = 98304000;
/// Far above the 4096 of every known file; a bound on what a header can make us allocate.
constexpr std::uint32_t kMaxDsfBlockBytes = 1 << 20;

struct PcmRequest {
  void* output;
  CorvinProgressCallback progress;
  void* progress_data;
  int pcm_rate;
  int bits;
  bool big_endian;
};

bool IsPlayable(const DsdSound& sound) {
  return sound.channels >= 1 && sound.channels <= CDSDtoPCM2::kMaxChannels && sound.rate_hz >= 1 &&
         sound.rate_hz <= kMaxDsdRate &&
         (!sound.dsf || (sound.block_bytes >= 1 && sound.block_bytes <= kMaxDsfBlockBytes));
}

template <class Adapter>
int RunJob(Adapter& adapter, CorvinReadCallback read, bool (*poll)(void*), const DsdSound& sound,
           int block_samples, bool lsb_first, const PcmRequest& request) {
  CDSDtoPCM2 job(read, &adapter, request.output, static_cast<int>(sound.channels), block_samples,
                 static_cast<int>(sound.rate_hz), request.pcm_rate, lsb_first, request.bits, true,
                 sound.sample_count, 1, 0, request.big_endian, nullptr, nullptr);
  const int result = job.Translate(poll, &adapter);
  return adapter.cancelled ? -1 : result;
}

int Convert(std::FILE* file, const DsdSound& sound, const PcmRequest& request) {
  if (!IsPlayable(sound)) return -1;
  // Whole frames only: the last one may lack channels.
  const std::uint64_t bytes = sound.bytes / sound.channels * sound.channels;
  if (sound.dsf) {
    CCallbackInfoBlock adapter(file, bytes, request.progress, request.progress_data,
                               static_cast<int>(sound.block_bytes),
                               static_cast<int>(sound.channels));
    return RunJob(adapter, readProcBlock, progressProcBlock, sound,
                  static_cast<int>(sound.block_bytes), true, request);
  }
  CCallbackInfoDec adapter(file, bytes, request.progress, request.progress_data);
  return RunJob(adapter, readProcDec, progressProcDec, sound, kSourceBlockSamples, false, request);
}

}  // namespace

extern "C" {

int DSDtoPCM(const char* path, void* output, CorvinProgressCallback progress, void* progressData,
             int, int, int pcmRate, int bits, bool bigEndian) {
  try {
    if (!path || !output) return -1;
    const auto file = corvin::formats::OpenInputFile(path);
    if (!file) return -1;
    const PcmRequest request{output, progress, progressData, pcmRate, bits, bigEndian};
    SoundSearch search(file.get());
    int result = 0;
    while (result == 0) {
      const auto sound = search.Next();
      if (!sound) break;
      result = Convert(file.get(), *sound, request);
    }
    return result;
  } catch (...) {
    return -1;
  }
}

void RTBufDSDtoPCM(char* dsd, int bytes, int dsdRate, char* pcm, int pcmRate, int bits) {
  try {
    if (!dsd || !pcm || bytes < 0) return;
    CDSDtoPCM2 job(nullptr, nullptr, nullptr, 2, bytes, dsdRate, pcmRate, false, bits, false,
                   static_cast<unsigned long long>(bytes) * 8, 1, 0, true, dsd, pcm);
    job.Translate2();
  } catch (...) {
  }
}

}  // extern "C"
