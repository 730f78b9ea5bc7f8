// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/job_progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/words/cells.h"
#include "cli/words/loudness.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

constexpr double kSoon = 0.5;  // seconds, before which speeds are guesses

std::string clock_text(double seconds) {
  // An estimate may be of any size.
  const auto whole = static_cast<long>(std::ceil(std::min(seconds, 359999.0)));
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return text;
}

double rounded(double value, double steps) { return std::round(value * steps) / steps; }

}  // namespace

JobProgress::JobProgress(std::string name, double units_per_second)
    : name_(std::move(name)), units_per_second_(units_per_second) {
  if (loudness().progress == ProgressStyle::kLines)
    line_.emplace([this](size_t cells) { return line(cells); }).refresh();
}

void JobProgress::show(uint64_t done, uint64_t total) {
  if (loudness().progress == ProgressStyle::kNone) return;
  {
    const std::lock_guard lock(mutex_);
    state_ = {.done = total == 0 ? done : std::min(done, total), .total = total};
  }
  if (line_) return line_->refresh();
  const bool is_through = total != 0 && done >= total;
  if (!is_through && Clock::now() - told_at_ < std::chrono::seconds(1)) return;
  told_at_ = Clock::now();
  print_json();
}

JobProgress::Figures JobProgress::figures() const {
  const std::lock_guard lock(mutex_);
  Figures figures;
  figures.has_begun = state_.done != 0;
  figures.elapsed = std::chrono::duration<double>(Clock::now() - begun_).count();
  const auto done = static_cast<double>(state_.done);
  const auto total = static_cast<double>(state_.total);
  if (state_.total != 0) figures.part = done / total;
  if (state_.total != 0 && units_per_second_ > 0) figures.seconds = total / units_per_second_;
  if (!figures.has_begun) return figures;
  if (units_per_second_ > 0) figures.times = done / units_per_second_ / figures.elapsed;
  if (figures.part) figures.left = figures.elapsed * (1 - *figures.part) / *figures.part;
  return figures;
}

std::string JobProgress::line(size_t cells) const {
  const Figures now = figures();
  std::string text;
  char figure[40];
  if (now.part || !now.has_begun) {
    std::snprintf(figure, sizeof figure, "%3d %%", static_cast<int>(100 * now.part.value_or(0)));
    text = figure;
  } else {
    text = clock_text(now.elapsed);
  }
  const size_t least = text.size();
  const bool is_soon = now.elapsed < kSoon;
  if (now.times && !is_soon) {
    std::snprintf(figure, sizeof figure, "  %6.1fx", std::min(*now.times, 9999.0));
    text += figure;
  }
  if (now.left && !is_soon) text += "  " + clock_text(*now.left) + " left";
  if (text.size() > cells) text.resize(std::min(least, cells));
  const size_t room = cells - text.size();
  const std::string name = room < 2 ? "" : shortened(printable(name_), room - 2);
  return name.empty() ? text : name + "  " + text;
}

std::string JobProgress::result() const {
  const Figures now = figures();
  char text[80];
  std::snprintf(text, sizeof text, "took %.2f s, %.1f times real time", now.elapsed,
                now.times.value_or(0));
  return text;
}

void JobProgress::print_json() {
  const Figures now = figures();
  nlohmann::ordered_json json;
  json["job"] = utf8_of(name_);
  json["done"] = state_.done;
  if (state_.total != 0) json["total"] = state_.total;
  if (now.part) json["percent"] = rounded(100 * *now.part, 10);
  if (now.seconds) json["seconds"] = rounded(*now.seconds, 1000);
  json["elapsed"] = rounded(now.elapsed, 1000);
  if (now.times) json["times_real_time"] = rounded(*now.times, 100);
  if (now.left) json["left"] = rounded(*now.left, 10);
  print_words(printable_json(json.dump()) + "\n");
}

}  // namespace corvin::cli
