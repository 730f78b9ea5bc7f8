// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions of the quantizer.

#include "studio/decode/quantizer.h"

#include "corvin.h"
#include "studio/c_api/streaming.h"

struct corvin_quantizer : corvin::studio::StreamingHandle<corvin::studio::Quantizer> {};

extern "C" {

void corvin_quantizer_settings_defaults(corvin_quantizer_settings* settings) {
  if (settings != nullptr) *settings = corvin::studio::default_quantizer_settings();
}

int corvin_quantizer_create(const corvin_quantizer_settings* settings,
                            corvin_quantizer** quantizer) {
  return corvin::studio::create(settings, quantizer);
}

void corvin_quantizer_destroy(corvin_quantizer* quantizer) { delete quantizer; }

int corvin_quantizer_run(corvin_quantizer* quantizer, const double* in, size_t frames, void* out) {
  if (quantizer == nullptr || (in == nullptr && frames > 0)) return CORVIN_E_ARGUMENT;
  quantizer->engine->run(in, frames, out);
  return CORVIN_OK;
}

int corvin_quantizer_run_planar(corvin_quantizer* quantizer, const double* const* in, size_t frames,
                                void* const* out) {
  if (quantizer == nullptr || (in == nullptr && frames > 0)) return CORVIN_E_ARGUMENT;
  quantizer->engine->run_planar(in, frames, out);
  return CORVIN_OK;
}

int corvin_quantizer_reset(corvin_quantizer* quantizer) { return corvin::studio::reset(quantizer); }

int corvin_quantizer_get_report(const corvin_quantizer* quantizer,
                                corvin_quantizer_report* report) {
  return corvin::studio::get_report(quantizer, report);
}

}  // extern "C"
