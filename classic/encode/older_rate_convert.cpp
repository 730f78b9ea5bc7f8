// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Destructors that hosts link against.

#include "classic/encode/older_rate_convert.h"

CLpfCPU::~CLpfCPU() = default;

CRateConvert::~CRateConvert() = default;
