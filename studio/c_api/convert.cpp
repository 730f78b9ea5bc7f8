// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions for whole conversions.

#include <cstdint>
#include <limits>

#include "studio/c_api/boundary.h"
#include "studio/c_api/file.h"
#include "studio/convert/copy.h"
#include "studio/convert/to_dsd.h"
#include "studio/convert/to_pcm.h"

namespace corvin::studio {
namespace {

// The defaults where there are no settings or they end earlier.
bool adopt_settings(const corvin_convert_settings* settings, corvin_convert_settings& known) {
  return adopt(settings, known) || settings == nullptr;
}

bool valid(const corvin_convert_report* report) { return report == nullptr || is_sized(report); }

// Runs a conversion and hands out the report.
template <class Conversion>
int reported(corvin_convert_report* report, Conversion conversion) {
  corvin_convert_report result = {};
  const int status = guarded([&] { return conversion(result); });
  if (report != nullptr) hand_out(result, report);
  return status;
}

bool has_sound(const corvin_writer& writer) {
  return writer.finished || writer.sound->channel_bytes() != 0;
}

// What comes behind the last byte of a conversion with `status`.
int complete(corvin_writer& writer, int status, std::uint64_t samples) {
  writer.failed = writer.failed || status == CORVIN_E_WRITE;
  return status == CORVIN_OK ? corvin_writer_finish(&writer, samples) : status;
}

}  // namespace
}  // namespace corvin::studio

extern "C" {

void corvin_convert_settings_defaults(corvin_convert_settings* settings) {
  if (settings == nullptr) return;
  *settings = {};
  settings->size = sizeof *settings;
  settings->pcm_rate = 44100;
  settings->format = CORVIN_S24;
  settings->dither = CORVIN_DITHER_TPDF;
  settings->kernel_mask = std::numeric_limits<std::uint32_t>::max();
}

int corvin_convert_to_pcm(corvin_file* source, const corvin_convert_settings* settings,
                          const corvin_pcm_sink* sink, corvin_convert_report* report) {
  corvin_convert_settings known;
  corvin_pcm_sink known_sink;
  if (source == nullptr || !corvin::studio::adopt_settings(settings, known) ||
      !corvin::studio::adopt(sink, known_sink) || known_sink.write == nullptr ||
      !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    if (!source->reader) return corvin::studio::status_of(source->sound.readable);
    return corvin::studio::convert_to_pcm(*source->source, source->sound, known, known_sink,
                                          result);
  });
}

int corvin_convert_to_dsd(const corvin_pcm_source* source, corvin_writer* target,
                          const corvin_convert_settings* settings, corvin_convert_report* report) {
  corvin_convert_settings known;
  corvin_pcm_source known_source;
  if (target == nullptr || !corvin::studio::adopt_settings(settings, known) ||
      !corvin::studio::adopt(source, known_source) || known_source.read == nullptr ||
      known_source.channels != target->settings.channels || !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  if (corvin::studio::has_sound(*target)) return CORVIN_E_STATE;
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    const int status = corvin::studio::convert_to_dsd(known_source, *target->sound, known, result);
    return corvin::studio::complete(*target, status, result.samples);
  });
}

int corvin_convert_dsd_rate(corvin_file* source, corvin_writer* target,
                            const corvin_convert_settings* settings,
                            corvin_convert_report* report) {
  corvin_convert_settings known;
  if (source == nullptr || target == nullptr || !corvin::studio::adopt_settings(settings, known) ||
      !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  if (source->reader && target->settings.channels != source->sound.channels) {
    return CORVIN_E_ARGUMENT;
  }
  if (corvin::studio::has_sound(*target)) return CORVIN_E_STATE;
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    if (!source->reader) return corvin::studio::status_of(source->sound.readable);
    const int status = corvin::studio::convert_dsd_rate(*source->source, source->sound,
                                                        *target->sound, known, result);
    return corvin::studio::complete(*target, status, result.samples);
  });
}

int corvin_convert_copy(corvin_file* source, corvin_writer* target,
                        const corvin_convert_settings* settings) {
  corvin_convert_settings known;
  if (source == nullptr || target == nullptr || !corvin::studio::adopt_settings(settings, known)) {
    return CORVIN_E_ARGUMENT;
  }
  if (!source->reader) return corvin::studio::status_of(source->sound.readable);
  if (target->settings.dsd_rate != source->sound.rate_hz ||
      target->settings.channels != source->sound.channels) {
    return CORVIN_E_ARGUMENT;
  }
  if (corvin::studio::has_sound(*target)) return CORVIN_E_STATE;
  return corvin::studio::guarded([&] {
    const int status = corvin::studio::copy(*source->reader, source->sound, *target->sound, known);
    return corvin::studio::complete(*target, status, source->sound.samples);
  });
}

}  // extern "C"
