// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the C functions of the decoder and of the encoder have in common: handles are made, checked
// and asked in the same way.

#ifndef CORVIN_STUDIO_C_API_STREAMING_H_
#define CORVIN_STUDIO_C_API_STREAMING_H_

#include <cstddef>
#include <memory>

#include "corvin.h"
#include "studio/c_api/boundary.h"

namespace corvin::studio {

template <class Engine>
struct StreamingHandle {
  using EngineType = Engine;
  std::unique_ptr<Engine> engine;
};

template <class Settings, class Handle>
int create(const Settings* settings, Handle** handle) {
  if (handle == nullptr) return CORVIN_E_ARGUMENT;
  *handle = nullptr;
  Settings known;
  if (!adopt(settings, known)) return CORVIN_E_ARGUMENT;
  return guarded([&] {
    auto made = std::make_unique<Handle>();
    const int status = Handle::EngineType::create(known, made->engine);
    if (status == CORVIN_OK) *handle = made.release();
    return status;
  });
}

/// Whether a push or pull of `count` units from or to `data` has all that it needs.
inline bool can_move(const void* handle, const void* data, std::size_t count,
                     const std::size_t* done) {
  return handle != nullptr && done != nullptr && (data != nullptr || count == 0);
}

template <class Handle>
int finish(Handle* handle) {
  if (handle == nullptr) return CORVIN_E_ARGUMENT;
  handle->engine->finish();
  return CORVIN_OK;
}

template <class Handle>
int reset(Handle* handle) {
  if (handle == nullptr) return CORVIN_E_ARGUMENT;
  handle->engine->reset();
  return CORVIN_OK;
}

template <class Handle, class Report>
int get_report(const Handle* handle, Report* report) {
  if (handle == nullptr || !is_sized(report)) return CORVIN_E_ARGUMENT;
  Report known = {};
  handle->engine->report(known);
  hand_out(known, report);
  return CORVIN_OK;
}

template <class Handle>
int describe(const Handle* handle, char* text, std::size_t size) {
  if (handle == nullptr || (text == nullptr && size > 0)) return CORVIN_E_ARGUMENT;
  return guarded([&] { return hand_out(handle->engine->describe(), text, size); });
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_C_API_STREAMING_H_
