// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions of the encoder: they check pointers, adopt settings of other sizes and keep
// exceptions in.

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <system_error>

#include "corvin.h"
#include "studio/encode/encoder.h"

struct corvin_encoder {
  std::unique_ptr<corvin::studio::Encoder> engine;
};

extern "C" {

void corvin_encoder_settings_defaults(corvin_encoder_settings* settings) {
  if (settings == nullptr) return;
  *settings = {};
  settings->size = sizeof *settings;
  settings->pcm_rate = 44100;
  settings->dsd_rate = 2822400;
  settings->channels = 2;
  settings->format = CORVIN_S24;
  settings->block_bytes = 1;
  settings->kernel_mask = std::numeric_limits<std::uint32_t>::max();
}

int corvin_encoder_create(const corvin_encoder_settings* settings, corvin_encoder** encoder) {
  if (encoder == nullptr) return CORVIN_E_ARGUMENT;
  *encoder = nullptr;
  if (settings == nullptr || settings->size < sizeof settings->size) return CORVIN_E_ARGUMENT;
  corvin_encoder_settings known;
  corvin_encoder_settings_defaults(&known);
  std::memcpy(&known, settings, std::min(settings->size, sizeof known));
  try {
    auto made = std::make_unique<corvin_encoder>();
    const int status = corvin::studio::Encoder::create(known, made->engine);
    if (status == CORVIN_OK) *encoder = made.release();
    return status;
  } catch (const std::system_error&) {
    return CORVIN_E_THREAD;
  } catch (const std::exception&) {
    return CORVIN_E_MEMORY;
  }
}

void corvin_encoder_destroy(corvin_encoder* encoder) { delete encoder; }

int corvin_encoder_push(corvin_encoder* encoder, const void* data, size_t frames, size_t* taken) {
  if (encoder == nullptr || taken == nullptr || (data == nullptr && frames > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return encoder->engine->push(static_cast<const std::uint8_t*>(data), frames, *taken);
}

int corvin_encoder_push_planar(corvin_encoder* encoder, const void* const* channels, size_t frames,
                               size_t* taken) {
  if (encoder == nullptr || taken == nullptr || (channels == nullptr && frames > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return encoder->engine->push_planar(channels, frames, *taken);
}

int corvin_encoder_finish(corvin_encoder* encoder) {
  if (encoder == nullptr) return CORVIN_E_ARGUMENT;
  encoder->engine->finish();
  return CORVIN_OK;
}

int corvin_encoder_pull(corvin_encoder* encoder, void* out, size_t bytes, size_t* done) {
  if (encoder == nullptr || done == nullptr || (out == nullptr && bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  *done = encoder->engine->pull(static_cast<std::uint8_t*>(out), bytes);
  return CORVIN_OK;
}

int corvin_encoder_pull_planar(corvin_encoder* encoder, uint8_t* const* out, size_t bytes,
                               size_t* done) {
  if (encoder == nullptr || done == nullptr || (out == nullptr && bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return encoder->engine->pull_planar(out, bytes, *done);
}

int corvin_encoder_reset(corvin_encoder* encoder) {
  if (encoder == nullptr) return CORVIN_E_ARGUMENT;
  encoder->engine->reset();
  return CORVIN_OK;
}

uint64_t corvin_encoder_latency(const corvin_encoder* encoder) {
  return encoder == nullptr ? 0 : encoder->engine->latency();
}

uint64_t corvin_encoder_samples(const corvin_encoder* encoder, uint64_t frames) {
  return encoder == nullptr ? 0 : encoder->engine->samples_of(frames);
}

int corvin_encoder_get_report(const corvin_encoder* encoder, corvin_encoder_report* report) {
  if (encoder == nullptr || report == nullptr || report->size < sizeof report->size) {
    return CORVIN_E_ARGUMENT;
  }
  corvin_encoder_report known = {};
  known.size = report->size;
  encoder->engine->report(known);
  std::memcpy(report, &known, std::min(report->size, sizeof known));
  return CORVIN_OK;
}

int corvin_encoder_describe(const corvin_encoder* encoder, char* text, size_t size) {
  if (encoder == nullptr || (text == nullptr && size > 0)) return CORVIN_E_ARGUMENT;
  try {
    const std::string whole = encoder->engine->describe();
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
