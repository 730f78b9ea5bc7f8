// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Quantising behind the polyphase filter.

#include "classic/decode/polyphase_output.h"

#include <algorithm>

#include "classic/decode/quantise.h"

CDecimationDen::CDecimationDen(CWriterDec* writer, int channel, int blocks, int channels, int bits,
                               int blockFloats, bool bigEndian)
    : channel_(channel),
      writer_(writer),
      out_channels_(std::min(channels, 2)),
      bits_(bits),
      big_endian_(bigEndian) {
  blocks_.Init(blocks, blockFloats * static_cast<int>(sizeof(float)), 1);
  try {
    thread_ = std::thread(DecimationDenThread, this);
  } catch (...) {
    blocks_.Exit();
    throw;
  }
}

CDecimationDen::~CDecimationDen() {
  thread_.join();
  blocks_.Exit();
}

CBufferDec* CDecimationDen::Write1Lock(int seq, int) { return blocks_.Write1Lock(seq, 0); }

CBufferDec* CDecimationDen::Read1Lock(int seq, int reader) {
  return blocks_.Read1Lock(seq, reader);
}

void CDecimationDen::Run() {
  for (int seq = 0;; seq = NextSequence(seq, blocks_.count)) {
    CBufferDec* const in = blocks_.Read1Lock(seq, 0);
    if (in->Abandoned()) return;
    CBufferDec* const out = writer_->Write1Lock(seq, channel_);
    if (out->Abandoned()) return;
    const int length = in->length;
    if (length < 1) {
      out->Write1Unlock(channel_, length);
      in->Read1Unlock(0);
      return;
    }
    const int sample_bytes = bits_ / 8;
    const int samples = length / static_cast<int>(sizeof(float));
    if (channel_ < out_channels_)
      Quantise(reinterpret_cast<const float*>(in->data), static_cast<std::size_t>(samples), bits_,
               big_endian_, NarrowScale::kSingle, static_cast<std::size_t>(out_channels_),
               out->data + sample_bytes * channel_);
    out->Write1Unlock(channel_, sample_bytes * samples * out_channels_);
    in->Read1Unlock(0);
  }
}
