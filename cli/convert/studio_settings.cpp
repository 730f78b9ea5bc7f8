// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/convert/studio_settings.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <thread>

namespace corvin::cli {
namespace {

// More do not pay: reading and writing are the limit by then.
constexpr unsigned kMostThreads = 8;

int show_progress(void* user, uint64_t done, uint64_t total) {
  if (total == 0) return 0;
  const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
  static_cast<ProgressLine*>(user)->show(static_cast<int>(100 * part));
  return 0;
}

}  // namespace

corvin_convert_settings studio_settings(const ConvertOptions& options, ProgressLine& line) {
  corvin_convert_settings settings;
  corvin_convert_settings_defaults(&settings);
  if (!options.gain_db.empty()) settings.gain_db = std::stod(options.gain_db);
  if (options.modulator == "high") settings.modulator = CORVIN_MODULATOR_HIGH;
  if (options.modulator == "best") settings.modulator = CORVIN_MODULATOR_BEST;
  const unsigned processors = std::thread::hardware_concurrency();
  settings.threads = processors < 2 ? 0 : std::min(processors, kMostThreads);
  settings.progress = show_progress;
  settings.progress_user = &line;
  return settings;
}

std::string level_text(double peak) {
  if (peak == 0) return "silent";
  char text[40];
  std::snprintf(text, sizeof text, "peak %.2f dBFS", 20 * std::log10(peak));
  return text;
}

}  // namespace corvin::cli
