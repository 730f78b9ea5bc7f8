// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/commands/option_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "cli/words/letters.h"

namespace corvin::cli {
namespace {

// Beyond this no file has samples; it keeps sums within 64 bits.
constexpr double kMaxSample = 1e15;

// No value: `text` is not a number from its first to its last character. A leading plus is as good
// as none.
template <class Number>
std::optional<Number> number_in(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return number;
}

std::optional<double> finite_in(std::string_view text) {
  const auto number = number_in<double>(text);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

bool take_ending(std::string_view& text, std::string_view ending) {
  if (!text.ends_with(ending)) return false;
  text.remove_suffix(ending.size());
  return true;
}

// A frequency above 0: "44100", "44.1k", "2.8224MHz".
std::optional<double> hz_in(std::string_view text) {
  take_ending(text, "hz");
  const double unit = take_ending(text, "k") ? 1e3 : take_ending(text, "m") ? 1e6 : 1;
  const auto number = finite_in(text);
  if (!number || *number <= 0 || *number > 1e9) return {};
  return *number * unit;
}

std::vector<std::string_view> parts_of(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (size_t at = 0; at != std::string_view::npos;) {
    const size_t end = text.find(separator, at);
    parts.push_back(text.substr(at, end - at));
    at = end == std::string_view::npos ? end : end + 1;
  }
  return parts;
}

}  // namespace

std::optional<AskedRate> rate_in(const std::string& text) {
  const std::string lower = lower_case(text);
  AskedRate rate{.text = text, .hz = {}, .dsd_multiple = {}};
  if (lower == "dxd") {
    rate.hz = 352800;
    return rate;
  }
  const bool says_dsd = lower.starts_with("dsd");
  for (const uint32_t multiple : {64, 128, 256, 512})
    if (lower.substr(says_dsd ? 3 : 0) == std::to_string(multiple)) rate.dsd_multiple = multiple;
  if (rate.dsd_multiple) return rate;
  const auto hz = hz_in(lower);
  // 44.1k is 44100 however a double holds 44.1.
  if (!hz || *hz < 1 || *hz > 4294967295.0 || std::abs(*hz - std::round(*hz)) > 1e-6) return {};
  rate.hz = static_cast<uint32_t>(std::round(*hz));
  return rate;
}

std::optional<corvin_sample_format> sample_format_in(const std::string& text) {
  const std::string lower = lower_case(text);
  if (lower == "16") return CORVIN_S16;
  if (lower == "20") return CORVIN_S20;
  if (lower == "24") return CORVIN_S24;
  if (lower == "32") return CORVIN_S32;
  if (lower == "f32" || lower == "float") return CORVIN_F32;
  if (lower == "f64") return CORVIN_F64;
  return {};
}

std::optional<Gain> gain_in(const std::string& text) {
  const std::string lower = lower_case(text);
  if (lower == "auto") return Gain{};
  std::string_view number = lower;
  if (take_ending(number, "db")) take_ending(number, " ");
  const auto db = finite_in(number);
  if (!db || *db < -120 || *db > 60) return {};
  return Gain{.db = *db};
}

std::optional<Band> band_in(const std::string& text) {
  const std::string lower = lower_case(text);
  if (lower == "off") return Band{.is_full = true};
  const auto edges = parts_of(lower, ':');
  Band band;
  const auto pass = hz_in(edges[0]);
  if (!pass || edges.size() > 2) return {};
  band.pass_hz = *pass;
  if (edges.size() == 1) return band;
  const auto stop = hz_in(edges[1]);
  if (!stop || *stop <= *pass) return {};
  band.stop_hz = *stop;
  return band;
}

uint64_t Position::at_rate(uint32_t rate_hz) const {
  return sample ? *sample : static_cast<uint64_t>(std::llround(seconds * rate_hz));
}

std::optional<Position> position_in(const std::string& text) {
  if (const auto sample = number_in<uint64_t>(text))
    return static_cast<double>(*sample) <= kMaxSample ? std::optional(Position{.sample = *sample})
                                                      : std::nullopt;
  const std::string lower = lower_case(text);
  std::string_view time = lower;
  const bool says_seconds = take_ending(time, "s");
  const auto parts = parts_of(time, ':');
  if (parts.size() > 3 || (parts.size() == 1 && !says_seconds)) return {};
  double seconds = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    const auto number = finite_in(parts[i]);
    const bool is_last = i + 1 == parts.size();
    if (!number || *number < 0 || (i > 0 && *number >= 60)) return {};
    if (!is_last && *number != std::floor(*number)) return {};
    seconds = 60 * seconds + *number;
  }
  if (seconds > kMaxSample / 1e8) return {};
  return Position{.sample = {}, .seconds = seconds};
}

std::optional<std::vector<uint32_t>> channel_map_in(const std::string& text) {
  std::vector<uint32_t> map;
  for (const std::string_view part : parts_of(text, ',')) {
    const auto number = number_in<uint32_t>(part);
    if (!number || *number < 1 || *number > 64) return {};
    map.push_back(*number - 1);
  }
  return map.size() <= 64 ? std::optional(map) : std::nullopt;
}

}  // namespace corvin::cli
