// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The plain reference.

#include "studio/kernels/path_search.h"

#include <bit>

namespace corvin::studio {
namespace {

template <typename T>
struct Lanes {
  T lane[kSearchLanes];
};
using Floats = Lanes<float>;
using Ints = Lanes<std::int32_t>;

constexpr std::int32_t kLaneNumbers[kSearchLanes] = {0, 1, 2, 3, 4, 5, 6, 7};

std::int32_t wrap(std::uint32_t value) { return static_cast<std::int32_t>(value); }
std::uint32_t word(std::int32_t value) { return static_cast<std::uint32_t>(value); }

template <typename Made, typename Function>
inline Made each(Function function) {
  Made made;
  for (unsigned i = 0; i < kSearchLanes; ++i) made.lane[i] = function(i);
  return made;
}

template <typename T>
inline Lanes<T> load(const T* p) {
  return each<Lanes<T>>([&](unsigned i) { return p[i]; });
}
template <typename T>
inline void store(T* p, const Lanes<T>& v) {
  for (unsigned i = 0; i < kSearchLanes; ++i) p[i] = v.lane[i];
}
template <typename T>
inline Lanes<T> broadcast(T value) {
  return each<Lanes<T>>([&](unsigned) { return value; });
}
inline Ints pair(std::int32_t left, std::int32_t right) {
  return each<Ints>([&](unsigned i) { return i < kSearchLanes / 2 ? left : right; });
}

inline Floats operator+(const Floats& a, const Floats& b) {
  return each<Floats>([&](unsigned i) { return a.lane[i] + b.lane[i]; });
}
inline Floats operator-(const Floats& a, const Floats& b) {
  return each<Floats>([&](unsigned i) { return a.lane[i] - b.lane[i]; });
}
inline Floats operator*(const Floats& a, const Floats& b) {
  return each<Floats>([&](unsigned i) { return a.lane[i] * b.lane[i]; });
}
inline Ints operator+(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return wrap(word(a.lane[i]) + word(b.lane[i])); });
}
inline Ints operator-(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return wrap(word(a.lane[i]) - word(b.lane[i])); });
}
inline Ints operator&(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return a.lane[i] & b.lane[i]; });
}
inline Ints operator|(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return a.lane[i] | b.lane[i]; });
}
inline Ints operator^(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return a.lane[i] ^ b.lane[i]; });
}
inline Ints clear(const Ints& a, const Ints& mask) {
  return each<Ints>([&](unsigned i) { return a.lane[i] & ~mask.lane[i]; });
}

inline Floats to_float(const Ints& v) {
  return each<Floats>([&](unsigned i) { return static_cast<float>(v.lane[i]); });
}
inline Ints to_ints(const Floats& v) {
  // Added and taken away again, it leaves the nearest integer.
  constexpr double kRounder = 0x1.8p52;
  return each<Ints>([&](unsigned i) {
    const double rounded = (static_cast<double>(v.lane[i]) + kRounder) - kRounder;
    return static_cast<std::int32_t>(rounded);
  });
}
inline Ints as_ints(const Floats& v) { return std::bit_cast<Ints>(v); }
inline Floats as_floats(const Ints& v) { return std::bit_cast<Floats>(v); }

inline Ints negative(const Ints& v) {
  return each<Ints>([&](unsigned i) { return v.lane[i] < 0 ? -1 : 0; });
}
inline Ints equal(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return a.lane[i] == b.lane[i] ? -1 : 0; });
}
inline Ints greater(const Ints& a, const Ints& b) {
  return each<Ints>([&](unsigned i) { return a.lane[i] > b.lane[i] ? -1 : 0; });
}
inline Ints select(const Ints& mask, const Ints& yes, const Ints& no) {
  return each<Ints>([&](unsigned i) { return mask.lane[i] != 0 ? yes.lane[i] : no.lane[i]; });
}
inline unsigned outside(const Floats& v, float bound) {
  unsigned mask = 0;
  for (unsigned i = 0; i < kSearchLanes; ++i) {
    if (v.lane[i] > bound || v.lane[i] < -bound) mask |= 1u << i;
  }
  return mask;
}
inline Ints permute(const Ints& v, const Ints& index) {
  return each<Ints>([&](unsigned i) { return v.lane[index.lane[i] & 7]; });
}

template <unsigned kPaths>
inline Ints smallest(const Ints& v) {
  Ints made = v;
  for (unsigned distance = 1; distance < kPaths; distance *= 2) {
    const Ints from = made;
    made = each<Ints>([&](unsigned i) {
      return from.lane[i] < from.lane[i ^ distance] ? from.lane[i] : from.lane[i ^ distance];
    });
  }
  return made;
}
template <unsigned kPaths>
inline Ints largest(const Ints& v) {
  Ints made = v;
  for (unsigned distance = 1; distance < kPaths; distance *= 2) {
    const Ints from = made;
    made = each<Ints>([&](unsigned i) {
      return from.lane[i] > from.lane[i ^ distance] ? from.lane[i] : from.lane[i ^ distance];
    });
  }
  return made;
}

#include "studio/kernels/path_search_body.inc"

}  // namespace

extern const PathSearchVariant path_search_portable = {kPortable, run};

}  // namespace corvin::studio
