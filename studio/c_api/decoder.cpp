// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions of the decoder.

#include "studio/c_api/decoder.h"

#include <cstdint>

#include "studio/decode/decoder_settings.h"

extern "C" {

void corvin_decoder_settings_defaults(corvin_decoder_settings* settings) {
  if (settings != nullptr) *settings = corvin::studio::default_decoder_settings();
}

int corvin_decoder_create(const corvin_decoder_settings* settings, corvin_decoder** decoder) {
  return corvin::studio::create(settings, decoder);
}

void corvin_decoder_destroy(corvin_decoder* decoder) { delete decoder; }

int corvin_decoder_push(corvin_decoder* decoder, const void* data, size_t bytes, size_t* taken) {
  if (!corvin::studio::can_move(decoder, data, bytes, taken)) return CORVIN_E_ARGUMENT;
  return decoder->engine->push(static_cast<const std::uint8_t*>(data), bytes, *taken);
}

int corvin_decoder_push_planar(corvin_decoder* decoder, const uint8_t* const* channels,
                               size_t bytes, size_t* taken) {
  if (!corvin::studio::can_move(decoder, channels, bytes, taken)) return CORVIN_E_ARGUMENT;
  return decoder->engine->push_planar(channels, bytes, *taken);
}

int corvin_decoder_finish(corvin_decoder* decoder) { return corvin::studio::finish(decoder); }

int corvin_decoder_pull(corvin_decoder* decoder, void* out, size_t frames, size_t* done) {
  if (!corvin::studio::can_move(decoder, out, frames, done)) return CORVIN_E_ARGUMENT;
  *done = decoder->engine->pull(out, frames);
  return CORVIN_OK;
}

int corvin_decoder_pull_planar(corvin_decoder* decoder, void* const* out, size_t frames,
                               size_t* done) {
  if (!corvin::studio::can_move(decoder, out, frames, done)) return CORVIN_E_ARGUMENT;
  *done = decoder->engine->pull_planar(out, frames);
  return CORVIN_OK;
}

int corvin_decoder_reset(corvin_decoder* decoder) { return corvin::studio::reset(decoder); }

int corvin_decoder_seek(corvin_decoder* decoder, uint64_t sample) {
  return decoder == nullptr ? CORVIN_E_ARGUMENT : decoder->engine->seek(sample);
}

uint64_t corvin_decoder_preroll(const corvin_decoder* decoder) {
  return decoder == nullptr ? 0 : decoder->engine->preroll();
}

uint64_t corvin_decoder_latency(const corvin_decoder* decoder) {
  return decoder == nullptr ? 0 : decoder->engine->latency();
}

uint64_t corvin_decoder_frames(const corvin_decoder* decoder, uint64_t samples) {
  return decoder == nullptr ? 0 : decoder->engine->frames_of(samples);
}

int corvin_decoder_get_report(const corvin_decoder* decoder, corvin_decoder_report* report) {
  return corvin::studio::get_report(decoder, report);
}

int corvin_decoder_describe(const corvin_decoder* decoder, char* text, size_t size) {
  return corvin::studio::describe(decoder, text, size);
}

}  // extern "C"
