// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/measure/report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <sstream>

#include "cli/files/speakers.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

constexpr size_t kChannelsInRow = 6;

std::string khz(double hz) {
  char text[40];
  std::snprintf(text, sizeof text, "%.5g kHz", hz / 1000);
  return hz < 1000 ? hz_text(hz) : text;
}

std::string with_unit(std::optional<double> value, int decimals, const char* unit) {
  return value ? fixed(value, decimals) + unit : "none";
}

const char* name_of(LinesIn where) {
  switch (where) {
    case LinesIn::kQuiet:
      return "quiet";
    case LinesIn::kStanding:
      return "standing";
    case LinesIn::kNothing:
      break;
  }
  return "";
}

// One row of a table: what each channel from `begin` to `end` has.
std::string cells(const std::string& name, size_t begin, size_t end,
                  const std::function<std::string(size_t)>& text) {
  std::string line;
  for (size_t i = begin; i < end; ++i) {
    const std::string cell = text(i);
    line += (cell.size() < 9 ? std::string(9 - cell.size(), ' ') : " ") + cell;
  }
  return report_row(name, line.substr(1));
}

std::string band_rows(const Measurement& measured, size_t begin, size_t end) {
  const auto& channels = measured.channels;
  std::string text;
  for (size_t band = 0; band < channels[begin].bands.size(); ++band) {
    const BandPower& edges = channels[begin].bands[band];
    text += cells(khz(edges.from_hz) + " - " + khz(edges.to_hz), begin, end,
                  [&](size_t i) { return fixed(power_db(channels[i].bands[band].power), 1); });
  }
  return text;
}

std::string table(const Measurement& measured, size_t begin, size_t end) {
  const auto& channels = measured.channels;
  const std::vector<std::string> names = channel_names(measured.facts);
  std::string text = cells("channel", begin, end, [&](size_t i) { return names[i]; });
  text += cells("sample peak dBFS", begin, end,
                [&](size_t i) { return fixed(amplitude_db(channels[i].level.peak), 2); });
  text += cells("true peak dBTP", begin, end,
                [&](size_t i) { return fixed(amplitude_db(channels[i].true_peak), 2); });
  text += cells("RMS dBFS", begin, end,
                [&](size_t i) { return fixed(power_db(channels[i].level.power), 2); });
  text += cells("DC %", begin, end, [&](size_t i) { return fixed(100 * channels[i].level.dc, 4); });
  text += band_rows(measured, begin, end);
  const auto noise = [&](size_t i, auto tell) {
    return channels[i].noise ? tell(*channels[i].noise) : std::string("none");
  };
  text += cells("noise begins kHz", begin, end, [&](size_t i) {
    return noise(i, [](const RisingNoise& one) { return fixed(one.begins_hz / 1000, 1); });
  });
  text += cells("  its level dBFS", begin, end, [&](size_t i) {
    return noise(i, [](const RisingNoise& one) { return fixed(power_db(one.third_octave), 1); });
  });
  text += cells("  outweighs to kHz", begin, end, [&](size_t i) {
    return noise(i, [](const RisingNoise& one) {
      return one.outweighs_hz ? fixed(*one.outweighs_hz / 1000, 1) : std::string("none");
    });
  });
  return text;
}

std::string lines_text(const Measurement& measured) {
  const std::vector<std::string> names = channel_names(measured.facts);
  std::string text;
  for (size_t i = 0; i < measured.channels.size(); ++i) {
    const ChannelMeasures& channel = measured.channels[i];
    if (channel.lines_in == LinesIn::kNothing) continue;
    const std::string name = "lines in " + names[i];
    const std::string where = std::string(" (") + name_of(channel.lines_in) + ")";
    if (channel.lines.empty()) text += report_row(name, "none" + where);
    for (size_t k = 0; k < channel.lines.size(); ++k) {
      const Line& line = channel.lines[k];
      text += report_row(k == 0 ? name : "", fixed(line.hz, 1) + " Hz  " +
                                                 fixed(power_db(line.power), 1) + " dBFS" +
                                                 (k == 0 ? where : ""));
    }
  }
  return text;
}

}  // namespace

std::string report_row(const std::string& name, const std::string& text) {
  char head[40];
  std::snprintf(head, sizeof head, "  %-19s  ", name.c_str());
  return head + text + "\n";
}

std::string left_table(const Measurement& left, const std::string& count_name,
                       const std::vector<uint64_t>& counts) {
  const std::vector<std::string> names = channel_names(left.facts);
  std::string text;
  for (size_t begin = 0; begin < counts.size(); begin += kChannelsInRow) {
    const size_t end = std::min(begin + kChannelsInRow, counts.size());
    text += cells("channel", begin, end, [&](size_t i) { return names[i]; });
    text += cells(count_name, begin, end, [&](size_t i) { return std::to_string(counts[i]); });
    text += cells("sample peak dBFS", begin, end,
                  [&](size_t i) { return fixed(amplitude_db(left.channels[i].level.peak), 2); });
    text += cells("RMS dBFS", begin, end,
                  [&](size_t i) { return fixed(power_db(left.channels[i].level.power), 2); });
    text += band_rows(left, begin, end);
  }
  return text;
}

