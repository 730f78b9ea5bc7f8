// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Dispatcher and workers. The dispatcher claims the modulator's places in order and the workers
// fill them in any order.

#include "classic/encode/upsampling_stage.h"

#include <cstring>

#include "classic/encode/design_state.h"
#include "classic/encode/pcm_decode.h"
#include "classic/foundation/polyphase.h"

namespace {

int WorkFloats(int history, int frames) { return history + frames + kVectorSlack; }

}  // namespace

// ---- Workers ----------------------------------------------------------------------------------

CLpf::~CLpf() = default;

void CLpf::Post(int seq, const float* data, int bytes, CBuffer* dest) {
  PostJob(seq, data, bytes, dest, [] {});
}

void CLpf::Post2(int seq, const float* data, int bytes, CBuffer* dest) {
  Post(seq, data, bytes, dest);
}

void CLpf::BecomeIdle() { owner_->AddTail(this); }

CLpfCPU2::CLpfCPU2(CRateConvert2* owner, int L, float** phases, DOT8_DATA* schedule, int entries,
                   int frames, int blockFrames)
    : CLpf(owner, WorkFloats(DEFTAPS_PCMtoDSD / L, frames) * static_cast<int>(sizeof(float))),
      phase_count_(L),
      phases_(phases),
      taps_total_(DEFTAPS_PCMtoDSD),
      schedule_(schedule),
      entries_(entries),
      block_frames_(blockFrames),
      kernel_(dot8_3) {
  StartWorker();
}

CLpfCPU2::~CLpfCPU2() { StopWorker(); }

int CLpfCPU2::Filter(const char* in, int bytes, CBufferDec& out) {
  const auto* const input = reinterpret_cast<const float*>(in);
  const int floats = bytes / static_cast<int>(sizeof(float));
  auto* const samples = reinterpret_cast<float*>(out.data);
  int written = 0;
  for (int at = 0; at < floats - taps_total_ / phase_count_; at += block_frames_)
    written += kernel_(samples + written, input + at, phases_, phase_count_, taps_total_, schedule_,
                       entries_);
  return written * static_cast<int>(sizeof(float));
}

// ---- Dispatcher -------------------------------------------------------------------------------

CRateConvert2::CRateConvert2(CDiskReader* reader, int ch, int pcmRate, int bits, int channels,
                             int dsdRate, float*, float** phases, int L, int, CShaper* shaper,
                             DOT8_DATA* schedule, int entries, unsigned char flags,
                             unsigned int frames, pthread_mutex_t*)
    : reader_(reader),
      channel_(ch),
      bits_(bits),
      channels_(channels),
      direct_(pcmRate == dsdRate),
      shaper_(shaper),
      history_floats_(static_cast<std::size_t>(direct_ ? 0 : DEFTAPS_PCMtoDSD / L)) {
  const int block = static_cast<int>(frames);
  history_ = MakeAlignedFloats(
      static_cast<std::size_t>(WorkFloats(static_cast<int>(history_floats_), block)));
  if (!direct_ && (flags & 1) != 0) {
    const unsigned worker_count = GetCPU_GPU_Cores(channels);
    idle_ = std::make_unique<IdleQueue<CLpf>>(this, worker_count);
    for (unsigned i = 0; i < worker_count; ++i) {
      workers_.push_back(
          std::make_unique<CLpfCPU2>(this, L, phases, schedule, entries, block, iSamples));
      idle_->Fill(workers_.back().get());
    }
  }
  thread_ = std::thread(RateConvertThread, this);
}

CRateConvert2::~CRateConvert2() { thread_.join(); }

void CRateConvert2::AddTail(CLpf* worker) { idle_->Put(worker); }

void CRateConvert2::Run() {
  for (const auto& worker : workers_) worker->WaitReady();
  float* const history = history_.get();
  const std::size_t sample_bytes = static_cast<std::size_t>(bits_) / 8;
  const std::size_t frame_bytes = sample_bytes * static_cast<std::size_t>(channels_);
  for (int seq = 0;; seq = reader_->Next(seq)) {
    CBuffer* const in = reader_->Read1Lock(seq, channel_);
    if (in->Abandoned()) return;
    CBuffer* const out = shaper_->Write1Lock(seq, 0);
    if (out->Abandoned()) return;
    const std::size_t frames = static_cast<std::size_t>(in->length) / frame_bytes;
    DecodePcm(in->data + static_cast<std::size_t>(channel_) * sample_bytes, frames, frame_bytes,
              bits_, direct_, history + history_floats_);
    const int tag = in->tag;
    in->Read1Unlock(channel_);
    if (direct_) {
      std::memcpy(out->data, history, frames * sizeof(float));
      out->Write1Unlock(0, static_cast<int>(frames * sizeof(float)));
    } else {
      const std::size_t floats = frames > 0 ? history_floats_ + frames : 0;
      idle_->Take()->Post(tag, history, static_cast<int>(floats * sizeof(float)), out);
      std::memmove(history, history + frames, history_floats_ * sizeof(float));
    }
    if (frames == 0) return;
  }
}
