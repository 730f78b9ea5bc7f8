// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/plot/axes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "cli/plot/curve.h"

namespace corvin::cli {
namespace {

std::string short_number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string hz_label(double hz) {
  return hz < 1000 ? short_number(hz) : short_number(hz / 1000) + "k";
}

// The place of a value along an axis, from 0 to 1.
double part_of(const Axis& axis, double value) {
  const double part = axis.is_logarithmic ? std::log(std::max(value, axis.from) / axis.from) /
                                                std::log(axis.to / axis.from)
                                          : (value - axis.from) / (axis.to - axis.from);
  return std::clamp(part, 0.0, 1.0);
}

}  // namespace

Axis frequency_axis(double to_hz) {
  Axis axis{.from = kLowestHz,
            .to = to_hz,
            .is_logarithmic = true,
            .ticks = {},
            .title = "frequency in Hz"};
  for (double decade = 10; decade <= to_hz; decade *= 10)
    for (int digit = 1; digit < 10; ++digit)
      if (decade * digit <= to_hz)
        axis.ticks.push_back({decade * digit, digit == 1 || digit == 2 || digit == 5
                                                  ? hz_label(decade * digit)
                                                  : std::string()});
  return axis;
}

Axis time_axis(double seconds) {
  const double unit = seconds > 3 * 3600 ? 3600 : seconds > 180 ? 60 : seconds < 0.5 ? 0.001 : 1;
  const double whole = std::max(seconds / unit, 1e-3);
  double step = std::pow(10, std::floor(std::log10(whole)));
  while (whole / step < 5) step /= whole / step < 2.5 ? 5 : 2;
  Axis axis{.from = 0,
            .to = whole * unit,
            .ticks = {},
            .title = unit == 3600    ? "time in hours"
                     : unit == 60    ? "time in minutes"
                     : unit == 0.001 ? "time in milliseconds"
                                     : "time in seconds"};
  for (int i = 0; i * step <= whole * (1 + 1e-9); ++i)
    axis.ticks.push_back({i * step * unit, short_number(i * step)});
  return axis;
}

Axis decibel_axis(double lowest_db, double highest_db) {
  const double range = highest_db - lowest_db;
  const double step = range > 60 ? 20 : range > 30 ? 10 : 5;
  Axis axis{.from = std::floor(lowest_db / step) * step,
            .to = std::ceil(highest_db / step) * step,
            .ticks = {},
            .title = "level in dBFS"};
  for (double db = axis.from; db <= axis.to; db += step)
    axis.ticks.push_back({db, short_number(db)});
  return axis;
}

PlotPoint Frame::place(double x_value, double y_value) const {
  return {left + part_of(x, x_value) * width, top + (1 - part_of(y, y_value)) * height};
}

std::string Frame::drawn() const {
  const double bottom = top + height;
  std::string text;
  double last_label = -1e9;
  for (const Tick& tick : x.ticks) {
    const double at = place(tick.value, y.from).x;
    text += svg_line(at, top, at, bottom, tick.label.empty() ? "fine" : "grid");
    // Near the end of a decade labels would touch.
    if (tick.label.empty() || at - last_label < 30) continue;
    text += svg_text(at, bottom + 16, "middle", "label", tick.label);
    last_label = at;
  }
  for (const Tick& tick : y.ticks) {
    const double at = place(x.from, tick.value).y;
    text += svg_line(left, at, left + width, at, "grid");
    text += svg_text(left - 8, at + 4, "end", "label", tick.label);
  }
  text += svg_rectangle(left, top, width, height, "frame");
  text += svg_text(left + width / 2, bottom + 34, "middle", "label", x.title);
  text += "<g transform=\"translate(" + svg_number(left - 48) + "," + svg_number(top + height / 2) +
          ") rotate(-90)\">" + svg_text(0, 0, "middle", "label", y.title) + "</g>\n";
  return text;
}

}  // namespace corvin::cli
