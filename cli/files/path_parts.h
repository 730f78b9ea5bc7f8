// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The parts of a path, as texts: what stands in it is not looked up, and put together they are the
// path again.

#ifndef CORVIN_CLI_FILES_PATH_PARTS_H_
#define CORVIN_CLI_FILES_PATH_PARTS_H_

#include <string>

namespace corvin::cli {

/** Up to the last slash, with it; empty when there is none. */
inline std::string directory_of(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

/** What follows the last slash. */
inline std::string name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/** The name without its ending; a point at its beginning begins no ending. */
inline std::string stem_of(const std::string& path) {
  const std::string name = name_of(path);
  const size_t point = name.rfind('.');
  return point == std::string::npos || point == 0 ? name : name.substr(0, point);
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PATH_PARTS_H_
