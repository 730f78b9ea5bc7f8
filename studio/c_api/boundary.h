// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What every C function does between a host and the engine: structures of other sizes than the
// library's are taken in and given out, and exceptions stay inside.

#ifndef CORVIN_STUDIO_C_API_BOUNDARY_H_
#define CORVIN_STUDIO_C_API_BOUNDARY_H_

#include <algorithm>
#include <cstring>
#include <exception>
#include <string>
#include <system_error>

#include "corvin.h"

namespace corvin::studio {

// ---- Structures that begin with their size ----------------------------------------------------

// What stands in the fields that a host's structure is too old to have.
template <class Struct>
void set_defaults(Struct& known) {
  known = {};
}
inline void set_defaults(corvin_decoder_settings& known) {
  corvin_decoder_settings_defaults(&known);
}
inline void set_defaults(corvin_quantizer_settings& known) {
  corvin_quantizer_settings_defaults(&known);
}
inline void set_defaults(corvin_encoder_settings& known) {
  corvin_encoder_settings_defaults(&known);
}
inline void set_defaults(corvin_writer_settings& known) { corvin_writer_settings_defaults(&known); }
inline void set_defaults(corvin_convert_settings& known) {
  corvin_convert_settings_defaults(&known);
}

/// False when there is no structure, or one without a size.
template <class Struct>
bool is_sized(const Struct* structure) {
  return structure != nullptr && structure->size >= sizeof structure->size;
}

/// The part of a host's structure that the library knows, and defaults. False when there is none.
template <class Struct>
bool adopt(const Struct* from, Struct& known) {
  set_defaults(known);
  if (!is_sized(from)) return false;
  std::memcpy(&known, from, std::min(from->size, sizeof known));
  return true;
}

/// The part of `known` that the host's structure has, which keeps its size.
template <class Struct>
void hand_out(Struct known, Struct* to) {
  known.size = to->size;
  std::memcpy(to, &known, std::min(to->size, sizeof known));
}

/// As much of a text as there is room for. Returns the length of the whole.
inline int hand_out(const std::string& whole, char* text, std::size_t size) {
  if (size > 0) text[whole.copy(text, size - 1)] = '\0';
  return static_cast<int>(whole.size());
}

// ---- Exceptions -------------------------------------------------------------------------------

/// The status that `call` returns, or what stands for the exception that it throws: of these the
/// standard library's alone come up, when threads or memory run out.
template <class Call>
int guarded(Call call) {
  try {
    return call();
  } catch (const std::system_error&) {
    return CORVIN_E_THREAD;
  } catch (const std::exception&) {
    return CORVIN_E_MEMORY;
  }
}

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_C_API_BOUNDARY_H_
