// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// How --help looks: within 80 columns, whatever stands in it.

#ifndef CORVIN_CLI_COMMANDS_HELP_FORMAT_H_
#define CORVIN_CLI_COMMANDS_HELP_FORMAT_H_

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace corvin::cli {

/** The text with lines of up to `columns` characters, broken between words; all but the first begin
 *  with `indent` spaces. Line feeds stay. */
std::string wrapped(std::string_view text, size_t columns, size_t indent);

/** The library's own layout, wrapped. */
class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat() { column_width(27); }
  std::string make_option(const CLI::Option* option, bool is_positional) const override;
  std::string make_subcommand(const CLI::App* command) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
};

}  // namespace corvin::cli

#endif  // CORVIN_CLI_COMMANDS_HELP_FORMAT_H_
