// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/stdout_name.h"

#include <unistd.h>

#include "cli/words/unicode_text.h"

namespace corvin::cli {

std::string name_on_stdout(std::string_view name) {
  static const bool is_terminal = isatty(STDOUT_FILENO) == 1;
  return is_terminal ? printable(name) : on_one_line(name);
}

}  // namespace corvin::cli
