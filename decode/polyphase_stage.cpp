// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers. The dispatcher claims the output places in order and the workers fill
// them in any order, so that the output stage reads them in sequence.

#include "decode/polyphase_stage.h"

#include <cstring>

#include "decode/bit_expansion.h"
#include "decode/design_state.h"
#include "foundation/polyphase.h"

namespace {

int WorkFloats(int taps_total, int phases, int batch_samples) {
  return taps_total / phases + batch_samples + kVectorSlack;
}

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpfDen::CLpfDen(int, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
                 int blockParam)
    : FilterWorker(WorkFloats(DEFTAPS, phases, batchSamples)),
      sets_(sets),
      phases_(phases),
      taps_total_(DEFTAPS),
      block_samples_(blockParam),
      owner_(owner) {}

void CLpfDen::Post(int tag, const float* data, int bytes, CBufferDec* out) {
  PostJob(tag, data, bytes, out, [] {});
}

void CLpfDen::BecomeIdle() { owner_->AddTail(this); }

CLpfCPUDen::CLpfCPUDen(int channel, float** sets, int phases, int batchSamples,
                       CFormatChangeDen* owner, int blockParam, DOT8Dec_DATA* schedule,
                       int scheduleLength)
    : CLpfDen(channel, sets, phases, batchSamples, owner, blockParam),
      schedule_(schedule),
      schedule_length_(scheduleLength),
      kernel_(dot8_3) {
  StartWorker();
}

int CLpfCPUDen::Filter(const float* in, int floats, CBufferDec& out) {
  auto* const samples = reinterpret_cast<float*>(out.data);
  int written = 0;
  for (int at = 0; at < floats - taps_total_ / phases_; at += block_samples_)
    written += kernel_(samples + written, in + at, sets_, phases_, taps_total_, schedule_,
                       schedule_length_);
  return written * static_cast<int>(sizeof(float));
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
  const unsigned worker_count = GetCPU_GPU_Cores(channels);
  idle_ = std::make_unique<IdleQueue<CLpfDen>>(this, worker_count);
  for (unsigned i = 0; i < worker_count; ++i) {
    workers_.push_back(std::make_unique<CLpfCPUDen>(channel, sets, phases, batchSamples, this,
                                                    blockParam, schedule, scheduleLength));
    idle_->Fill(workers_.back().get());
  }
  thread_ = std::thread(FormatChangeDenThread, this);
}

CFormatChangeDen::~CFormatChangeDen() { thread_.join(); }

void CFormatChangeDen::DispatchFIR(int tag, const float* data, int bytes, CBufferDec* out) {
  idle_->Take()->Post(tag, data, bytes, out);
}

void CFormatChangeDen::AddTail(CLpfDen* worker) { idle_->Put(worker); }

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
