// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/convert_requests.h"

#include <algorithm>

#include "cli/files/dsd_container.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr uint32_t kMinClassicDsdRateHz = 64 * 44100;
constexpr uint32_t kMaxClassicDsdRateHz = 256 * 48000;

Failure usage(const std::string& subject, const std::string& message) {
  return {kUsage, subject, message};
}

Failure no_stretch(const std::string& path, const std::string& duration) {
  return usage(path, "lasts " + duration + ", of which --skip and --until leave nothing");
}

Failure bad_rate(const AskedRate& rate, const std::string& message) {
  return usage("--rate", rate.text + message);
}

// ---- Options that a way has no use for ------------------------------------------------------

void refuse_pcm_options(const ConvertOptions& options) {
  const char* given = options.format ? "--bits" : options.dither ? "--dither" : nullptr;
  if (given) throw usage(given, "is for PCM files");
}

void refuse_studio_options(const ConvertOptions& options) {
  const bool has_wide_samples = options.format && *options.format != CORVIN_S16 &&
                                *options.format != CORVIN_S24 && *options.format != CORVIN_S32;
  const char* given = has_wide_samples    ? "--bits with 20, f32 or f64"
                      : options.dither    ? "--dither"
                      : options.phase     ? "--phase"
                      : options.gain      ? "--gain"
                      : options.lowpass   ? "--lowpass"
                      : options.modulator ? "--modulator"
                      : options.gapless   ? "--gapless"
                      : options.skip      ? "--skip"
                      : options.until     ? "--until"
                      : options.channels  ? "--channels"
                      : options.verify    ? "--verify"
                      : options.strict    ? "--strict"
                                          : nullptr;
  if (given) throw usage(given, "needs the studio engine");
}

// ---- Parts of requests ----------------------------------------------------------------------

OutputFile::Config output_file(const ConvertOptions& options, const PlannedConversion& planned) {
  return {.path = planned.output,
          .input_path = planned.input.path,
          .overwrite = options.overwrite || planned.replaces,
          .force = options.force,
          .preserve_time = options.preserve_time,
          .other_inputs = planned.all_inputs};
}

// Progress and files are the ways' own; what was not given keeps the library's default.
ConvertSettings settings_of(const ConvertOptions& options, const Share& share) {
  ConvertSettings settings;
  settings.format = options.format.value_or(CORVIN_S24);
  if (options.dither) settings.dither = *options.dither;
  if (options.phase) settings.phase = *options.phase;
  if (options.modulator) settings.modulator = *options.modulator;
  if (options.gain) settings.gain_db = options.gain->db.value_or(share.gain_db);
  settings.threads = share.threads;
  settings.keep_damaged = !options.strict;
  return settings;
}

/** Sets the part of a DSD file that is asked for. */
void set_stretch(ConvertSettings& settings, const ConvertOptions& options, const DsdInput& input) {
  const corvin_file_info& info = input.info();
  const uint64_t begin = options.skip ? options.skip->at_rate(info.dsd_rate) : 0;
  const uint64_t end =
      options.until ? std::min(options.until->at_rate(info.dsd_rate), info.samples) : info.samples;
  if (begin == 0 && end == info.samples) return;
  if (begin >= end) throw no_stretch(input.path(), duration_text(info.samples, info.dsd_rate));
  settings.begin_sample = begin;
  settings.sample_count = end - begin;
}

void check_channels(const ConvertOptions& options, const std::string& path, uint32_t channels) {
  if (!options.channels) return;
  for (const uint32_t channel : *options.channels)
    if (channel >= channels)
      throw usage("--channels", "asks for channel " + std::to_string(channel + 1) + " of " + path +
                                    ", which has " + counted(channels, "channel"));
}

/** Sets the channels that are asked for, by a pointer into the options. */
void set_channels(ConvertSettings& settings, const ConvertOptions& options, const DsdInput& input) {
  check_channels(options, input.path(), input.info().channels);
  if (!options.channels) return;
  settings.channel_map = options.channels->data();
  settings.channel_map_count = options.channels->size();
}

/** What is cut at its joints is one run of the engine: there is none for other rates of PCM, nor
 *  between two of DSD. */
void check_joints(const PlannedConversion& planned, bool is_one_run) {
  if (planned.is_joined && !is_one_run)
    throw usage("--gapless", "has no way for " + planned.input.path +
                                 ": it joins PCM of 44100 or 48000 Hz times 1, 2, 4, 8 or 16, and "
                                 "DSD that is converted to that");
}

