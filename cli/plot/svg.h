// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Pieces of an SVG picture as text. Colours are classes of one style sheet, which has a dark set for
// viewers that ask for it; the light one stands where that is not known.

#ifndef CORVIN_CLI_PLOT_SVG_H_
#define CORVIN_CLI_PLOT_SVG_H_

#include <span>
#include <string>
#include <string_view>

namespace corvin::cli {

struct PlotPoint {
  double x = 0, y = 0;
};

/** A text as the content of an element: printable() and with its marks escaped. */
std::string svg_escaped(std::string_view text);

/** "12.3". */
std::string svg_number(double value);

std::string svg_line(double x1, double y1, double x2, double y2, const char* style);

/** @param anchor  "start", "middle" or "end" */
std::string svg_text(double x, double y, const char* anchor, const char* style,
                     std::string_view text);

std::string svg_polyline(std::span<const PlotPoint> points, const std::string& style);

/** The area between two lines of as many points. */
std::string svg_area(std::span<const PlotPoint> upper, std::span<const PlotPoint> lower,
                     const std::string& style);

std::string svg_rectangle(double x, double y, double width, double height, const char* style);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_PLOT_SVG_H_
