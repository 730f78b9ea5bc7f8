// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/plot/sound_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "cli/plot/axes.h"
#include "cli/plot/svg.h"
#include "cli/words/cells.h"
#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

constexpr double kWidth = 900, kHeight = 700;
constexpr double kLeft = 70, kInnerWidth = 808;
constexpr double kLowestDb = -200;
constexpr double kAudibleHz = 20000;
constexpr size_t kMostCurves = 8;
constexpr size_t kTitleCells = 80;

constexpr const char* kStyle = R"(<style>
text { font-family: "DejaVu Sans", Verdana, Helvetica, sans-serif; font-size: 12px; fill: #333333; }
.title { font-size: 17px; font-weight: bold; }
.page { fill: #ffffff; }
.frame { fill: none; stroke: #888888; }
.grid { stroke: #d4d4d4; }
.fine { stroke: #ececec; }
.band { fill: #f3f0e6; }
.mark { stroke: #a05000; stroke-dasharray: 5 4; }
.marked { fill: #a05000; }
.line { fill: none; stroke-width: 1.3; stroke-linejoin: round; }
.most { fill: none; stroke-width: 0.8; stroke-opacity: 0.45; }
.peak { fill: #9db8dc; }
.rms { fill: #2a5ca8; }
.c0 { stroke: #1f5fae; } .c1 { stroke: #c4321c; } .c2 { stroke: #2b8a3e; } .c3 { stroke: #8a4fb0; }
.c4 { stroke: #b8860b; } .c5 { stroke: #11868a; } .c6 { stroke: #c2388f; } .c7 { stroke: #555555; }
@media (prefers-color-scheme: dark) {
text { fill: #dddddd; }
.page { fill: #16181c; }
.frame { stroke: #777777; }
.grid { stroke: #3a3d44; }
.fine { stroke: #26292f; }
.band { fill: #23221c; }
.mark { stroke: #f0a050; }
.marked { fill: #f0a050; }
.peak { fill: #3d5f8f; }
.rms { fill: #8ab4f8; }
.c0 { stroke: #6ea8f5; } .c1 { stroke: #ff7f6b; } .c2 { stroke: #6fcf85; } .c3 { stroke: #c79be8; }
.c4 { stroke: #e5bd4f; } .c5 { stroke: #58cfd3; } .c6 { stroke: #f283c5; } .c7 { stroke: #aaaaaa; }
}
</style>
)";

double db_of(double power) { return power > 0 ? 10 * std::log10(power) : -1000; }

/** The lowest and highest level of what is drawn. */
struct Range {
  double lowest = 0, highest = -1000;

  void take(double db) {
    if (db < kLowestDb) return;
    lowest = std::min(lowest, db);
    highest = std::max(highest, db);
  }
};

Axis level_axis(const Range& range, double least_range) {
  const double highest = std::max(range.highest, 0.0);
  return decibel_axis(std::max(kLowestDb, std::min(range.lowest, highest - least_range)), highest);
}

std::string colour_of(size_t curve) { return " c" + std::to_string(curve % kMostCurves); }

std::string legend(const SoundPicture& picture, size_t curves) {
  if (curves < 2) return "";
  std::string text;
  double x = kLeft + kInnerWidth - 62 * static_cast<double>(curves);
  for (size_t i = 0; i < curves; ++i, x += 62) {
    const std::array<PlotPoint, 2> stroke{PlotPoint{x, 76}, PlotPoint{x + 20, 76}};
    text += svg_polyline(stroke, "line" + colour_of(i));
    text += svg_text(x + 25, 80, "start", "label", picture.spectra[i].name);
  }
  return text;
}

std::string marks(const SoundPicture& picture, const Frame& frame) {
  std::string text;
  const double top = frame.top, bottom = frame.top + frame.height;
  if (picture.highest_hz > kAudibleHz) {
    const double at = frame.place(kAudibleHz, 0).x;
    text += svg_text(at - 6, top + 16, "end", "label", "up to 20 kHz");
    // Up to 22 or 24 kHz there is no room for the word.
    if (picture.highest_hz > 1.5 * kAudibleHz)
      text += svg_text(at + 6, top + 16, "start", "label", "ultrasonic");
  }
  if (picture.noise_hz && *picture.noise_hz < picture.highest_hz) {
    const double at = frame.place(*picture.noise_hz, 0).x;
    const bool is_right = at < frame.left + frame.width - 150;
    text += svg_line(at, top + 24, at, bottom, "mark");
    text += svg_text(at + (is_right ? 6 : -6), bottom - 8, is_right ? "start" : "end", "marked",
                     "noise rises");
  }
  return text;
}

std::string spectrum_part(const SoundPicture& picture) {
  const size_t curves = std::min(picture.spectra.size(), kMostCurves);
  Range range;
  for (size_t i = 0; i < curves; ++i)
    for (const CurvePoint& point : picture.spectra[i].points) {
      range.take(db_of(point.mean));
      range.take(db_of(point.most));
    }
  const Frame frame{.left = kLeft,
                    .top = 90,
                    .width = kInnerWidth,
                    .height = 330,
                    .x = frequency_axis(std::max(picture.highest_hz, 100.0)),
                    .y = level_axis(range, 120)};
  std::string text;
  if (picture.highest_hz > kAudibleHz) {
    const double at = frame.place(kAudibleHz, 0).x;
    text += svg_rectangle(at, frame.top, frame.left + frame.width - at, frame.height, "band");
  }
  text += frame.drawn();
  for (size_t i = curves; i-- > 0;) {
    std::vector<PlotPoint> mean, most;
    for (const CurvePoint& point : picture.spectra[i].points) {
      mean.push_back(frame.place(point.hz, db_of(point.mean)));
      most.push_back(frame.place(point.hz, db_of(point.most)));
    }
    text += svg_polyline(most, "most" + colour_of(i));
    text += svg_polyline(mean, "line" + colour_of(i));
  }
  text += marks(picture, frame) + legend(picture, curves);
  char unit[80];
  std::snprintf(unit, sizeof unit, "Spectrum, bins of %.3g Hz%s", picture.bin_hz,
                picture.spectra.size() > curves ? ", the first 8 channels" : "");
  return text + svg_text(kLeft, 80, "start", "label", unit);
}

std::string level_part(const SoundPicture& picture) {
  Range range;
  for (const LevelStep& step : picture.levels) {
    range.take(db_of(step.power));
    range.take(db_of(step.peak * step.peak));
  }
  // What fades goes out of the picture, not the rest into its upper edge.
  range.lowest = std::max(range.lowest, std::max(range.highest, 0.0) - 100);
  Frame frame{.left = kLeft,
              .top = 500,
              .width = kInnerWidth,
              .height = 140,
              .x = time_axis(picture.seconds),
              .y = level_axis(range, 40)};
  std::string text;
  std::vector<PlotPoint> peak, rms, base;
  double at = 0;
  for (const LevelStep& step : picture.levels)
    for (const double edge : {at, at + picture.step_seconds}) {
      at = std::min(edge, picture.seconds);
      peak.push_back(frame.place(at, db_of(step.peak * step.peak)));
      rms.push_back(frame.place(at, db_of(step.power)));
      base.push_back({peak.back().x, frame.top + frame.height});
    }
  const std::string axes = frame.drawn();
  if (!peak.empty()) {
    text += svg_area(peak, base, "peak");
    text += svg_area(rms, base, "rms");
  }
  text += axes;
  text += svg_text(kLeft, 490, "start", "label", "Level over time, of the loudest channel");
  const double right = kLeft + kInnerWidth;
  text += svg_rectangle(right - 112, 481, 12, 10, "peak") +
          svg_text(right - 95, 490, "start", "label", "peak");
  text += svg_rectangle(right - 46, 481, 12, 10, "rms") +
          svg_text(right - 29, 490, "start", "label", "RMS");
  return text;
}

}  // namespace

std::string svg_of(const SoundPicture& picture) {
  const std::string size = svg_number(kWidth) + " " + svg_number(kHeight);
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
      "viewBox=\"0 0 " +
      size + "\" width=\"" + svg_number(kWidth) + "\" height=\"" + svg_number(kHeight) + "\">\n";
  text += "<title>" + svg_escaped(picture.title) + "</title>\n";
  text += kStyle;
  text += svg_rectangle(0, 0, kWidth, kHeight, "page");
  text += svg_text(kLeft, 32, "start", "title", shortened(printable(picture.title), kTitleCells));
  text += svg_text(kLeft, 52, "start", "label", picture.subtitle);
  text += spectrum_part(picture);
  text += level_part(picture);
  return text + "</svg>\n";
}

}  // namespace corvin::cli