// ---- Rates ----------------------------------------------------------------------------------

uint32_t pcm_rate_hz(const ConvertOptions& options, uint32_t dsd_rate_hz) {
  if (!options.rate) return default_pcm_rate_hz(dsd_rate_hz);
  const uint32_t rate_hz = options.rate->hz.value_or(0);
  if (rate_hz < kMinPcmRateHz || rate_hz > kMaxPcmRateHz)
    throw bad_rate(*options.rate, " is no PCM rate from 8000 to 768000 Hz, as " +
                                      std::string("44.1k, 88200 or dxd are"));
  return rate_hz;
}

// The rate asked for; a multiple counts from the base of the input's rate.
uint32_t studio_dsd_rate_hz(const AskedRate& rate, uint32_t input_rate_hz) {
  if (rate.dsd_multiple) return *rate.dsd_multiple * base_rate_hz(input_rate_hz);
  for (const uint32_t multiple : {64, 128, 256, 512})
    if (rate.hz == multiple * 44100 || rate.hz == multiple * 48000) return *rate.hz;
  throw bad_rate(rate, " is not dsd64, dsd128, dsd256 or dsd512, nor one of these rates in Hz");
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

// The pairs for which the flat functions have a plan: DSD64 to DSD256, and the rates of both
// families up to 16 times their base. What comes of others has a level and a length of its own.
bool is_classic_pair(uint32_t dsd_rate_hz, uint32_t pcm_rate_hz) {
  return is_octave_of_base(dsd_rate_hz, 64, 256) && is_octave_of_base(pcm_rate_hz, 1, 16);
}

// ---- Containers -----------------------------------------------------------------------------

corvin_container container_for_pcm(const PlannedConversion& planned) {
  if (is_dsd(planned.kind)) return std::get<corvin_container>(planned.kind);
  throw usage(planned.output, "PCM is converted to DSD, so the kind must be dsf, dff or 1bit");
}

}  // namespace

void set_band(ConvertSettings& settings, const std::optional<Band>& band, double highest_hz) {
  if (!band) return;
  if (band->is_full) {
    settings.stop_hz = highest_hz;
    return;
  }
  const double narrowest_hz = 0.03 * highest_hz;
  settings.pass_hz = band->pass_hz;
  settings.stop_hz = std::min(band->stop_hz == 0 ? 1.6 * band->pass_hz : band->stop_hz, highest_hz);
  if (settings.stop_hz - settings.pass_hz < narrowest_hz)
    throw usage("--lowpass", "has to be flat to " + hz_text(narrowest_hz) +
                                 " below the edge from which it is closed, and closed from " +
                                 hz_text(highest_hz) + " on, for these rates");
}

PcmRequest pcm_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const DsdInput& input, const Share& share) {
  if (options.modulator) throw usage("--modulator", "is for DSD files");
  PcmRequest request{.output = output_file(options, planned),
                     .kind = std::get<PcmKind>(planned.kind),
                     .rate_hz = pcm_rate_hz(options, input.info().dsd_rate),
                     .settings = settings_of(options, share),
                     .care = {.verify = options.verify, .strict = options.strict}};
  request.settings.pcm_rate = engine_rate_hz(request.rate_hz);
  check_joints(planned, request.settings.pcm_rate == request.rate_hz);
  set_band(request.settings, options.lowpass, request.rate_hz / 2.0);
  set_stretch(request.settings, options, input);
  set_channels(request.settings, options, input);
  return request;
}

PcmRequest peak_request(const ConvertOptions& options, const PlannedConversion& planned,
                        const DsdInput& input, const Share& share) {
  const uint32_t from_hz = input.info().dsd_rate;
  PcmRequest request{.output = {}, .settings = settings_of(options, share), .care = {}};
  request.rate_hz =
      is_dsd(planned.kind) ? default_pcm_rate_hz(from_hz) : pcm_rate_hz(options, from_hz);
  request.settings.pcm_rate = engine_rate_hz(request.rate_hz);
  check_joints(planned, request.settings.pcm_rate == request.rate_hz);
  set_band(request.settings, options.lowpass, request.rate_hz / 2.0);
  set_stretch(request.settings, options, input);
  set_channels(request.settings, options, input);
  return request;
}

