// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Building, running and ending the threads of one conversion.

#include "classic/encode/pcm_to_dsd_job.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

#include "classic/encode/design_state.h"
#include "classic/foundation/lowpass_design.h"

namespace {

constexpr int kMaxDsdRate = 98304000;
constexpr int kMaxRatio = 4096;
constexpr int kDsfBlockBytes = 4096;
constexpr float kPollSeconds = 0.5f;
/// Enough to make waking the modulator worth it.
constexpr int kBatchSamples = 65536;

/// Half a filter's length in units of `divisor` of its taps, rounded in single precision: hosts
/// expect the delay that this gives.
int HalfLength(int taps, int divisor, float unit) {
  const float x = static_cast<float>(taps) * 0.5f / static_cast<float>(divisor) * unit;
  return static_cast<int>(std::floor(x + 0.5f));
}

/// How many of the plan's blocks the threads hand over at once: about `samples`, and whole bytes.
int BatchFor(int block_outputs, int samples) {
  const int whole_bytes = 8 / std::gcd(8, block_outputs);
  return std::max(1, samples / block_outputs / whole_bytes) * whole_bytes;
}

/// Four blocks a worker, but no more than a share of the job's memory holds.
int RingDepth(int workers, int channels, int batch_outputs) {
  constexpr long long kBytes = 64 << 20;
  const long long block = static_cast<long long>(channels) * batch_outputs * 4;
  return static_cast<int>(std::clamp<long long>(kBytes / block, 2, 4LL * workers));
}

}  // namespace

CPCMtoDSD::CPCMtoDSD(CorvinReadCallback read, void* readData, std::FILE* out, int channels,
                     int dsdRate, int pcmRate, bool lsbFirst, int bitsPerSample,
                     bool interleavedWriter, unsigned long long frames, unsigned char flags,
                     unsigned int, char* pcmBuffer, int pcmBufferBytes, char* outBuffer) {
  try {
    const bool equal_rates = dsdRate == pcmRate;
    const bool sane =
        channels >= 1 && channels <= kMaxChannels && dsdRate >= 1 && dsdRate <= kMaxDsdRate &&
        pcmRate >= 1 && pcmRate <= dsdRate && dsdRate / pcmRate <= kMaxRatio &&
        (bitsPerSample == 8 || bitsPerSample == 16 || bitsPerSample == 24 || bitsPerSample == 32) &&
        (equal_rates || (flags & 1) != 0) && frames < (1ull << 36) &&
        (!pcmBuffer || pcmBufferBytes >= 0);
    if (!sane) throw std::invalid_argument("PCM to DSD job");
    channels_ = channels;
    plan_ = PlanEncode(dsdRate, pcmRate);

    const auto lock = EncodeDesignLock();
    Design(dsdRate, pcmRate);
    SelectKernels();

    const int taps = DEFTAPS_PCMtoDSD;
    const int block_outputs = static_cast<int>(static_cast<long long>(plan_.block_frames) *
                                               plan_.interpolation / plan_.decimation);
    // That writer halves each block that it gets: its blocks are those of the plan.
    const bool halves = interleavedWriter && outBuffer;
    const int batch = BatchFor(block_outputs, halves ? 1 : kBatchSamples);
    const int batch_frames = plan_.block_frames * batch;
    const int batch_outputs = block_outputs * batch;
    const int workers = static_cast<int>(GetCPU_GPU_Cores(channels));
    const int ring_depth = RingDepth(workers, channels, batch_outputs);
    const int frame_bytes = bitsPerSample / 8 * channels;

    const unsigned long long bytes_per_channel =
        (frames * static_cast<unsigned long long>(dsdRate) /
             static_cast<unsigned long long>(pcmRate) +
         7) /
        8;
    const int skip = equal_rates ? 0 : HalfLength(taps, plan_.decimation, 0.125f);
    // Half the filter's length in zeros flushes it; a rate that the plan meets only roughly needs
    // more for the whole length to come out.
    const auto needed = static_cast<long long>(
        std::ceil(static_cast<double>(bytes_per_channel + static_cast<unsigned>(skip)) * 8.0 *
                  plan_.decimation / plan_.interpolation));
    const long long pad_frames =
        std::max<long long>(equal_rates ? 0 : HalfLength(taps, plan_.interpolation, 1.0f),
                            needed - static_cast<long long>(frames));
    reader_ = std::make_unique<CDiskReader>(read, readData, batch_frames * frame_bytes, ring_depth,
                                            channels, pad_frames * frame_bytes, pcmBuffer,
                                            pcmBufferBytes);
    BuildWriter(out, outBuffer, batch_outputs / 8 * channels, ring_depth, skip * channels,
                bytes_per_channel * static_cast<unsigned long long>(channels), interleavedWriter);
    for (int c = 0; c < channels; ++c) {
      const auto at = static_cast<std::size_t>(c);
      shapers_[at] = std::make_unique<CShaper>(
          writer_.get(), c, ring_depth, modulator_.a, modulator_.b, channels, interleavedWriter,
          lsbFirst, plan_.interpolation, plan_.decimation, batch_outputs);
      converters_[at] = std::make_unique<CRateConvert2>(
          reader_.get(), c, pcmRate, bitsPerSample, channels, dsdRate, prototype_.get(),
          sets_.rows(), plan_.interpolation, plan_.decimation, shapers_[at].get(), schedule_.data(),
          static_cast<int>(schedule_.size()), flags, static_cast<unsigned>(batch_frames), nullptr);
    }
  } catch (...) {
    Abandon();
  }
}

