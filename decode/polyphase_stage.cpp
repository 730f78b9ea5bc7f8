// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers. The dispatcher claims the output places in order and the workers fill
// them in any order, so that the output stage reads them in sequence.

#include "decode/polyphase_stage.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "decode/bit_expansion.h"
#include "decode/design_state.h"
#include "foundation/platform.h"

namespace {

/// The kernels read rows in whole vectors.
constexpr int kVectorSlack = 8;

int WorkFloats(int taps_total, int phases, int batch_samples) {
  return taps_total / phases + batch_samples + kVectorSlack;
}

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpfDen::CLpfDen(int, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
                 int blockParam)
    : sets_(sets),
      phases_(phases),
      taps_total_(DEFTAPS),
      block_samples_(blockParam),
      owner_(owner) {
  const int floats = WorkFloats(taps_total_, phases, batchSamples);
  mailbox_.Init(floats * static_cast<int>(sizeof(float)), 1);
  std::memset(mailbox_.data, 0, static_cast<std::size_t>(mailbox_.size));
}

void CLpfDen::Post(int tag, const float* data, int bytes, CBufferDec* out) {
  mailbox_.Write1Lock(tag, 0);
  {
    const std::lock_guard lock(data_lock_);
    if (bytes > 0) std::memcpy(mailbox_.data, data, static_cast<std::size_t>(bytes));
    out_block_ = out;
  }
  mailbox_.Write1Unlock(0, bytes);
}

CLpfCPUDen::CLpfCPUDen(int channel, float** sets, int phases, int batchSamples,
                       CFormatChangeDen* owner, int blockParam, DOT8Dec_DATA* schedule,
                       int scheduleLength)
    : CLpfDen(channel, sets, phases, batchSamples, owner, blockParam),
      schedule_(schedule),
      schedule_length_(scheduleLength),
      kernel_(dot8_3) {
  running_ = true;
  thread_ = std::thread(LpfCPUDenThread, this);
}

CLpfCPUDen::~CLpfCPUDen() {
  mailbox_.Write1Lock(0, 0);  // A job that was posted is finished first.
  running_ = false;
  mailbox_.Write1Unlock(0, 0);
  thread_.join();
}

void CLpfCPUDen::Run() {
  ready_.Open();
  for (;;) {
    mailbox_.Read1Lock(0);
    if (!running_) return;
    {
      const std::lock_guard lock(data_lock_);
      if (mailbox_.length < 1) {
        out_block_->Write1Unlock(0, mailbox_.length);
        mailbox_.Read1Unlock(0);
        return;
      }
      out_block_->Write1Unlock(0, Filter() * static_cast<int>(sizeof(float)));
    }
    mailbox_.Read1Unlock(0);
    owner_->AddTail(this);
  }
}

/// Runs the schedule over each block of the job; returns the number of output samples.
int CLpfCPUDen::Filter() {
  auto* const out = reinterpret_cast<float*>(out_block_->data);
  const auto* const in = reinterpret_cast<const float*>(mailbox_.data);
  const int samples =
      mailbox_.length / static_cast<int>(sizeof(float)) - taps_total_ / phases_;
  int written = 0;
  for (int at = 0; at < samples; at += block_samples_)
    written += kernel_(out + written, in + at, sets_, phases_, taps_total_, schedule_,
                       schedule_length_);
  return written;
}

// ---- Dispatcher -------------------------------------------------------------------------------

CFormatChangeDen::CFormatChangeDen(CDiskReaderDec* reader, int channel, int batchSamples, int,
                                   int channels, float** sets, CDecimationDen* next,
                                   bool interleaved, bool lsbFirst, int phases, int, int blockParam,
                                   DOT8Dec_DATA* schedule, int scheduleLength)
    : reader_(reader),
      channel_(channel),
      channels_(channels),
      next_(next),
      interleaved_(interleaved),
      lsb_first_(lsbFirst),
      history_floats_(static_cast<std::size_t>(DEFTAPS / phases)),
      history_(MakeAlignedFloats(
          static_cast<std::size_t>(WorkFloats(DEFTAPS, phases, batchSamples)))) {
  const auto worker_count = static_cast<std::size_t>(GetCPU_GPU_Cores(channels));
  idle_queue_.resize(2 * worker_count);
  idle_workers_ =
      std::make_unique<DispatchSemaphore>(this, static_cast<unsigned>(worker_count));
  for (std::size_t i = 0; i < worker_count; ++i) {
    workers_.push_back(std::make_unique<CLpfCPUDen>(channel, sets, phases, batchSamples, this,
                                                    blockParam, schedule, scheduleLength));
    idle_queue_[i] = workers_.back().get();
  }
  put_count_ = worker_count;
  thread_ = std::thread(FormatChangeDenThread, this);
}

CFormatChangeDen::~CFormatChangeDen() { thread_.join(); }

void CFormatChangeDen::DispatchFIR(int tag, const float* data, int bytes, CBufferDec* out) {
  idle_workers_->Wait();
  CLpfDen* worker;
  {
    const std::lock_guard lock(queue_lock_);
    worker = std::exchange(idle_queue_[take_count_++ % idle_queue_.size()], nullptr);
  }
  worker->Post(tag, data, bytes, out);
}

void CFormatChangeDen::AddTail(CLpfDen* worker) {
  {
    const std::lock_guard lock(queue_lock_);
    idle_queue_[put_count_++ % idle_queue_.size()] = worker;
  }
  idle_workers_->Post();
}

void CFormatChangeDen::Run() {
  for (const auto& worker : workers_) worker->WaitReady();
  float* const history = history_.get();
  for (int seq = 0;; seq = reader_->Next(seq)) {
    CBufferDec* const in = reader_->Read1Lock(seq, channel_);
    if (in->Abandoned()) return;
    CBufferDec* const out = next_->Write1Lock(seq, 0);
    if (out->Abandoned()) return;
    const int length = in->length;
    if (length <= 0) {
      DispatchFIR(in->tag, nullptr, 0, out);
      in->Read1Unlock(channel_);
      return;
    }
    const auto bytes = static_cast<std::size_t>(length / channels_);
    // Not interleaved means stereo halves: hosts hand over exactly two channels that way.
    const int offset = interleaved_ ? channel_ : length / 2 * channel_;
    const auto stride = static_cast<std::size_t>(interleaved_ ? channels_ : 1);
    ExpandBits(in->data + offset, stride, bytes, lsb_first_, history + history_floats_);
    const int tag = in->tag;
    in->Read1Unlock(channel_);
    DispatchFIR(tag, history,
                static_cast<int>((history_floats_ + 8 * bytes) * sizeof(float)), out);
    std::memmove(history, history + 8 * bytes, history_floats_ * sizeof(float));
  }
}
