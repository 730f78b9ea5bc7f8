// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// corvin plan: how the engine gets from one rate to another, and what that does to the sound.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands/choice_option.h"
#include "cli/commands/commands.h"
#include "cli/commands/convert_requests.h"
#include "cli/commands/option_values.h"
#include "cli/commands/sound_choices.h"
#include "cli/commands/value_option.h"
#include "cli/measure/engine_response.h"
#include "cli/words/failure.h"
#include "cli/words/measures.h"

namespace corvin::cli {
namespace {

using Json = nlohmann::ordered_json;

struct Options {
  AskedRate from, to;
  corvin_phase phase = CORVIN_LINEAR_PHASE;
  corvin_modulator modulator = CORVIN_MODULATOR_HIGH;
  std::optional<Band> lowpass;
  bool as_json = false;
};

struct Rate {
  bool is_dsd = false;
  uint32_t hz = 0;
};

// A multiple counts from the base of the other rate.
Rate rate_of(const AskedRate& asked, const AskedRate& other) {
  if (asked.dsd_multiple) return {true, *asked.dsd_multiple * base_rate_hz(other.hz.value_or(0))};
  const uint32_t hz = asked.hz.value_or(0);
  if (is_octave_of_base(hz, 64, 512)) return {true, hz};
  if (hz >= kMinPcmRateHz && hz <= kMaxPcmRateHz) return {false, hz};
  throw Failure(
      kUsage, asked.text,
      "is neither dsd64, dsd128, dsd256 or dsd512, nor a PCM rate from 8000 to 768000 Hz");
}

// One run of the engine.
struct Step {
  std::string name, stages;
  EngineResponse response;
  BandEdges edges;
  double latency_s = 0;  // of a stream
  double speed = 0;
};

// As the description of the stages has them, which knows what the defaults come to.
BandEdges edges_in(const std::string& stages) {
  BandEdges edges;
  const size_t at = std::min(stages.find("flat to"), stages.size());
  if (std::sscanf(stages.c_str() + at, "flat to %lf Hz, closed from %lf", &edges.pass_hz,
                  &edges.stop_hz) != 2)
    throw Failure(kBadInput, "plan", "the engine describes no band");
  return edges;
}

template <class Engine, class Settings>
Step step_of(const std::string& name, const Settings& settings, double latency_hz) {
  const Engine engine(settings);
  Step step{.name = name,
            .stages = engine.describe(),
            .response = {},
            .edges = edges_in(engine.describe()),
            .latency_s = static_cast<double>(engine.latency()) / latency_hz,
            .speed = speed_of(settings)};
  step.response = response_of(settings, step.edges);
  return step;
}

template <class Settings>
void set_band_of(const Options& options, double highest_hz, Settings& settings) {
  ConvertSettings band;
  set_band(band, options.lowpass, highest_hz);
  settings.pass_hz = band.pass_hz;
  settings.stop_hz = band.stop_hz;
  settings.phase = options.phase;
}

Step decoding(const Options& options, uint32_t dsd_hz, uint32_t pcm_hz, double highest_hz) {
  DecoderSettings settings;
  settings.dsd_rate = dsd_hz;
  settings.pcm_rate = pcm_hz;
  set_band_of(options, highest_hz, settings);
  return step_of<Decoder>(rate_name(dsd_hz) + " to " + std::to_string(pcm_hz) + " Hz", settings,
                          pcm_hz);
}

Step encoding(const Options& options, uint32_t pcm_hz, uint32_t dsd_hz) {
  EncoderSettings settings;
  settings.pcm_rate = pcm_hz;
  settings.dsd_rate = dsd_hz;
  settings.modulator = options.modulator;
  set_band_of(options, std::min(pcm_hz / 2.0, dsd_hz / 16.0), settings);
  return step_of<Encoder>(std::to_string(pcm_hz) + " Hz to " + rate_name(dsd_hz), settings, dsd_hz);
}

Step resampling(uint32_t from_hz, uint32_t to_hz) {
  Step step;
  step.name = std::to_string(from_hz) + " Hz to " + std::to_string(to_hz) + " Hz";
  step.stages = "libsoxr, very high quality: flat to 91 % of half the lower rate\n";
  return step;
}

std::vector<Step> steps_of(const Options& options, const Rate& from, const Rate& to) {
  if (!from.is_dsd && !to.is_dsd)
    throw Failure(kUsage, options.to.text, "PCM is converted to DSD, and DSD to both");
  std::vector<Step> steps;
  if (from.is_dsd && to.is_dsd) {
    if (from.hz == to.hz) return steps;
    const uint32_t lower_hz = std::min(from.hz, to.hz);
    steps.push_back(decoding(options, from.hz, lower_hz / 32, lower_hz / 64.0));
    steps.push_back(encoding(options, lower_hz / 32, to.hz));
  } else if (from.is_dsd) {
    const uint32_t engine_hz = engine_rate_hz(to.hz);
    steps.push_back(decoding(options, from.hz, engine_hz, to.hz / 2.0));
    if (engine_hz != to.hz) steps.push_back(resampling(engine_hz, to.hz));
  } else {
    const uint32_t engine_hz = engine_rate_hz(from.hz);
    if (engine_hz != from.hz) steps.push_back(resampling(from.hz, engine_hz));
    steps.push_back(encoding(options, engine_hz, to.hz));
  }
  return steps;
}

// ---- Told -----------------------------------------------------------------------------------

// To what is printed; -0 is 0.
double rounded(double value, double steps) { return std::round(value * steps) / steps + 0.0; }

void print(const Step& step) {
  std::printf("%s\n", step.name.c_str());
  size_t begin = 0;
  for (size_t end; (end = step.stages.find('\n', begin)) != std::string::npos; begin = end + 1)
    std::printf("  %s\n", step.stages.substr(begin, end - begin).c_str());
  if (step.speed == 0) return;
  const EngineResponse& response = step.response;
  std::printf("  ripple               %.7f dB up to %.0f Hz\n", response.ripple_db,
              step.edges.pass_hz);
  if (response.stop_db)
    std::printf("  stop band            %.1f dB from %.0f Hz on\n", *response.stop_db,
                step.edges.stop_hz);
  for (const ResponsePoint& point : response.points)
    std::printf("  response at %8.0f Hz %10.3f dB\n", point.hz, rounded(point.db, 1000));
  std::printf("  delay                %.4f ms\n", rounded(1000 * response.delay_s, 10000));
  std::printf("  latency of a stream  %.1f ms\n", 1000 * step.latency_s);
  std::printf("  speed here           %.0f times real time, two channels on one thread\n",
              step.speed);
}

Json json_of(const Step& step) {
  Json object = {{"step", step.name}, {"stages", Json::array()}};
  size_t begin = 0;
  for (size_t end; (end = step.stages.find('\n', begin)) != std::string::npos; begin = end + 1)
    object["stages"].push_back(step.stages.substr(begin, end - begin));
  if (step.speed == 0) return object;
  object["pass_hz"] = step.edges.pass_hz;
  object["stop_hz"] = step.edges.stop_hz;
  object["ripple_db"] = step.response.ripple_db;
  if (step.response.stop_db) object["stop_db"] = *step.response.stop_db;
  object["response"] = Json::array();
  for (const ResponsePoint& point : step.response.points)
    object["response"].push_back({{"hz", point.hz}, {"db", point.db}});
  object["delay_s"] = step.response.delay_s;
  object["latency_s"] = step.latency_s;
  object["times_real_time"] = step.speed;
  return object;
}

void tell(const Options& options) {
  const Rate from = rate_of(options.from, options.to), to = rate_of(options.to, options.from);
  const std::vector<Step> steps = steps_of(options, from, to);
  if (options.as_json) {
    Json list = Json::array();
    for (const Step& step : steps) list.push_back(json_of(step));
    std::printf("%s\n", list.dump(2).c_str());
    return;
  }
  if (steps.empty()) std::printf("%s is copied bit for bit\n", rate_name(from.hz).c_str());
  for (const Step& step : steps) print(step);
}

}  // namespace

void add_plan_command(CLI::App& app, int&) {
  CLI::App* command =
      app.add_subcommand("plan", "Show how the engine gets from one rate to another");
  auto options = std::make_shared<Options>();
  const std::string wanted = "a rate such as 44.1k, 88200, dxd, dsd64 or 128";
  add_value(*command, "FROM", options->from, rate_in, wanted,
            "Rate of the input, as for convert --rate: 44.1k, 88200, dxd, dsd64, 2822400")
      ->required();
  add_value(*command, "TO", options->to, rate_in, wanted, "Rate of the output")->required();
  add_choice(*command, "--phase", options->phase, kPhases,
             "Phase of the filters, as for convert; by default linear")
      ->check(one_of(kPhases));
  add_value(*command, "--lowpass", options->lowpass, band_in, "off, a frequency, or PASS:STOP",
            "Band to keep, as for convert --lowpass")
      ->type_name("PASS[:STOP]");
  add_choice(*command, "--modulator", options->modulator, kModulators,
             "For DSD, as for convert; by default high")
      ->check(one_of(kModulators));
  command->add_flag("--json", options->as_json, "Print a JSON array of an object for each step");
  command->callback([options] { tell(*options); });
}

}  // namespace corvin::cli
