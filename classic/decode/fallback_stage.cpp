// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers of the fallback path. Positions are 64-bit sample numbers from the start
// of the stream; they agree with the output stage's on which samples a block holds.

#include "classic/decode/fallback_stage.h"

#include <cstring>

#include "classic/decode/bit_expansion.h"
#include "classic/decode/design_state.h"
#include "classic/foundation/polyphase.h"

namespace {

int WorkFloats(int taps, int block_bytes) { return taps + 8 * block_bytes + kVectorSlack; }

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpfDec::CLpfDec(int, float* filter, CFormatChangeDec* owner, int blockBytes, int pcmRate,
                 int dsdRate)
    : FilterWorker(WorkFloats(DEFTAPS, blockBytes) * static_cast<int>(sizeof(float))),
      filter_(filter),
      taps_(DEFTAPS),
      block_samples_(8LL * blockBytes),
      pcm_rate_(pcmRate),
      dsd_rate_(dsdRate),
      owner_(owner) {}

CLpfDec::~CLpfDec() = default;

void CLpfDec::Post(int blockNumber, const float* samples, int bytes, long long outPos,
                   long long inPos, CBufferDec* dest) {
  PostJob(blockNumber, samples, bytes, dest, [&] {
    out_position_ = outPos;
    in_position_ = inPos;
  });
}

void CLpfDec::BecomeIdle() { owner_->AddTail(this); }

CLpfCPUDec::CLpfCPUDec(int channel, float* filter, CFormatChangeDec* owner, int blockBytes,
                       int pcmRate, int dsdRate)
    : CLpfDec(channel, filter, owner, blockBytes, pcmRate, dsdRate), kernel_(dot8_0) {
  StartWorker();
}

CLpfCPUDec::~CLpfCPUDec() { StopWorker(); }

int CLpfCPUDec::Filter(const char* in, int, CBufferDec& out) {
  const auto* const input = reinterpret_cast<const float*>(in);
  auto* const output = reinterpret_cast<float*>(out.data);
  const long long steps = block_samples_ * pcm_rate_ / dsd_rate_;
  for (long long k = 0; k <= steps; ++k) {
    const long long at = (out_position_ + k) * dsd_rate_ / pcm_rate_ - in_position_;
    if (at >= 0 && at < block_samples_) kernel_(output + at, input + at, filter_, taps_);
  }
  return static_cast<int>(block_samples_) * static_cast<int>(sizeof(float));
}

// ---- Dispatcher -------------------------------------------------------------------------------

CFormatChangeDec::CFormatChangeDec(CDiskReaderDec* reader, int channel, int B, int, int,
                                   int channels, float* filter, CDecimationDec* next,
                                   bool interleaved, bool lsbFirst, int pcmRate2, int dsdRate,
                                   unsigned int)
    : reader_(reader),
      channel_(channel),
      channels_(channels),
      interleaved_(interleaved),
      lsb_first_(lsbFirst),
      block_bytes_(static_cast<std::size_t>(B)),
      pcm_rate_(pcmRate2),
      dsd_rate_(dsdRate),
      next_(next),
      taps_(static_cast<std::size_t>(DEFTAPS)),
      history_(MakeAlignedFloats(static_cast<std::size_t>(WorkFloats(DEFTAPS, B)))) {
  const unsigned worker_count = GetCPU_GPU_Cores(channels);
  idle_ = std::make_unique<IdleQueue<CLpfDec>>(this, worker_count);
  for (unsigned i = 0; i < worker_count; ++i) {
    workers_.push_back(std::make_unique<CLpfCPUDec>(channel, filter, this, B, pcmRate2, dsdRate));
    idle_->Fill(workers_.back().get());
  }
  thread_ = std::thread(FormatChangeThread, this);
}

CFormatChangeDec::~CFormatChangeDec() { thread_.join(); }

void CFormatChangeDec::DispatchFIR(int blockNumber, const float* samples, int bytes,
                                   long long outPos, long long inPos, CBufferDec* dest) {
  idle_->Take()->Post(blockNumber, samples, bytes, outPos, inPos, dest);
}

void CFormatChangeDec::AddTail(CLpfDec* worker) { idle_->Put(worker); }

void CFormatChangeDec::Run() {
  for (const auto& worker : workers_) worker->WaitReady();
  float* const history = history_.get();
  const std::size_t new_samples = 8 * block_bytes_;
  long long out_position = 0;
  long long in_position = 0;
  for (int seq = 0;; seq = reader_->Next(seq)) {
    CBufferDec* const in = reader_->Read1Lock(seq, channel_);
    if (in->Abandoned()) return;
    CBufferDec* const out = next_->Write1Lock(seq, 0);
    if (out->Abandoned()) return;
    if (in->length <= 0) {
      DispatchFIR(in->tag, nullptr, 0, out_position, in_position, out);
      in->Read1Unlock(channel_);
      return;
    }
    const std::size_t offset =
        static_cast<std::size_t>(channel_) * (interleaved_ ? 1 : block_bytes_);
    const auto stride = static_cast<std::size_t>(interleaved_ ? channels_ : 1);
    ExpandBits(in->data + offset, stride, block_bytes_, lsb_first_, history + taps_);
    const int tag = in->tag;
    in->Read1Unlock(channel_);
    // The first output sample whose source lies at or behind the block's start.
    while (out_position * dsd_rate_ / pcm_rate_ < in_position) ++out_position;
    DispatchFIR(tag, history, static_cast<int>((taps_ + new_samples) * sizeof(float)), out_position,
                in_position, out);
    in_position += static_cast<long long>(new_samples);
    std::memmove(history, history + new_samples, taps_ * sizeof(float));
  }
}
