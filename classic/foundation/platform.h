// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Operating system services that are not part of the public interface.

#ifndef CORVIN_CLASSIC_FOUNDATION_PLATFORM_H_
#define CORVIN_CLASSIC_FOUNDATION_PLATFORM_H_

/// Number of processors that the process may use, at least 1.
unsigned ProcessorCount();

#endif  // CORVIN_CLASSIC_FOUNDATION_PLATFORM_H_
