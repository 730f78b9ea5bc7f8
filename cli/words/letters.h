// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Names that mean the same in letters of either case.

#ifndef CORVIN_CLI_WORDS_LETTERS_H_
#define CORVIN_CLI_WORDS_LETTERS_H_

#include <string>

namespace corvin::cli {

/** `text` with its ASCII letters small. */
inline std::string lower_case(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  return text;
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_LETTERS_H_
