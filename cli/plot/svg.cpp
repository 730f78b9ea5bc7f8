// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/plot/svg.h"

#include <cstdio>

#include "cli/words/unicode_text.h"

namespace corvin::cli {
namespace {

std::string attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + svg_number(value) + "\"";
}

std::string attribute(const char* name, std::string_view value) {
  return std::string(" ") + name + "=\"" + std::string(value) + "\"";
}

void append(std::string& list, const PlotPoint& point) {
  if (!list.empty()) list += ' ';
  list += svg_number(point.x) + "," + svg_number(point.y);
}

}  // namespace

std::string svg_escaped(std::string_view text) {
  std::string result;
  for (const char c : printable(text)) switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += c;
    }
  // No document may have these two characters.
  for (const char* barred : {"\xef\xbf\xbe", "\xef\xbf\xbf"})
    for (size_t at; (at = result.find(barred)) != std::string::npos;) result.replace(at, 3, "?");
  return result;
}

std::string svg_number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string svg_line(double x1, double y1, double x2, double y2, const char* style) {
  return "<line" + attribute("class", style) + attribute("x1", x1) + attribute("y1", y1) +
         attribute("x2", x2) + attribute("y2", y2) + "/>\n";
}

std::string svg_text(double x, double y, const char* anchor, const char* style,
                     std::string_view text) {
  return "<text" + attribute("class", style) + attribute("x", x) + attribute("y", y) +
         attribute("text-anchor", anchor) + ">" + svg_escaped(text) + "</text>\n";
}

std::string svg_polyline(std::span<const PlotPoint> points, const std::string& style) {
  std::string list;
  for (const PlotPoint& point : points) append(list, point);
  return "<polyline" + attribute("class", style) + attribute("points", list) + "/>\n";
}

std::string svg_area(std::span<const PlotPoint> upper, std::span<const PlotPoint> lower,
                     const std::string& style) {
  std::string list;
  for (const PlotPoint& point : upper) append(list, point);
  for (size_t i = lower.size(); i-- > 0;) append(list, lower[i]);
  return "<polygon" + attribute("class", style) + attribute("points", list) + "/>\n";
}

std::string svg_rectangle(double x, double y, double width, double height, const char* style) {
  return "<rect" + attribute("class", style) + attribute("x", x) + attribute("y", y) +
         attribute("width", width) + attribute("height", height) + "/>\n";
}

}  // namespace corvin::cli
