// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The engine's bookkeeping and its entry points.

#include "classic/decode/dsd_to_pcm_buf.h"

#include <algorithm>
#include <stdexcept>

#include "classic/decode/design_state.h"

CDSDtoPCMBuf::CDSDtoPCMBuf(int dsdRate, int pcmRate, bool lsbFirst, int bits, bool bigEndian)
    : dsd_rate_(dsdRate), pcm_rate_(pcmRate), sample_bytes_(bits / 8) {
  if (!IsConvertible(dsdRate, pcmRate, bits)) throw std::invalid_argument("DSD to PCM buffers");
  const auto lock = DesignLock();
  filter_.Design(dsdRate, pcmRate);
  SelectKernels();
  skip_left_ = filter_.delay_frames;
  for (auto& channel : channels_)
    channel = std::make_unique<BufferChannel>(
        BufferChannel::Config{dsdRate, pcmRate, lsbFirst, bits, bigEndian}, filter_);
}

CDSDtoPCMBuf::~CDSDtoPCMBuf() = default;

int CDSDtoPCMBuf::ToPCM(const unsigned char* dsd, int bytes, unsigned char* pcm, int pcmSize) {
  if (bytes < 0 || (bytes > 0 && !dsd)) return -1;
  // Output k belongs to input sample k * dsd_rate / pcm_rate and comes with the byte that holds it.
  const long long step = 8LL * bytes * pcm_rate_;
  const long long made = step > ahead_ ? (step - ahead_ + dsd_rate_ - 1) / dsd_rate_ : 0;
  const long long skipped = std::min(made, skip_left_);
  const long long pcm_bytes = (made - skipped) * static_cast<long long>(kChannels) * sample_bytes_;
  if (pcm_bytes > pcmSize || (pcm_bytes > 0 && !pcm)) return -1;
  if (bytes == 0) return 0;

  ahead_ += made * dsd_rate_ - step;
  skip_left_ -= skipped;
  const auto count = static_cast<std::size_t>(bytes);
  for (std::size_t c = 0; c < kChannels; ++c)
    channels_[c]->Start(dsd + c * count, count,
                        pcm ? pcm + c * static_cast<std::size_t>(sample_bytes_) : nullptr);
  for (const auto& channel : channels_) channel->Wait();
  return static_cast<int>(pcm_bytes);
}

int CDSDtoPCMBuf::Delay() const { return filter_.delay_frames; }

// ---- Entry points -----------------------------------------------------------------------------

extern "C" {

CDSDtoPCMBuf* GetCDSDtoPCMBufClass(int dsdRate, int pcmRate, bool lsbFirst, int bits,
                                   bool bigEndian) {
  try {
    return new CDSDtoPCMBuf(dsdRate, pcmRate, lsbFirst, bits, bigEndian);
  } catch (...) {
    return nullptr;
  }
}

int DSDtoPCMBuf_ToPCM(CDSDtoPCMBuf* engine, const unsigned char* dsd, int bytes, unsigned char* pcm,
                      int pcmSize) {
  return engine ? engine->ToPCM(dsd, bytes, pcm, pcmSize) : -1;
}

int DSDtoPCMBuf_Delay(const CDSDtoPCMBuf* engine) { return engine ? engine->Delay() : -1; }

void CloseDSDtoPCMBuf(CDSDtoPCMBuf* engine) { delete engine; }

}  // extern "C"
