// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Measurements in words, and as JSON for programs.

#ifndef CORVIN_CLI_MEASURE_REPORT_H_
#define CORVIN_CLI_MEASURE_REPORT_H_

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/measure/sound_meter.h"

namespace corvin::cli {

using Json = nlohmann::ordered_json;

/** dB of a power, or of an amplitude; no value for 0. */
std::optional<double> power_db(double power);
std::optional<double> amplitude_db(double amplitude);

/** A number with that many decimals, null for none. */
Json number(std::optional<double> value, int decimals);

/** "-6.02", "-inf" for no value. */
std::string fixed(std::optional<double> value, int decimals);

/** "2 channels of DSD64 (2822400 Hz), 0:00:03.000". */
std::string sound_text(const Measurement& measured);

/** The speakers of the channels, numbers from 1 where they are not known. */
std::vector<std::string> channel_names(const SoundFacts& facts);

/** "  name                 text\n", as the lines of reports are. */
std::string report_row(const std::string& name, const std::string& text);

/** Levels and bands of what differs, below the counts of it. */
std::string left_table(const Measurement& left, const std::string& count_name,
                       const std::vector<uint64_t>& counts);

/** The lines below a file's name, each indented by two spaces. */
std::string report_text(const Measurement& measured);

/** The same without "file". */
Json report_json(const Measurement& measured);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_MEASURE_REPORT_H_
