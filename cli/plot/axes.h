// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A frame with a scale on each side, into which curves are drawn.

#ifndef CORVIN_CLI_PLOT_AXES_H_
#define CORVIN_CLI_PLOT_AXES_H_

#include <string>
#include <vector>

#include "cli/plot/svg.h"

namespace corvin::cli {

struct Tick {
  double value = 0;
  std::string label;  // empty: a line alone
};

/** One side of a frame. */
struct Axis {
  double from = 0, to = 1;
  bool is_logarithmic = false;
  std::vector<Tick> ticks;
  std::string title;  // with the unit
};

/** 10, 20, 50 Hz... up to `to_hz`, from 10. */
Axis frequency_axis(double to_hz);

/** 0 to `seconds`, in seconds, minutes or hours. */
Axis time_axis(double seconds);

/** dB in steps that leave room for their labels. */
Axis decibel_axis(double lowest_db, double highest_db);

/** A frame on the picture: its inner edges, and the axes along them. */
struct Frame {
  double left = 0, top = 0, width = 0, height = 0;
  Axis x, y;

  /** Where a value stands; within the frame whatever it is. */
  PlotPoint place(double x_value, double y_value) const;

  /** Lines, labels and titles. */
  std::string drawn() const;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_PLOT_AXES_H_
