// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/batch/shard.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <functional>
#include <map>
#include <queue>
#include <string_view>
#include <utility>

namespace corvin::cli {
namespace {

constexpr uint32_t kMostShards = 1'000'000;

std::optional<uint32_t> number_in(std::string_view text) {
  uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || at != end) return std::nullopt;
  return number;
}

std::optional<uint32_t> number_of_variable(const char* name) {
  const char* const text = std::getenv(name);
  return text ? number_in(text) : std::nullopt;
}

}  // namespace

std::optional<Shard> shard_in(const std::string& text) {
  const size_t slash = text.find('/');
  if (slash == std::string::npos) return std::nullopt;
  const auto index = number_in(std::string_view(text).substr(0, slash));
  const auto count = number_in(std::string_view(text).substr(slash + 1));
  if (!index || !count || *index < 1 || *index > *count || *count > kMostShards)
    return std::nullopt;
  return Shard{.index = *index, .count = *count};
}

std::optional<Shard> shard_of_slurm_array() {
  const auto id = number_of_variable("SLURM_ARRAY_TASK_ID");
  const auto least = number_of_variable("SLURM_ARRAY_TASK_MIN");
  const auto count = number_of_variable("SLURM_ARRAY_TASK_COUNT");
  const uint32_t step = number_of_variable("SLURM_ARRAY_TASK_STEP").value_or(1);
  if (!id || !least || !count || step == 0 || *id < *least || (*id - *least) % step != 0)
    return std::nullopt;
  const uint32_t index = (*id - *least) / step + 1;
  if (index > *count || *count > kMostShards) return std::nullopt;
  return Shard{.index = index, .count = *count};
}

std::vector<bool> part_of_shard(const std::vector<Weight>& all, const Shard& shard) {
  struct Group {
    size_t first;
    uint64_t bytes = 0;
    uint32_t shard = 0;
  };
  std::map<std::string, Group> groups;
  for (size_t i = 0; i < all.size(); ++i)
    groups.emplace(all[i].group, Group{.first = i}).first->second.bytes += all[i].bytes;

  std::vector<Group*> heaviest_first;
  for (auto& [name, group] : groups) heaviest_first.push_back(&group);
  std::sort(heaviest_first.begin(), heaviest_first.end(), [](const Group* a, const Group* b) {
    return a->bytes != b->bytes ? a->bytes > b->bytes : a->first < b->first;
  });
  using Load = std::pair<uint64_t, uint32_t>;  // bytes of which shard; the least on top
  std::priority_queue<Load, std::vector<Load>, std::greater<>> loads;
  for (uint32_t i = 1; i <= std::min<size_t>(shard.count, groups.size()); ++i) loads.push({0, i});
  for (Group* group : heaviest_first) {
    const auto [bytes, least] = loads.top();
    loads.pop();
    loads.push({bytes + group->bytes, least});
    group->shard = least;
  }
  std::vector<bool> is_mine;
  for (const Weight& weight : all) is_mine.push_back(groups.at(weight.group).shard == shard.index);
  return is_mine;
}

}  // namespace corvin::cli
