// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Building, running and ending the threads of one conversion.

#include "classic/decode/dsd_to_pcm_job.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "classic/decode/design_state.h"

namespace {

constexpr float kPollSeconds = 0.5f;

void CheckArguments(bool from_memory, int channels, int block_samples, int dsd_rate, int pcm_rate,
                    int bits, bool interleaved) {
  const bool sane = channels >= 1 && channels <= CDSDtoPCM2::kMaxChannels &&
                    IsConvertible(dsd_rate, pcm_rate, bits) && (interleaved || channels <= 2) &&
                    (!from_memory || (channels == 2 && block_samples >= 0));
  if (!sane) throw std::invalid_argument("DSD to PCM job");
}

/// rate_out * samples / rate_in, rounded down, without overflow for any count of samples.
unsigned long long ScaleCount(unsigned long long samples, int rate_out, int rate_in) {
  const auto out = static_cast<unsigned long long>(rate_out);
  const auto in = static_cast<unsigned long long>(rate_in);
  return samples / in * out + samples % in * out / in;
}

/// How many of the plan's blocks the threads hand over at once: as many as make waking another
/// thread worth it, within a bound on the job's memory.
int BatchFor(const RatePlan& plan, int channels, int workers, int ring_depth) {
  constexpr long long kSamples = 524288;
  constexpr long long kBytes = 32 << 20;
  if (!plan.polyphase) return 1;
  const long long samples = plan.block_samples;
  const long long outputs = plan.block_outputs;
  // Blocks of the three rings, then history and mailboxes.
  const long long block_bytes =
      ring_depth * channels * (samples / 8 + outputs * 8) + channels * (1 + workers) * samples / 8;
  return static_cast<int>(std::max(1LL, std::min(kSamples / samples, kBytes / block_bytes)));
}

/// Bytes per channel that a source of halves is asked for.
int PlanarBytes(const RatePlan& plan, int block_samples) {
  constexpr int kMost = 1 << 20;
  const bool two_families = plan.interpolation > 1;
  const int bytes = plan.polyphase && !two_families ? block_samples / 8 : block_samples;
  return two_families || bytes < 1 ? plan.block_samples / 8 : std::min(bytes, kMost);
}

}  // namespace

CDSDtoPCM2::CDSDtoPCM2(CorvinReadCallback readProc, void* readData, void* output, int channels,
                       int blockSamples, int dsdRate, int pcmRate, bool lsbFirst, int bits,
                       bool interleaved, unsigned long long totalBits, unsigned char tapsHint,
                       unsigned int, bool bigEndian, char* inBuffer, char* outBuffer) {
  try {
    CheckArguments(inBuffer != nullptr, channels, blockSamples, dsdRate, pcmRate, bits,
                   interleaved);
    channels_ = channels;
    const Source source{readProc, readData,    inBuffer,     2LL * blockSamples,
                        lsbFirst, interleaved, blockSamples, totalBits};
    const Sink sink{output, outBuffer, bits, bigEndian};
    const auto lock = DesignLock();
    DEFTAPS = (tapsHint & 0x80) != 0 ? 4096 : 1024;
    filter_.Design(dsdRate, pcmRate);
    SelectKernels();
    BuildPipeline(source, sink, dsdRate, pcmRate);
  } catch (...) {
    Abandon();
  }
}

CDSDtoPCM2::~CDSDtoPCM2() { TearDown(); }

int CDSDtoPCM2::Translate(bool (*progress)(void*), void* data) {
  if (!writer_) return -1;
  do {
    ProgressWaitNS(kPollSeconds);
    // Without a progress function the wait is for ever: a host that passes none means to end the
    // thread itself.
  } while (!progress || progress(data));
  return writer_->Wait();
}

int CDSDtoPCM2::Translate2() { return writer_ ? writer_->Wait() : -1; }

