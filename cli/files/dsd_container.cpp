// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/dsd_container.h"

#include <algorithm>
#include <string_view>

namespace corvin::cli {

std::optional<corvin_container> container_of(const std::string& path) {
  const auto ends_in = [&](std::string_view ending) {
    return path.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), path.rbegin(), [](char a, char b) {
             return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b + ('a' - 'A')) : b);
           });
  };
  if (ends_in(".dff")) return CORVIN_DSDIFF;
  if (ends_in(".dsf")) return CORVIN_DSF;
  if (ends_in(".1bit")) return CORVIN_ONE_BIT;
  return {};
}

const char* container_name(uint32_t container) {
  constexpr const char* kNames[] = {"unknown", "DSDIFF", "DSF", "1bit"};
  return kNames[container <= 3 ? container : 0];
}

}  // namespace corvin::cli
