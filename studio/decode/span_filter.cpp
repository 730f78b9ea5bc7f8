// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "studio/decode/span_filter.h"

#include <algorithm>

namespace corvin::studio {
namespace {

// Rows of the integer filter made at a time for the short filter: they stay in the first-level
// cache's neighbourhood and the repeated warm-up is below one percent.
constexpr std::size_t kSliceRows = 1024;

std::size_t bit_rows(const DecodePlan& plan) {
  const std::size_t all = plan.bit_steps * plan.bit_table.outputs_per_step;
  return plan.fold_taps.empty() ? all : std::min(all, kSliceRows + plan.fold_taps.size());
}

}  // namespace

SpanFilter::SpanFilter(const DecodePlan& plan, const Kernels& kernels)
    : plan_(plan),
      kernels_(kernels),
      columns_(2 * kernels.spectral->lanes),
      streams_(columns_),
      slice_(columns_),
      places_(kernels.spectral->lanes),
      rows_(bit_rows(plan) * columns_),
      work_(plan.shape.forward.points * columns_),
      result_(plan.shape.inverse.points * columns_) {}

void SpanFilter::run(const std::uint8_t* const* in, double* const* out, std::size_t items) {
  const std::size_t lanes = items_at_once();
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    const bool used = lane < items;
    streams_[lane] = used ? in[lane] : nullptr;
    streams_[lanes + lane] = used ? in[lane] + plan_.hop_bytes : nullptr;
    places_[lane] = used ? out[lane] : nullptr;
  }
  const bool folds = !plan_.fold_taps.empty();
  if (folds) {
    fold();
  } else {
    kernels_.bit_fir->run(plan_.bit_table, streams_.data(), columns_, plan_.bit_steps,
                          rows_.data());
  }
  kernels_.spectral->run(plan_.shape, folds ? nullptr : rows_.data(), work_.data(), result_.data(),
                         places_.data());
}

void SpanFilter::fold() {
  const std::size_t taps = plan_.fold_taps.size();
  const std::size_t decimation = plan_.fold_boxcars->decimation();
  const std::size_t points = plan_.shape.forward.points;
  const std::size_t overlap = taps - decimation;  // rows that two slices share
  std::size_t kept = 0;                           // rows from the slice before
  std::size_t next = 0;                           // row of the integer filter to make next
  std::size_t done = 0;
  while (done < points) {
    const std::size_t count = std::min(points - done, kSliceRows / decimation);
    const std::size_t needed = (count - 1) * decimation + taps - kept;
    for (std::size_t c = 0; c < columns_; ++c) {
      slice_[c] =
          streams_[c] == nullptr ? nullptr : streams_[c] + next * plan_.bit_table.bytes_per_step;
    }
    kernels_.bit_fir->run(plan_.bit_table, slice_.data(), columns_, needed,
                          rows_.data() + kept * columns_);
    kernels_.fold_fir->run(rows_.data(), columns_, plan_.fold_taps.data(), taps, decimation,
                           work_.data() + done * columns_, count);
    next += needed;
    done += count;
    kept = overlap;
    const std::int32_t* tail = rows_.data() + count * decimation * columns_;
    std::copy(tail, tail + overlap * columns_, rows_.data());
  }
}

}  // namespace corvin::studio
