// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers. The dispatcher claims the output places in order and the workers fill
// them in any order, so that the output stage reads them in sequence. What travels between them is
// packed bits: the floats of a batch would be half a megabyte to fetch from another core's cache.

#include "classic/decode/polyphase_stage.h"

#include <algorithm>
#include <cstring>

#include "classic/decode/bit_expansion.h"
#include "classic/decode/design_state.h"
#include "classic/foundation/polyphase.h"

namespace {

/// A set's taps are a multiple of eight in every plan.
int HistoryBytes(int taps_total, int phases) { return taps_total / phases / 8; }

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpfDen::CLpfDen(int, float** sets, int phases, int batchSamples, CFormatChangeDen* owner,
                 int blockParam)
    : FilterWorker(HistoryBytes(DEFTAPS, phases) + batchSamples / 8),
      sets_(sets),
      phases_(phases),
      taps_total_(DEFTAPS),
      block_samples_(blockParam),
      owner_(owner) {}

CLpfDen::~CLpfDen() = default;

void CLpfDen::Post(int tag, const char* data, int bytes, int unset, CBufferDec* out) {
  PostJob(tag, data, bytes, out, [&] { unset_bytes_ = unset; });
}

void CLpfDen::BecomeIdle() { owner_->AddTail(this); }

CLpfCPUDen::CLpfCPUDen(int channel, float** sets, int phases, int batchSamples,
                       CFormatChangeDen* owner, int blockParam, bool lsbFirst,
                       DOT8Dec_DATA* schedule, int scheduleLength)
    : CLpfDen(channel, sets, phases, batchSamples, owner, blockParam),
      lsb_first_(lsbFirst),
      schedule_(schedule),
      schedule_length_(scheduleLength),
      kernel_(dot8_3),
      work_(MakeAlignedFloats(
          static_cast<std::size_t>(taps_total_ / phases_ + block_samples_ + kVectorSlack))) {
  StartWorker();
}

CLpfCPUDen::~CLpfCPUDen() { StopWorker(); }

int CLpfCPUDen::Filter(const char* in, int bytes, CBufferDec& out) {
  auto* const samples = reinterpret_cast<float*>(out.data);
  float* const work = work_.get();
  const int history_bytes = HistoryBytes(taps_total_, phases_);
  const auto history = static_cast<std::size_t>(8 * history_bytes);
  std::fill_n(work, 8 * unset_bytes_, 0.0f);
  ExpandBits(in + unset_bytes_, 1, static_cast<std::size_t>(history_bytes - unset_bytes_),
             lsb_first_, work + 8 * unset_bytes_);
  int written = 0;
  for (int at = history_bytes; at < bytes; at += block_samples_ / 8) {
    ExpandBits(in + at, 1, static_cast<std::size_t>(block_samples_ / 8), lsb_first_,
               work + history);
    written +=
        kernel_(samples + written, work, sets_, phases_, taps_total_, schedule_, schedule_length_);
    std::memmove(work, work + block_samples_, history * sizeof(float));
  }
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
      history_bytes_(HistoryBytes(DEFTAPS, phases)),
      packed_(static_cast<std::size_t>(history_bytes_ + batchSamples / 8)) {
  const unsigned worker_count = GetCPU_GPU_Cores(channels);
  idle_ = std::make_unique<IdleQueue<CLpfDen>>(this, worker_count);
  for (unsigned i = 0; i < worker_count; ++i) {
    workers_.push_back(std::make_unique<CLpfCPUDen>(
        channel, sets, phases, batchSamples, this, blockParam, lsbFirst, schedule, scheduleLength));
    idle_->Fill(workers_.back().get());
  }
  thread_ = std::thread(FormatChangeDenThread, this);
}

CFormatChangeDen::~CFormatChangeDen() { thread_.join(); }

void CFormatChangeDen::DispatchFIR(int tag, const char* data, int bytes, int unset,
                                   CBufferDec* out) {
  idle_->Take()->Post(tag, data, bytes, unset, out);
}

void CFormatChangeDen::AddTail(CLpfDen* worker) { idle_->Put(worker); }

void CFormatChangeDen::Run() {
  for (const auto& worker : workers_) worker->WaitReady();
  int unset = history_bytes_;
  for (int seq = 0;; seq = reader_->Next(seq)) {
    CBufferDec* const in = reader_->Read1Lock(seq, channel_);
    if (in->Abandoned()) return;
    CBufferDec* const out = next_->Write1Lock(seq, 0);
    if (out->Abandoned()) return;
    const int length = in->length;
    if (length <= 0) {
      DispatchFIR(in->tag, nullptr, 0, 0, out);
      in->Read1Unlock(channel_);
      return;
    }
    const int bytes = length / channels_;
    // Not interleaved means stereo halves: hosts hand over exactly two channels that way.
    const int offset = interleaved_ ? channel_ : length / 2 * channel_;
    const auto stride = static_cast<std::size_t>(interleaved_ ? channels_ : 1);
    for (int i = 0; i < bytes; ++i)
      packed_[static_cast<std::size_t>(history_bytes_ + i)] =
          in->data[static_cast<std::size_t>(offset) + stride * static_cast<std::size_t>(i)];
    const int tag = in->tag;
    in->Read1Unlock(channel_);
    DispatchFIR(tag, packed_.data(), history_bytes_ + bytes, unset, out);
    std::memmove(packed_.data(), packed_.data() + bytes, static_cast<std::size_t>(history_bytes_));
    unset = std::max(0, unset - bytes);
  }
}
