// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tables of measurements that are kept in docs/quality. A test writes its table anew to the working
// directory and compares; after a change that is meant, copy it there, and the difference is what
// to review.

#ifndef CORVIN_TESTS_SUPPORT_COMMITTED_TABLE_H_
#define CORVIN_TESTS_SUPPORT_COMMITTED_TABLE_H_

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace corvin::testing {

/// Expects equal words, but for numbers that may differ by one in their last printed place, 0.1 or
/// 1e-7: the tests' own cosines are the system's. Figures below `rounding` are rounding of double
/// and not compared.
inline void expect_committed(const std::string& made, const std::string& name, double rounding) {
  std::ofstream(name) << made;
  std::ifstream file(std::string(CORVIN_SOURCE_DIR "/docs/quality/") + name);
  ASSERT_TRUE(file) << name;
  std::istringstream now(made);
  for (std::string a, b; std::getline(now, a);) {
    ASSERT_TRUE(std::getline(file, b)) << a;
    std::istringstream cells_a(a);
    std::istringstream cells_b(b);
    for (std::string x, y; std::getline(cells_a, x, ',');) {
      ASSERT_TRUE(std::getline(cells_b, y, ',')) << b;
      if (x == y) continue;
      const double value = std::strtod(x.c_str(), nullptr);
      const bool figure = value != 0 && x.find('.') != std::string::npos;
      const double step = x.find('.') + 2 == x.size() ? 0.1 : 1e-7;
      ASSERT_TRUE(figure && (value < rounding || std::fabs(value - std::stod(y)) < 1.5 * step))
          << a << "\n"
          << b;
    }
  }
  std::string more;
  EXPECT_FALSE(std::getline(file, more)) << more;
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_COMMITTED_TABLE_H_
