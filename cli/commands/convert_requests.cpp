// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_requests.h"

#include "cli/files/dsd_container.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr uint32_t kMaxClassicPcmRateHz = 768000;
constexpr uint32_t kMinClassicDsdRateHz = 64 * 44100;
constexpr uint32_t kMaxClassicDsdRateHz = 256 * 48000;

Failure usage(const std::string& subject, const std::string& message) {
  return {kUsage, subject, message};
}

Failure bad_rate(const AskedRate& rate, const std::string& message) {
  return usage("--rate", rate.text + message);
}

// ---- Options that a way has no use for ------------------------------------------------------

void refuse_wav_options(const ConvertOptions& options) {
  const char* given = options.format   ? "--bits"
                      : options.dither ? "--dither"
                      : options.phase  ? "--phase"
                                       : nullptr;
  if (given) throw usage(given, "is for WAV files");
}

void refuse_studio_options(const ConvertOptions& options, const char* message) {
  const char* given = options.format == CORVIN_F32 ? "--bits float"
                      : options.dither             ? "--dither"
                      : options.phase              ? "--phase"
                      : options.gain_db            ? "--gain"
                      : options.modulator          ? "--modulator"
                                                   : nullptr;
  if (given) throw usage(given, message);
}

// ---- Parts of requests ----------------------------------------------------------------------

OutputFile::Config output_of(const ConvertOptions& options) {
  return {.path = options.output, .input_path = options.input, .overwrite = options.overwrite};
}

// Threads and progress are the engine's run's own; what was not given keeps the library's default.
ConvertSettings settings_of(const ConvertOptions& options) {
  ConvertSettings settings;
  settings.format = options.format.value_or(CORVIN_S24);
  if (options.dither) settings.dither = *options.dither;
  if (options.phase) settings.phase = *options.phase;
  if (options.gain_db) settings.gain_db = *options.gain_db;
  if (options.modulator) settings.modulator = *options.modulator;
  return settings;
}

corvin_container container_for_pcm(const ConvertOptions& options) {
  if (const auto container = container_of(options.output)) return *container;
  throw usage(options.output,
              "PCM is converted to DSD, so the name must end in .dsf, .dff or .1bit");
}

PcmKind kind_for_pcm(const ConvertOptions& options) {
  if (const auto kind = pcm_kind_of(options.output)) return *kind;
  throw usage(
      options.output,
      "its ending stands for no kind of file; known are .dsf, .dff, .1bit, " + pcm_endings());
}

bool is_studio_pcm_rate(uint32_t rate_hz) {
  for (uint32_t times = 1; times <= 16; times *= 2)
    if (rate_hz == times * 44100 || rate_hz == times * 48000) return true;
  return false;
}

// The rate asked for; a multiple counts from the base of the input's rate.
uint32_t studio_dsd_rate_hz(const AskedRate& rate, uint32_t input_rate_hz, const char* advice) {
  if (rate.dsd_multiple) return *rate.dsd_multiple * base_rate_hz(input_rate_hz);
  for (const uint32_t multiple : {64, 128, 256, 512})
    if (rate.hz == multiple * 44100 || rate.hz == multiple * 48000) return *rate.hz;
  throw bad_rate(rate,
                 std::string(" is not dsd64, dsd128, dsd256 or dsd512, nor one of these rates "
                             "in Hz") +
                     advice);
}

uint32_t classic_dsd_rate_hz(const AskedRate& rate, uint32_t input_rate_hz) {
  if (rate.dsd_multiple && *rate.dsd_multiple <= 256)
    return *rate.dsd_multiple * base_rate_hz(input_rate_hz);
  if (rate.hz && *rate.hz >= kMinClassicDsdRateHz && *rate.hz <= kMaxClassicDsdRateHz)
    return *rate.hz;
  throw bad_rate(rate, " is neither dsd64, dsd128 nor dsd256, nor a whole number from " +
                           std::to_string(kMinClassicDsdRateHz) + " to " +
                           std::to_string(kMaxClassicDsdRateHz));
}

}  // namespace

WavRequest wav_request(const ConvertOptions& options, const DsdInput& input) {
  if (options.modulator) throw usage("--modulator", "is for DSD files");
  WavRequest request{.output = output_of(options),
                     .kind = kind_for_pcm(options),
                     .settings = settings_of(options)};
  request.settings.pcm_rate = default_pcm_rate_hz(input.info().dsd_rate);
  if (options.rate) {
    if (!options.rate->hz || !is_studio_pcm_rate(*options.rate->hz))
      throw bad_rate(*options.rate,
                     " is not 44100 or 48000 times 1, 2, 4, 8 or 16; --engine classic takes other "
                     "rates");
    request.settings.pcm_rate = *options.rate->hz;
  }
  return request;
}

DsdRequest dsd_request(const ConvertOptions& options, const DsdInput& input) {
  refuse_wav_options(options);
  const uint32_t input_rate_hz = input.info().dsd_rate;
  return {.output = output_of(options),
          .container = *container_of(options.output),
          .dsd_rate_hz =
              options.rate ? studio_dsd_rate_hz(*options.rate, input_rate_hz, "") : input_rate_hz,
          .settings = settings_of(options),
          .changes_level = options.gain_db.has_value()};
}

DsdRequest dsd_request(const ConvertOptions& options, const PcmInput& input) {
  const corvin_container container = container_for_pcm(options);
  refuse_wav_options(options);
  return {.output = output_of(options),
          .container = container,
          .dsd_rate_hz = options.rate ? studio_dsd_rate_hz(*options.rate, input.rate_hz(),
                                                           "; --engine classic takes others")
                                      : 64 * base_rate_hz(input.rate_hz()),
          .settings = settings_of(options)};
}

ClassicWavRequest classic_wav_request(const ConvertOptions& options, const DsdHeaders& input) {
  if (container_of(options.output))
    throw usage(options.output, "a DSD file is converted to WAV, which this name denies");
  const uint32_t input_rate_hz = input.info.samplingFrequency;
  uint32_t rate_hz = default_pcm_rate_hz(input_rate_hz);
  if (options.rate) {
    rate_hz = options.rate->hz.value_or(0);
    if (rate_hz < 1 || rate_hz > kMaxClassicPcmRateHz)
      throw bad_rate(*options.rate,
                     " is no whole number from 1 to " + std::to_string(kMaxClassicPcmRateHz));
  }
  if (rate_hz > input_rate_hz)
    throw usage(options.input, "its rate of " + std::to_string(input_rate_hz) +
                                   " Hz is below the " + std::to_string(rate_hz) + " Hz asked for");
  refuse_studio_options(options, "is not for the classic engine");
  return {.output = output_of(options),
          .kind = kind_for_pcm(options),
          .rate_hz = rate_hz,
          .format = options.format.value_or(CORVIN_S24)};
}

ClassicDsdRequest classic_dsd_request(const ConvertOptions& options, const PcmInput& input) {
  const corvin_container container = container_for_pcm(options);
  refuse_wav_options(options);
  refuse_studio_options(options, "needs the studio engine");
  return {.output = output_of(options),
          .container = container,
          .dsd_rate_hz = options.rate ? classic_dsd_rate_hz(*options.rate, input.rate_hz())
                                      : 64 * base_rate_hz(input.rate_hz())};
}

}  // namespace corvin::cli
