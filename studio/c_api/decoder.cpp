// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions of the decoder: they check pointers, adopt settings of other sizes and keep
// exceptions in.

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <system_error>

#include "corvin.h"
#include "studio/decode/decoder.h"

struct corvin_decoder {
  std::unique_ptr<corvin::studio::Decoder> engine;
};

extern "C" {

void corvin_decoder_settings_defaults(corvin_decoder_settings* settings) {
  if (settings == nullptr) return;
  *settings = {};
  settings->size = sizeof *settings;
  settings->dsd_rate = 2822400;
  settings->pcm_rate = 44100;
  settings->channels = 2;
  settings->block_bytes = 1;
  settings->format = CORVIN_S24;
  settings->dither = CORVIN_DITHER_TPDF;
  settings->kernel_mask = std::numeric_limits<std::uint32_t>::max();
}

int corvin_decoder_create(const corvin_decoder_settings* settings, corvin_decoder** decoder) {
  if (decoder == nullptr) return CORVIN_E_ARGUMENT;
  *decoder = nullptr;
  if (settings == nullptr || settings->size < sizeof settings->size) return CORVIN_E_ARGUMENT;
  corvin_decoder_settings known;
  corvin_decoder_settings_defaults(&known);
  std::memcpy(&known, settings, std::min(settings->size, sizeof known));
  try {
    auto made = std::make_unique<corvin_decoder>();
    const int status = corvin::studio::Decoder::create(known, made->engine);
    if (status == CORVIN_OK) *decoder = made.release();
    return status;
  } catch (const std::system_error&) {
    return CORVIN_E_THREAD;
  } catch (const std::exception&) {
    return CORVIN_E_MEMORY;
  }
}

void corvin_decoder_destroy(corvin_decoder* decoder) { delete decoder; }

int corvin_decoder_push(corvin_decoder* decoder, const void* data, size_t bytes, size_t* taken) {
  if (decoder == nullptr || taken == nullptr || (data == nullptr && bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return decoder->engine->push(static_cast<const std::uint8_t*>(data), bytes, *taken);
}

int corvin_decoder_push_planar(corvin_decoder* decoder, const uint8_t* const* channels,
                               size_t bytes, size_t* taken) {
  if (decoder == nullptr || taken == nullptr || (channels == nullptr && bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return decoder->engine->push_planar(channels, bytes, *taken);
}

int corvin_decoder_finish(corvin_decoder* decoder) {
  if (decoder == nullptr) return CORVIN_E_ARGUMENT;
  decoder->engine->finish();
  return CORVIN_OK;
}

int corvin_decoder_pull(corvin_decoder* decoder, void* out, size_t frames, size_t* done) {
  if (decoder == nullptr || done == nullptr || (out == nullptr && frames > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  *done = decoder->engine->pull(out, frames);
  return CORVIN_OK;
}

int corvin_decoder_pull_planar(corvin_decoder* decoder, void* const* out, size_t frames,
                               size_t* done) {
  if (decoder == nullptr || done == nullptr || (out == nullptr && frames > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  *done = decoder->engine->pull_planar(out, frames);
  return CORVIN_OK;
}

int corvin_decoder_reset(corvin_decoder* decoder) {
  if (decoder == nullptr) return CORVIN_E_ARGUMENT;
  decoder->engine->reset();
  return CORVIN_OK;
}

uint64_t corvin_decoder_latency(const corvin_decoder* decoder) {
  return decoder == nullptr ? 0 : decoder->engine->latency();
}

uint64_t corvin_decoder_frames(const corvin_decoder* decoder, uint64_t samples) {
  return decoder == nullptr ? 0 : decoder->engine->frames_of(samples);
}

int corvin_decoder_get_report(const corvin_decoder* decoder, corvin_decoder_report* report) {
  if (decoder == nullptr || report == nullptr || report->size < sizeof report->size) {
    return CORVIN_E_ARGUMENT;
  }
  corvin_decoder_report known = {};
  known.size = report->size;
  decoder->engine->report(known);
  std::memcpy(report, &known, std::min(report->size, sizeof known));
  return CORVIN_OK;
}

int corvin_decoder_describe(const corvin_decoder* decoder, char* text, size_t size) {
  if (decoder == nullptr || (text == nullptr && size > 0)) return CORVIN_E_ARGUMENT;
  try {
    const std::string whole = decoder->engine->describe();
    if (size > 0) {
      const size_t count = std::min(size - 1, whole.size());
      std::memcpy(text, whole.data(), count);
      text[count] = '\0';
    }
    return static_cast<int>(whole.size());
  } catch (const std::exception&) {
    return CORVIN_E_MEMORY;
  }
}

}  // extern "C"
