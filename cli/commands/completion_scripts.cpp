// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/completion_scripts.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>
#include <vector>

namespace corvin::cli {
namespace {

struct Named {
  std::string name, description;
};

struct OptionWords {
  std::vector<std::string> names;    // with their dashes
  std::vector<std::string> choices;  // that its value is one of
  bool takes_value = false;
  std::string description;
};

// A command with the words that lead to it: "corvin tags set".
struct CommandWords {
  std::string path;
  std::vector<Named> commands;
  std::vector<OptionWords> options;
};

// Up to the end of its first sentence or clause: one line on a screen.
std::string short_form(const std::string& description) {
  return description.substr(0, std::min(description.find(". "), description.find("; ")));
}

std::vector<std::string> split(const std::string& text, char at) {
  std::vector<std::string> parts;
  for (size_t begin = 0, end; begin <= text.size(); begin = end + 1) {
    end = std::min(text.find(at, begin), text.size());
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

std::string join(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : " ") + part;
  return text;
}

OptionWords words_of(const CLI::Option& option) {
  OptionWords words{.names = {},
                    .choices = {},
                    .takes_value = option.get_items_expected_max() > 0,
                    .description = short_form(option.get_description())};
  for (const std::string& name : option.get_snames()) words.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) words.names.push_back("--" + name);
  if (option.get_type_name().find('|') != std::string::npos)
    words.choices = split(option.get_type_name(), '|');
  return words;
}

void collect(const CLI::App& app, const std::string& path, std::vector<CommandWords>& all) {
  CommandWords words{.path = path, .commands = {}, .options = {}};
  for (const CLI::Option* option : app.get_options()) {
    OptionWords option_words = words_of(*option);
    if (!option->get_positional())
      words.options.push_back(std::move(option_words));
    else
      for (const std::string& choice : option_words.choices) words.commands.push_back({choice, ""});
  }
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* command : commands)
    words.commands.push_back({command->get_name(), short_form(command->get_description())});
  all.push_back(std::move(words));
  for (const CLI::App* command : commands) collect(*command, path + " " + command->get_name(), all);
}

std::vector<CommandWords> commands_of(const CLI::App& app) {
  std::vector<CommandWords> all;
  collect(app, app.get_name(), all);
  return all;
}

std::string shell_quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

// `case` patterns of the options of a command that satisfy `wanted`: "corvin tags:-i"|...
std::string patterns(const CommandWords& command, const OptionWords& option) {
  std::string result;
  for (const std::string& name : option.names)
    result += (result.empty() ? "\"" : "|\"") + command.path + " " + name + "\"";
  return result;
}

// Shell code that leaves the command's words in $command; those before the cursor are "$@".
std::string find_command(const std::vector<CommandWords>& all) {
  std::string known;
  for (const CommandWords& command : all)
    if (&command != &all.front()) known += (known.empty() ? "\"" : "|\"") + command.path + "\"";
  return "    case \"$command $word\" in\n      " + known +
         ") command=\"$command $word\" ;;\n"
         "    esac\n";
}

}  // namespace

std::string bash_completion(const CLI::App& app) {
  const std::vector<CommandWords> all = commands_of(app);
  std::string values, words;
  for (const CommandWords& command : all) {
    std::vector<std::string> names, commands;
    for (const Named& named : command.commands) commands.push_back(named.name);
    for (const OptionWords& option : command.options) {
      names.insert(names.end(), option.names.begin(), option.names.end());
      if (option.takes_value)
        values += "    " + patterns(command, option) + ") values=" +
                  (option.choices.empty() ? "FILE" : shell_quoted(join(option.choices))) + " ;;\n";
    }
    words += "    \"" + command.path + "\")\n      options=" + shell_quoted(join(names)) +
             " commands=" + shell_quoted(join(commands)) + " ;;\n";
  }
  return "# bash completion for corvin\n"
         "_corvin() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local command=corvin word values= options= commands=\n"
         "  for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n" +
         find_command(all) +
         "  done\n"
         "  case \"$command $previous\" in\n" +
         values +
         "  esac\n"
         "  case \"$command\" in\n" +
         words +
         "  esac\n"
         "  COMPREPLY=()\n"
         "  if [ -n \"$values\" ]; then\n"
         "    [ \"$values\" = FILE ] || COMPREPLY=($(compgen -W \"$values\" -- \"$current\"))\n"
         "  elif [[ $current == -* ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
         "  else\n"
         "    COMPREPLY=($(compgen -W \"$commands\" -- \"$current\"))\n"
         "  fi\n"
         "}\n"
         "complete -o default -o bashdefault -F _corvin corvin\n";
}

std::string zsh_completion(const CLI::App& app) {
  const std::vector<CommandWords> all = commands_of(app);
  const auto described = [](const std::string& name, const std::string& description) {
    return "\n        " + shell_quoted(name + ":" + description);
  };
  std::string values, words;
  for (const CommandWords& command : all) {
    words += "    \"" + command.path + "\")\n      options=(";
    for (const OptionWords& option : command.options) {
      for (const std::string& name : option.names) words += described(name, option.description);
      if (option.takes_value)
        values += "    " + patterns(command, option) + ") " +
                  (option.choices.empty() ? "_files" : "compadd " + join(option.choices)) +
                  "; return ;;\n";
    }
    words += ")\n      commands=(";
    for (const Named& named : command.commands) words += described(named.name, named.description);
    words += ") ;;\n";
  }
  return "#compdef corvin\n"
         "_corvin() {\n"
         "  local command=corvin word\n"
         "  local -a options commands\n"
         "  for word in \"${(@)words[2,CURRENT-1]}\"; do\n" +
         find_command(all) +
         "  done\n"
         "  case \"$command ${words[CURRENT-1]}\" in\n" +
         values +
         "  esac\n"
         "  case \"$command\" in\n" +
         words +
         "  esac\n"
         "  if [[ $PREFIX == -* ]]; then\n"
         "    _describe option options\n"
         "  else\n"
         "    (( $#commands )) && _describe command commands\n"
         "    _files\n"
         "  fi\n"
         "}\n"
         "if [[ $funcstack[1] == _corvin ]]; then _corvin \"$@\"; else compdef _corvin corvin; "
         "fi\n";
}

std::string fish_completion(const CLI::App& app) {
  std::string script = "# fish completion for corvin\n";
  for (const CommandWords& command : commands_of(app)) {
    // Every word of the path is there, and none that leads further down.
    std::string condition;
    const std::vector<std::string> path = split(command.path, ' ');
    for (size_t i = 1; i < path.size(); ++i)
      condition += (condition.empty() ? "" : "; and ") + ("__fish_seen_subcommand_from " + path[i]);
    std::vector<std::string> below;
    for (const Named& named : command.commands) below.push_back(named.name);
    if (!below.empty())
      condition += std::string(condition.empty() ? "" : "; and ") +
                   "not __fish_seen_subcommand_from " + join(below);
    const std::string begin = "complete -c corvin -n " + shell_quoted(condition);
    for (const Named& named : command.commands)
      script += begin + " -a " + named.name + " -d " + shell_quoted(named.description) + "\n";
    for (const OptionWords& option : command.options) {
      script += begin;
      for (const std::string& name : option.names)
        script += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      if (!option.choices.empty())
        script += " -x -a " + shell_quoted(join(option.choices));
      else if (option.takes_value)
        script += " -r";
      script += " -d " + shell_quoted(option.description) + "\n";
    }
  }
  return script;
}

}  // namespace corvin::cli
