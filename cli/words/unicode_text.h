// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Texts from files, which may be any bytes, made fit for a terminal and for other files. What is not
// UTF-8 is taken as ISO 8859-1, the other encoding that tags use.

#ifndef CORVIN_CLI_WORDS_UNICODE_TEXT_H_
#define CORVIN_CLI_WORDS_UNICODE_TEXT_H_

#include <string>
#include <string_view>

namespace corvin::cli {

/** UTF-8 on one line, with nothing in it that could steer a terminal or make a name pass for another:
 *  line feeds and tabs become spaces; other control characters, those that turn the direction of
 *  writing, and those without width question marks. */
std::string printable(std::string_view text);

/** For programs that read lines: the bytes as they are but for the ASCII control characters. */
std::string on_one_line(std::string_view text);

/** JSON of the same content, in which what printable() replaces is written as escapes. */
std::string printable_json(std::string_view json);

/** UTF-8 with whatever characters the text has. */
std::string utf8_of(std::string_view text);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_WORDS_UNICODE_TEXT_H_
