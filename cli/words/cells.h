// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How wide texts are on a terminal, whatever the locale: lines that must not wrap are counted in
// character cells.

#ifndef CORVIN_CLI_WORDS_CELLS_H_
#define CORVIN_CLI_WORDS_CELLS_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace corvin::cli {

/** The cells that a printable() text takes at most. Rare combining marks are counted as characters of
 *  their own. */
size_t cells_of(std::string_view text);

/** The text when it takes up to `most` cells; else its beginning and end with "..." between. Empty
 *  below five cells. */
std::string shortened(std::string_view text, size_t most);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_CELLS_H_
