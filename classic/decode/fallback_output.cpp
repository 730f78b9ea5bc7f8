// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Picking and quantising behind the fallback filter.

#include "classic/decode/fallback_output.h"

#include "classic/decode/quantise.h"

CDecimationDec::CDecimationDec(CWriterDec* writer, int channel, int, int stride, int dsdRate,
                               int pcmRate, int blockSamples, int bits, bool bigEndian,
                               int ring_depth)
    : channel_(channel),
      writer_(writer),
      stride_(stride),
      dsd_rate_(dsdRate),
      pcm_rate_(pcmRate),
      block_samples_(8LL * blockSamples),
      bits_(bits),
      big_endian_(bigEndian) {
  blocks_.Init(ring_depth, static_cast<int>(block_samples_) * static_cast<int>(sizeof(float)), 1);
}

CDecimationDec::~CDecimationDec() {
  if (thread_.joinable()) thread_.join();
  blocks_.Exit();
}

CBufferDec* CDecimationDec::Write1Lock(int block, int) { return blocks_.Write1Lock(block, 0); }

CBufferDec* CDecimationDec::Read1Lock(int block, int) { return blocks_.Read1Lock(block, 0); }

void CDecimationDec::Run() {
  const int sample_bytes = bits_ / 8;
  long long in_position = 0;
  long long out_position = 0;
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBufferDec* const in = blocks_.Read1Lock(seq, 0);
    if (in->Abandoned()) return;
    CBufferDec* const out = writer_->Write1Lock(seq, channel_);
    if (out->Abandoned()) return;
    if (in->length < 1) {
      out->Write1Unlock(channel_, in->length);
      in->Read1Unlock(0);
      return;
    }
    const auto* const floats = reinterpret_cast<const float*>(in->data);
    const long long steps = block_samples_ * pcm_rate_ / dsd_rate_;
    long long produced = 0;
    for (long long k = 0; k <= steps; ++k) {
      const long long at = dsd_rate_ * (out_position + k) / pcm_rate_ - in_position;
      if (at < 0 || at >= block_samples_) continue;
      if (channel_ < stride_)
        Quantise(floats + at, 1, bits_, big_endian_, NarrowScale::kDouble, 1,
                 out->data + (produced * stride_ + channel_) * sample_bytes);
      ++produced;
    }
    // Channels beyond the second give no samples but the same length, so that none of them can end
    // the writer early.
    out->Write1Unlock(channel_, static_cast<int>(produced) * stride_ * sample_bytes);
    in_position += block_samples_;
    out_position += produced;
    in->Read1Unlock(0);
  }
}