void CDSDtoPCM2::BuildPipeline(const Source& given, const Sink& sink, int dsd_rate, int pcm_rate) {
  const RatePlan& plan = filter_.plan;
  Source source = given;
  if (source.read && !source.memory && !source.interleaved && channels_ == 2) {
    planar_ = std::make_unique<PlanarSource>(source.read, source.data,
                                             PlanarBytes(plan, source.block_samples));
    source.read = PlanarSource::Read;
    source.data = planar_.get();
    source.interleaved = true;
  }
  const int workers = static_cast<int>(GetCPU_GPU_Cores(channels_));
  const int ring_depth = workers * 4;
  const int batch = BatchFor(plan, channels_, workers, ring_depth);
  const int batch_samples = plan.block_samples * batch;
  const int batch_outputs = plan.block_outputs * batch;
  const int batch_bytes = batch_samples / 8;
  const int out_channels = std::min(channels_, 2);
  const int frame_bytes = sink.bits / 8 * out_channels;

  // Half the filter's length in silence flushes it; a last byte that the source does not fill
  // counts as silence too.
  const int tail = static_cast<int>(std::lround(filter_.taps / plan.interpolation * 0.0625)) +
                   (source.total_bits % 8 != 0 ? 1 : 0);
  reader_ = std::make_unique<CDiskReaderDec>(
      source.read, source.data, batch_bytes * channels_, ring_depth, channels_, tail * channels_,
      source.total_bits / 8 * static_cast<unsigned long long>(channels_), source.memory,
      source.memory_bytes);

  const int skip = frame_bytes * filter_.delay_frames;
  const unsigned long long frames = ScaleCount(source.total_bits, pcm_rate, dsd_rate);
  const auto frame = static_cast<unsigned long long>(frame_bytes);
  const unsigned long long limit =
      std::min(frames, std::numeric_limits<unsigned long long>::max() / frame) * frame;
  writer_ = std::make_unique<CDiskWriterDec>(sink.file, ring_depth, batch_outputs * frame_bytes,
                                             channels_, skip, limit, sink.memory);

  for (int c = 0; c < channels_; ++c) {
    const auto at = static_cast<std::size_t>(c);
    if (plan.polyphase) {
      polyphase_outputs_[at] = std::make_unique<CDecimationDen>(
          writer_.get(), c, ring_depth, channels_, sink.bits, batch_outputs, sink.big_endian);
      polyphase_stages_[at] = std::make_unique<CFormatChangeDen>(
          reader_.get(), c, batch_samples, sink.bits, channels_, filter_.sets.rows(),
          polyphase_outputs_[at].get(), source.interleaved, source.lsb_first, plan.interpolation,
          plan.decimation, plan.block_samples, filter_.schedule.data(),
          static_cast<int>(filter_.schedule.size()));
    } else {
      fallback_outputs_[at] = std::make_unique<CDecimationDec>(
          writer_.get(), c, channels_, out_channels, dsd_rate, pcm_rate, batch_bytes, sink.bits,
          sink.big_endian, ring_depth);
      fallback_outputs_[at]->Start();
      fallback_stages_[at] = std::make_unique<CFormatChangeDec>(
          reader_.get(), c, batch_bytes, pcm_rate, sink.bits, channels_, filter_.prototype.get(),
          fallback_outputs_[at].get(), source.interleaved, source.lsb_first, pcm_rate, dsd_rate,
          0u);
    }
  }
}

/// Producers before consumers, so that each stage is joined while its neighbours still answer.
void CDSDtoPCM2::TearDown() {
  for (std::size_t c = 0; c < kMaxChannels; ++c) {
    polyphase_stages_[c].reset();
    polyphase_outputs_[c].reset();
    fallback_stages_[c].reset();
    fallback_outputs_[c].reset();
  }
  reader_.reset();
  writer_.reset();
}

/// Ends whatever part of the pipeline stands.
void CDSDtoPCM2::Abandon() {
  if (reader_) reader_->Abandon();
  if (writer_) writer_->Abandon();
  for (std::size_t c = 0; c < kMaxChannels; ++c) {
    if (polyphase_outputs_[c]) polyphase_outputs_[c]->Abandon();
    if (fallback_outputs_[c]) fallback_outputs_[c]->Abandon();
  }
  TearDown();
}
