// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Coefficient sets and phase schedule.

#include "classic/foundation/polyphase.h"

void PolyphaseSets::Make(const float* prototype, int taps, int phases, double gain) {
  const auto length = static_cast<std::size_t>(taps / phases);
  const std::size_t stride = (length + kVectorSlack) / kVectorSlack * kVectorSlack;
  const auto count = static_cast<std::size_t>(phases);
  storage_ = MakeAlignedFloats(stride * count);
  rows_.clear();
  for (std::size_t k = 0; k < count; ++k) {
    float* const row = storage_.get() + k * stride;
    for (std::size_t i = 0; i < length; ++i)
      row[i] = static_cast<float>(
          static_cast<double>(prototype[k == 0 ? i * count : (i + 1) * count - k]) * gain);
    rows_.push_back(row);
  }
}

std::vector<DOT8Dec_DATA> MakePhaseSchedule(int l, int m, int inputs) {
  std::vector<DOT8Dec_DATA> schedule;
  schedule.reserve(static_cast<std::size_t>(static_cast<long long>(inputs) * l / m + 1));
  for (int i = 0; i < inputs; ++i) {
    const auto past = static_cast<int>(static_cast<long long>(l) * i % m);
    if (past == 0) schedule.push_back({0, i});
    for (int p = m - past; p < l; p += m) schedule.push_back({p, i + 1});
  }
  return schedule;
}
