// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The numbers of the word loop from a noise shaper and the last interpolation.

#ifndef CORVIN_STUDIO_MODULATOR_WORD_TABLES_H_
#define CORVIN_STUDIO_MODULATOR_WORD_TABLES_H_

#include "studio/kernels/word_loop.h"
#include "studio/modulator/interpolation.h"
#include "studio/modulator/noise_shapers.h"

namespace corvin::studio {

/// Overwrites `tables`, which should be value-initialised.
void make_word_tables(const ShaperDesign& shaper, const Interpolation& interpolation,
                      WordLoopTables& tables);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_MODULATOR_WORD_TABLES_H_