std::optional<double> power_db(double power) {
  return power > 0 ? std::optional(10 * std::log10(power)) : std::nullopt;
}

std::optional<double> amplitude_db(double amplitude) { return power_db(amplitude * amplitude); }

Json number(std::optional<double> value, int decimals) {
  if (!value) return nullptr;
  const double scale = std::pow(10, decimals);
  // Adding 0 makes -0 a plain 0.
  return std::round(*value * scale) / scale + 0.0;
}

std::string fixed(std::optional<double> value, int decimals) {
  if (!value) return "-inf";
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, number(value, decimals).get<double>());
  return text;
}

std::string sound_text(const Measurement& measured) {
  const SoundFacts& facts = measured.facts;
  return counted(facts.channels, "channel") + " of " +
         (facts.is_dsd ? rate_name(facts.rate_hz)
                       : "PCM (" + std::to_string(facts.rate_hz) + " Hz)") +
         ", " + duration_text(measured.level_frames, facts.level_rate_hz);
}

std::vector<std::string> channel_names(const SoundFacts& facts) {
  std::vector<std::string> names;
  std::istringstream speakers(speaker_names(facts.speakers));
  for (std::string name; speakers >> name;) names.push_back(name);
  if (names.size() == facts.channels) return names;
  names.clear();
  for (uint32_t i = 1; i <= facts.channels; ++i) names.push_back(std::to_string(i));
  return names;
}

std::string report_text(const Measurement& measured) {
  const LoudnessFigures& loudness = measured.loudness;
  std::string text = report_row("sound", sound_text(measured));
  text += report_row("loudness", with_unit(loudness.integrated_lufs, 1, " LUFS") + ", range " +
                                     with_unit(loudness.range_lu, 1, " LU"));
  text += report_row("loudest", "momentary " + with_unit(loudness.most_momentary_lufs, 1, " LUFS") +
                                    ", short-term " +
                                    with_unit(loudness.most_short_term_lufs, 1, " LUFS"));
  for (size_t begin = 0; begin < measured.channels.size(); begin += kChannelsInRow)
    text += table(measured, begin, std::min(begin + kChannelsInRow, measured.channels.size()));
  return text + lines_text(measured);
}

Json report_json(const Measurement& measured) {
  const SoundFacts& facts = measured.facts;
  const LoudnessFigures& loudness = measured.loudness;
  Json json;
  json["kind"] = facts.is_dsd ? "dsd" : "pcm";
  json["rate_hz"] = facts.rate_hz;
  json["level_rate_hz"] = facts.level_rate_hz;
  json["spectrum_rate_hz"] = facts.spectrum_rate_hz;
  json["duration_seconds"] = number(measured.seconds(), 6);
  json["integrated_lufs"] = number(loudness.integrated_lufs, 2);
  json["range_lu"] = number(loudness.range_lu, 2);
  json["max_momentary_lufs"] = number(loudness.most_momentary_lufs, 2);
  json["max_short_term_lufs"] = number(loudness.most_short_term_lufs, 2);
  json["channels"] = Json::array();
  const std::vector<std::string> names = channel_names(facts);
  for (size_t i = 0; i < measured.channels.size(); ++i) {
    const ChannelMeasures& channel = measured.channels[i];
    Json one;
    one["name"] = names[i];
    one["sample_peak_dbfs"] = number(amplitude_db(channel.level.peak), 3);
    one["true_peak_dbtp"] = number(amplitude_db(channel.true_peak), 3);
    one["rms_dbfs"] = number(power_db(channel.level.power), 3);
    one["dc"] = number(channel.level.dc, 9);
    one["bands"] = Json::array();
    for (const BandPower& band : channel.bands)
      one["bands"].push_back({{"from_hz", band.from_hz},
                              {"to_hz", band.to_hz},
                              {"power_dbfs", number(power_db(band.power), 2)}});
    one["noise"] = nullptr;
    if (channel.noise) {
      one["noise"] = {{"begins_hz", number(channel.noise->begins_hz, 1)},
                      {"third_octave_dbfs", number(power_db(channel.noise->third_octave), 2)},
                      {"outweighs_hz", number(channel.noise->outweighs_hz, 1)}};
    }
    one["lines_in"] = nullptr;
    if (channel.lines_in != LinesIn::kNothing) one["lines_in"] = name_of(channel.lines_in);
    one["lines"] = Json::array();
    for (const Line& line : channel.lines)
      one["lines"].push_back(
          {{"hz", number(line.hz, 2)}, {"level_dbfs", number(power_db(line.power), 2)}});
    json["channels"].push_back(std::move(one));
  }
  return json;
}

}  // namespace corvin::cli
