// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What the studio engine does to sound between two rates, found out by sending impulses and tones
// through it: nothing here is taken from the plan.

#ifndef CORVIN_CLI_MEASURE_ENGINE_RESPONSE_H_
#define CORVIN_CLI_MEASURE_ENGINE_RESPONSE_H_

#include <optional>
#include <vector>

#include "corvin.hpp"

namespace corvin::cli {

/** Where the response is to be flat and closed. */
struct BandEdges {
  double pass_hz = 0, stop_hz = 0;
};

struct ResponsePoint {
  double hz = 0, db = 0;
};

struct EngineResponse {
  double ripple_db = 0;  // the largest change of level up to pass_hz
  std::optional<double> stop_db =
      {};  // the highest response from stop_hz on; no value where the rates leave nothing of it
  double delay_s = 0;  // of low frequencies against the input
  std::vector<ResponsePoint> points = {};
};

/** DSD to PCM, by flipping single bits of a stream: at up to 32 places against the frames, so that
 *  what folds down is seen apart from what it folds on. */
EngineResponse response_of(const DecoderSettings& settings, const BandEdges& edges);

/** PCM to DSD, by tones in the bits that come out; above pass_hz the modulator's noise is louder than
 *  what is left of them. */
EngineResponse response_of(const EncoderSettings& settings, const BandEdges& edges);

/** Seconds of sound that are converted in a second, two channels on one thread. */
double speed_of(DecoderSettings settings);
double speed_of(EncoderSettings settings);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_ENGINE_RESPONSE_H_
