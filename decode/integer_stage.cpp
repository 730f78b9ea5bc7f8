// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers of the fallback path. Positions are 64-bit sample numbers from the start of
// the stream; they agree with the output stage's on which samples a block holds.

#include "decode/integer_stage.h"

#include <cstring>
#include <utility>

#include "decode/bit_expansion.h"
#include "decode/design_state.h"

namespace {

constexpr int kVectorSlack = 8;

int WorkFloats(int taps, int block_bytes) { return taps + 8 * block_bytes + kVectorSlack; }

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpfDec::CLpfDec(int, float* filter, CFormatChangeDec* owner, int blockBytes, int pcmRate,
                 int dsdRate)
    : filter_(filter),
      taps_(DEFTAPS),
      owner_(owner),
      block_samples_(8LL * blockBytes),
      pcm_rate_(pcmRate),
      dsd_rate_(dsdRate) {
  mailbox_.Init(WorkFloats(taps_, blockBytes) * static_cast<int>(sizeof(float)), 1);
  std::memset(mailbox_.data, 0, static_cast<std::size_t>(mailbox_.size));
}

void CLpfDec::Post(int blockNumber, const float* samples, int bytes, long long outPos,
                   long long inPos, CBufferDec* dest) {
  mailbox_.Write1Lock(blockNumber, 0);
  {
    const std::lock_guard lock(data_lock_);
    if (bytes > 0) std::memcpy(mailbox_.data, samples, static_cast<std::size_t>(bytes));
    out_position_ = outPos;
    in_position_ = inPos;
    dest_ = dest;
  }
  mailbox_.Write1Unlock(0, bytes);
}

CLpfCPUDec::CLpfCPUDec(int channel, float* filter, CFormatChangeDec* owner, int blockBytes,
                       int pcmRate, int dsdRate)
    : CLpfDec(channel, filter, owner, blockBytes, pcmRate, dsdRate), kernel_(dot8_0) {
  running_ = true;
  thread_ = std::thread(LpfCPUDecThread, this);
}

CLpfCPUDec::~CLpfCPUDec() {
  mailbox_.Write1Lock(0, 0);  // A job that was posted is finished first.
  running_ = false;
  mailbox_.Write1Unlock(0, 0);
  thread_.join();
}

void CLpfCPUDec::Run() {
  ready_.Open();
  for (;;) {
    mailbox_.Read1Lock(0);
    if (!running_) return;
    {
      const std::lock_guard lock(data_lock_);
      if (mailbox_.length < 1) {
        dest_->Write1Unlock(0, mailbox_.length);
        mailbox_.Read1Unlock(0);
        return;
      }
      Filter();
    }
    mailbox_.Read1Unlock(0);
    owner_->AddTail(this);
  }
}

/// Fills the destination sparsely: element i - in_position_ for each kept input position i.
void CLpfCPUDec::Filter() {
  const auto* const input = reinterpret_cast<const float*>(mailbox_.data);
  auto* const output = reinterpret_cast<float*>(dest_->data);
  const long long steps = block_samples_ * pcm_rate_ / dsd_rate_;
  for (long long k = 0; k <= steps; ++k) {
    const long long at = (out_position_ + k) * dsd_rate_ / pcm_rate_ - in_position_;
    if (at >= 0 && at < block_samples_) kernel_(output + at, input + at, filter_, taps_);
  }
  dest_->Write1Unlock(0, static_cast<int>(block_samples_) * static_cast<int>(sizeof(float)));
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
  const auto worker_count = static_cast<std::size_t>(GetCPU_GPU_Cores(channels));
  idle_queue_.resize(2 * worker_count);
  idle_workers_ =
      std::make_unique<DispatchSemaphore>(this, static_cast<unsigned>(worker_count));
  for (std::size_t i = 0; i < worker_count; ++i) {
    workers_.push_back(
        std::make_unique<CLpfCPUDec>(channel, filter, this, B, pcmRate2, dsdRate));
    idle_queue_[i] = workers_.back().get();
  }
  put_count_ = worker_count;
  thread_ = std::thread(FormatChangeThread, this);
}

CFormatChangeDec::~CFormatChangeDec() { thread_.join(); }

void CFormatChangeDec::DispatchFIR(int blockNumber, const float* samples, int bytes,
                                   long long outPos, long long inPos, CBufferDec* dest) {
  idle_workers_->Wait();
  CLpfDec* worker;
  {
    const std::lock_guard lock(dispatch_lock_);
    worker = std::exchange(idle_queue_[take_count_++ % idle_queue_.size()], nullptr);
  }
  worker->Post(blockNumber, samples, bytes, outPos, inPos, dest);
}

void CFormatChangeDec::AddTail(CLpfDec* worker) {
  {
    const std::lock_guard lock(dispatch_lock_);
    idle_queue_[put_count_++ % idle_queue_.size()] = worker;
  }
  idle_workers_->Post();
}

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
    const std::size_t offset = static_cast<std::size_t>(channel_) * (interleaved_ ? 1 : block_bytes_);
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
