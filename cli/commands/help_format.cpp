// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/help_format.h"

#include <algorithm>

namespace corvin::cli {
namespace {

constexpr size_t kColumns = 80;

// Names and text as the library sets them, the text wrapped in its own column.
std::string in_two_columns(const std::string& name, const std::string& text, size_t left) {
  std::string line = "  " + name;
  if (line.size() + 2 > left)
    line += '\n' + std::string(left, ' ');
  else
    line.append(left - line.size(), ' ');
  const size_t begun = line.rfind('\n') == std::string::npos ? 0 : line.rfind('\n') + 1;
  return line.substr(0, begun) + wrapped(line.substr(begun) + text, kColumns, left) + '\n';
}

}  // namespace

std::string wrapped(std::string_view text, size_t columns, size_t indent) {
  std::string result;
  size_t column = 0;
  for (size_t i = 0; i < text.size();) {
    const size_t spaces = std::min(text.find_first_not_of(' ', i), text.size()) - i;
    const size_t end = std::min(text.find_first_of(" \n", i + spaces), text.size());
    const size_t word = end - i - spaces;
    if (column > indent && word > 0 && column + spaces + word > columns) {
      result += '\n' + std::string(indent, ' ');
      column = indent;
    } else {
      result.append(spaces, ' ');
      column += spaces;
    }
    result += text.substr(i + spaces, word);
    column += word;
    i = end;
    if (i < text.size() && text[i] == '\n') {
      result += '\n';
      column = 0;
      ++i;
    }
  }
  return result;
}

std::string HelpFormat::make_option(const CLI::Option* option, bool is_positional) const {
  return in_two_columns(make_option_name(option, is_positional) + make_option_opts(option),
                        make_option_desc(option), get_column_width());
}

std::string HelpFormat::make_subcommand(const CLI::App* command) const {
  return in_two_columns(command->get_name(), command->get_description(), get_column_width());
}

std::string HelpFormat::make_usage(const CLI::App* app, std::string name) const {
  return wrapped(CLI::Formatter::make_usage(app, std::move(name)), kColumns, 7);
}

// Which options exclude each other the message tells those who give both.
std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  if (option->get_type_size() == 0) return "";
  std::string text = " " + (option->get_positional() ? "" : option->get_type_name());
  if (option->get_expected_max() > 1) text += " ...";
  return text == " " ? "" : text;
}

}  // namespace corvin::cli
