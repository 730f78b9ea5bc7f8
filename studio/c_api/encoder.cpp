// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions of the encoder.

#include <cstdint>

#include "corvin.h"
#include "studio/c_api/streaming.h"
#include "studio/encode/encoder.h"
#include "studio/encode/encoder_settings.h"

struct corvin_encoder : corvin::studio::StreamingHandle<corvin::studio::Encoder> {};

extern "C" {

void corvin_encoder_settings_defaults(corvin_encoder_settings* settings) {
  if (settings != nullptr) *settings = corvin::studio::default_encoder_settings();
}

int corvin_encoder_create(const corvin_encoder_settings* settings, corvin_encoder** encoder) {
  return corvin::studio::create(settings, encoder);
}

void corvin_encoder_destroy(corvin_encoder* encoder) { delete encoder; }

int corvin_encoder_push(corvin_encoder* encoder, const void* data, size_t frames, size_t* taken) {
  if (!corvin::studio::can_move(encoder, data, frames, taken)) return CORVIN_E_ARGUMENT;
  return encoder->engine->push(static_cast<const std::uint8_t*>(data), frames, *taken);
}

int corvin_encoder_push_planar(corvin_encoder* encoder, const void* const* channels, size_t frames,
                               size_t* taken) {
  if (!corvin::studio::can_move(encoder, channels, frames, taken)) return CORVIN_E_ARGUMENT;
  return encoder->engine->push_planar(channels, frames, *taken);
}

int corvin_encoder_finish(corvin_encoder* encoder) { return corvin::studio::finish(encoder); }

int corvin_encoder_pull(corvin_encoder* encoder, void* out, size_t bytes, size_t* done) {
  if (!corvin::studio::can_move(encoder, out, bytes, done)) return CORVIN_E_ARGUMENT;
  *done = encoder->engine->pull(static_cast<std::uint8_t*>(out), bytes);
  return CORVIN_OK;
}

int corvin_encoder_pull_planar(corvin_encoder* encoder, uint8_t* const* out, size_t bytes,
                               size_t* done) {
  if (!corvin::studio::can_move(encoder, out, bytes, done)) return CORVIN_E_ARGUMENT;
  return encoder->engine->pull_planar(out, bytes, *done);
}

int corvin_encoder_reset(corvin_encoder* encoder) { return corvin::studio::reset(encoder); }

uint64_t corvin_encoder_latency(const corvin_encoder* encoder) {
  return encoder == nullptr ? 0 : encoder->engine->latency();
}

uint64_t corvin_encoder_samples(const corvin_encoder* encoder, uint64_t frames) {
  return encoder == nullptr ? 0 : encoder->engine->samples_of(frames);
}

int corvin_encoder_get_report(const corvin_encoder* encoder, corvin_encoder_report* report) {
  return corvin::studio::get_report(encoder, report);
}

int corvin_encoder_describe(const corvin_encoder* encoder, char* text, size_t size) {
  return corvin::studio::describe(encoder, text, size);
}

}  // extern "C"