CPCMtoDSD::~CPCMtoDSD() { TearDown(); }

unsigned long CPCMtoDSD::Translate(bool (*progress)(void*), void* data) {
  if (!writer_) return static_cast<unsigned long>(-1);
  do {
    ProgressWaitNS(kPollSeconds);
    // Without a progress function the wait is for ever: a host that passes none means to end the
    // thread itself.
  } while (!progress || progress(data));
  return Translate2();
}

unsigned long CPCMtoDSD::Translate2() {
  return static_cast<unsigned long>(writer_ ? writer_->Wait() : -1);
}

void CPCMtoDSD::Design(int dsd_rate, int pcm_rate) {
  const int l = plan_.interpolation;
  CFIRFilterEnc design;
  const int taps =
      design.Init(dsd_rate, static_cast<double>(l) * pcm_rate, pcm_rate * 0.5, 8 * l, 90.0);
  iSamples = plan_.block_frames;
  oversampling = l;
  normalize_factor = static_cast<float>(1.0 / l * plan_.level);
  DEFTAPS_PCMtoDSD = taps;
  std::fill(&g_D[0][0], &g_D[0][0] + 64, 0.0);
  prototype_ = MakeAlignedFloats(static_cast<std::size_t>(taps) + static_cast<std::size_t>(l));
  design.CreateCoeffs(prototype_.get(), static_cast<float>(l));
  sets_.Make(prototype_.get(), taps, l, normalize_factor);
  schedule_ = MakePhaseSchedule(l, plan_.decimation, plan_.block_frames);
  modulator_ = DesignModulator(l);
}

void CPCMtoDSD::BuildWriter(std::FILE* out, char* out_buffer, int block_bytes, int ring_depth,
                            int skip_bytes, unsigned long long total_bytes, bool interleaved) {
  if (interleaved)
    writer_ = std::make_unique<CDiskWriter>(out, block_bytes, ring_depth, channels_, skip_bytes,
                                            total_bytes, out_buffer);
  else
    writer_ = std::make_unique<CBlockWriter>(out, block_bytes, ring_depth, channels_,
                                             kDsfBlockBytes, skip_bytes, total_bytes, out_buffer);
}

/// Producers before consumers, so that each stage is joined while its neighbours still answer.
void CPCMtoDSD::TearDown() {
  for (std::size_t c = 0; c < kMaxChannels; ++c) {
    converters_[c].reset();
    shapers_[c].reset();
  }
  reader_.reset();
  writer_.reset();
}

/// Ends whatever part of the pipeline stands.
void CPCMtoDSD::Abandon() {
  if (reader_) reader_->Abandon();
  if (writer_) writer_->Abandon();
  for (const auto& shaper : shapers_)
    if (shaper) shaper->Abandon();
  TearDown();
}
