// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The entry points of PCM to DSD: a stream into a file, memory into memory.

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <memory>

#include "classic/encode/pcm_to_dsd_job.h"
#include "classic/files/dsd_header.h"
#include "classic/foundation/callback_info.h"
#include "corvin.h"

namespace {

using corvin::formats::ContainerKind;
using corvin::formats::DsdHeader;

constexpr int kMaxDsdRate = 98304000;
constexpr int kMaxRatio = 4096;
constexpr long long kMaxFrames = 1LL << 36;

struct PcmFormat {
  int rate;
  int channels;
  int bits;
  int frame_bytes;
};

/// False for a format or rate that no job takes.
bool ReadFormat(const AudioStreamBasicDescription& description, int dsd_rate, PcmFormat& format) {
  const double rate = std::trunc(description.mSampleRate);
  if (!(rate >= 1.0 && rate <= kMaxDsdRate)) return false;
  const std::uint32_t channels = description.mChannelsPerFrame;
  const std::uint32_t bits = description.mBitsPerChannel;
  if (channels < 1 || channels > CPCMtoDSD::kMaxChannels) return false;
  if (bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
  format = {static_cast<int>(rate), static_cast<int>(channels), static_cast<int>(bits),
            static_cast<int>(bits / 8 * channels)};
  return dsd_rate >= format.rate && dsd_rate <= kMaxDsdRate && dsd_rate / format.rate <= kMaxRatio;
}

/// Removes what a failed conversion has left of a file; devices and pipes stay.
void RemoveUnfinished(const char* path) {
  struct stat status;
  if (lstat(path, &status) == 0 && S_ISREG(status.st_mode)) std::remove(path);
}

/// Writes the tag behind the sound and completes the header.
bool FinishFile(std::FILE* file, DSD_TAG* tag) {
  const auto sound_end = static_cast<std::uint64_t>(ftello(file));
  if (tag && Write_id3tag_v2(file, tag) < 0) return false;
  const auto file_end = static_cast<std::uint64_t>(ftello(file));
  return corvin::formats::FinishDsf(file, file_end, tag ? sound_end : 0);
}

}  // namespace

extern "C" {

int PCMtoDSD(int mode, long long pcmBytes, std::FILE* pcmSource, const char* dsdPath, int dsdRate,
             CorvinProgressCallback progress, AudioStreamBasicDescription pcmFormat,
             void* progressData, DSD_TAG* tag) {
  if (mode < 1 || mode > 3) return 0;
  PcmFormat format;
  if (!pcmSource || !dsdPath || pcmBytes < 0 || !ReadFormat(pcmFormat, dsdRate, format)) return -1;
  const long long frames = pcmBytes / format.frame_bytes;
  if (frames >= kMaxFrames) return -1;
  std::FILE* const file = std::fopen(dsdPath, "wb");
  if (!file) return -1;

  const auto kind = static_cast<ContainerKind>(mode);
  const bool dsf = kind == corvin::formats::kDsf;
  bool written = false;
  bool cancelled = false;
  try {
    const DsdHeader header{
        static_cast<std::uint32_t>(format.channels), static_cast<std::uint32_t>(dsdRate),
        static_cast<std::uint32_t>(format.rate), static_cast<std::uint64_t>(frames)};
    written = WriteDsdHeader(file, kind, header);
    CCallbackInfo source(pcmSource, static_cast<std::uint64_t>(frames * format.frame_bytes),
                         progress, progressData, dsdRate, format.rate, format.frame_bytes);
    {
      CPCMtoDSD job(readProc, &source, file, format.channels, dsdRate, format.rate, dsf,
                    format.bits, !dsf, static_cast<unsigned long long>(frames), 1, 0, nullptr, 0,
                    nullptr);
      written = static_cast<int>(job.Translate(progressProc, &source)) == 0 && written;
    }
    cancelled = source.cancelled;
    if (dsf) written = FinishFile(file, tag) && written;
  } catch (...) {
    written = false;
  }
  written = std::ferror(file) == 0 && written;
  written = std::fclose(file) == 0 && written;
  if (!written) RemoveUnfinished(dsdPath);
  return written && !cancelled ? 0 : -1;
}

void RTBufPCMtoDSD(char* pcm, int pcmBytes, int pcmRate, int bits, void* dsdOut,
                   unsigned int dsdRate, int frames) {
  if (!pcm || !dsdOut || pcmBytes < 0 || frames < 0 || dsdRate > kMaxDsdRate) return;
  try {
    CPCMtoDSD job(nullptr, nullptr, nullptr, 2, static_cast<int>(dsdRate), pcmRate, false, bits,
                  false, static_cast<unsigned long long>(frames), 1, 0, pcm, pcmBytes,
                  static_cast<char*>(dsdOut));
    job.Translate2();
  } catch (...) {
  }
}

}  // extern "C"
