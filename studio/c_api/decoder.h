// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is behind a decoder's handle, for the functions that take two kinds of handle.

#ifndef CORVIN_STUDIO_C_API_DECODER_H_
#define CORVIN_STUDIO_C_API_DECODER_H_

#include "corvin.h"
#include "studio/c_api/streaming.h"
#include "studio/decode/decoder.h"

struct corvin_decoder : corvin::studio::StreamingHandle<corvin::studio::Decoder> {};

#endif  // CORVIN_STUDIO_C_API_DECODER_H_