DsdRequest dsd_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const DsdInput& input, const Share& share) {
  refuse_pcm_options(options);
  const uint32_t from_hz = input.info().dsd_rate;
  DsdRequest request{
      .output = output_file(options, planned),
      .container = std::get<corvin_container>(planned.kind),
      .dsd_rate_hz = options.rate ? studio_dsd_rate_hz(*options.rate, from_hz) : from_hz,
      .settings = settings_of(options, share),
      .changes_sound = options.lowpass.has_value(),
      .care = {.verify = options.verify, .strict = options.strict}};
  if (request.settings.gain_db != 0) request.changes_sound = true;
  check_joints(planned, request.dsd_rate_hz == from_hz && !request.changes_sound);
  set_band(request.settings, options.lowpass, std::min(from_hz, request.dsd_rate_hz) / 64.0);
  set_stretch(request.settings, options, input);
  set_channels(request.settings, options, input);
  return request;
}

DsdRequest dsd_request(const ConvertOptions& options, const PlannedConversion& planned,
                       const PcmInput& input, const Share& share) {
  if (input.rate_hz() < kMinPcmRateHz || input.rate_hz() > kMaxPcmRateHz)
    throw Failure(kBadInput, input.path(),
                  "has a rate of " + std::to_string(input.rate_hz()) +
                      " Hz; from 8000 to 768000 Hz can be converted");
  const corvin_container container = container_for_pcm(planned);
  refuse_pcm_options(options);
  check_joints(planned, engine_rate_hz(input.rate_hz()) == input.rate_hz());
  DsdRequest request{.output = output_file(options, planned),
                     .container = container,
                     .dsd_rate_hz = options.rate
                                        ? studio_dsd_rate_hz(*options.rate, input.rate_hz())
                                        : 64 * base_rate_hz(input.rate_hz()),
                     .settings = settings_of(options, share),
                     .care = {.verify = options.verify, .strict = options.strict}};
  set_band(request.settings, options.lowpass,
           std::min(engine_rate_hz(input.rate_hz()) / 2.0, request.dsd_rate_hz / 16.0));
  request.feed = feed_config(options, input);
  return request;
}

PcmFeed::Config feed_config(const ConvertOptions& options, const PcmInput& input) {
  check_channels(options, input.path(), input.channels());
  PcmFeed::Config config{.phase = options.phase.value_or(CORVIN_LINEAR_PHASE)};
  if (options.channels) config.channel_map = *options.channels;
  if (options.skip) config.begin = options.skip->at_rate(input.rate_hz());
  if (options.until) config.end = options.until->at_rate(input.rate_hz());
  const uint64_t frames = input.declared_frames().value_or(UINT64_MAX);
  if ((options.skip || options.until) && config.begin >= std::min(config.end, frames))
    throw no_stretch(input.path(), duration_text(frames, input.rate_hz()));
  return config;
}

ClassicWavRequest classic_wav_request(const ConvertOptions& options,
                                      const PlannedConversion& planned, const DsdHeaders& input) {
  if (is_dsd(planned.kind)) throw usage(planned.output, "the classic engine makes no DSD of DSD");
  refuse_studio_options(options);
  const uint32_t from_hz = input.info.samplingFrequency;
  const uint32_t rate_hz =
      options.rate ? options.rate->hz.value_or(0) : default_pcm_rate_hz(from_hz);
  if (!is_classic_pair(from_hz, rate_hz))
    throw usage("--engine",
                "classic converts DSD64 to DSD256 to 44100 or 48000 Hz times 1, 2, 4, "
                "8 or 16, not " +
                    std::to_string(from_hz) + " Hz to " +
                    (options.rate ? options.rate->text : std::to_string(rate_hz)) +
                    "; studio takes any rate");
  return {.output = output_file(options, planned),
          .kind = std::get<PcmKind>(planned.kind),
          .rate_hz = rate_hz,
          .format = options.format.value_or(CORVIN_S24)};
}

ClassicDsdRequest classic_dsd_request(const ConvertOptions& options,
                                      const PlannedConversion& planned, const PcmInput& input) {
  const corvin_container container = container_for_pcm(planned);
  refuse_pcm_options(options);
  refuse_studio_options(options);
  return {.output = output_file(options, planned),
          .container = container,
          .dsd_rate_hz = options.rate ? classic_dsd_rate_hz(*options.rate, input.rate_hz())
                                      : 64 * base_rate_hz(input.rate_hz())};
}

}  // namespace corvin::cli
