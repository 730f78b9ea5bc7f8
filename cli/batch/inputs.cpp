// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/inputs.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/words/failure.h"

namespace corvin::cli {
namespace {

namespace fs = std::filesystem;

// `directory` and `below` are empty or end with a slash.
void collect_directory(const std::string& directory, const std::string& below,
                       const std::function<bool(const std::string&)>& wanted,
                       std::vector<Input>& inputs) {
  std::error_code error;
  std::vector<std::string> files, directories;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.starts_with('.')) continue;
    // A status that cannot be had is left to whoever opens the file.
    std::error_code ignored;
    const bool is_directory = entry->symlink_status(ignored).type() == fs::file_type::directory;
    (is_directory ? directories : files).push_back(name);
  }
  if (error) inputs.push_back({.path = directory, .below = below, .problem = error.message()});
  std::sort(files.begin(), files.end());
  std::sort(directories.begin(), directories.end());
  for (const std::string& name : files) {
    std::error_code ignored;
    if (wanted(directory + name) && !fs::is_directory(directory + name, ignored))
      inputs.push_back({.path = directory + name, .below = below, .problem = ""});
  }
  for (const std::string& name : directories)
    collect_directory(directory + name + "/", below + name + "/", wanted, inputs);
}

}  // namespace

std::vector<Input> collect_inputs(const std::vector<std::string>& paths, bool recursive,
                                  const std::function<bool(const std::string&)>& wanted) {
  std::vector<Input> inputs;
  for (const std::string& path : paths) {
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) {
      inputs.push_back({.path = path, .below = "", .problem = ""});
      continue;
    }
    if (!recursive) throw Failure(kUsage, path, "is a directory; -R takes what is in it");
    const size_t before = inputs.size();
    collect_directory(path.ends_with('/') ? path : path + "/", "", wanted, inputs);
    if (inputs.size() == before) throw Failure(kUsage, path, "holds no file that this takes");
  }
  return inputs;
}

}  // namespace corvin::cli
