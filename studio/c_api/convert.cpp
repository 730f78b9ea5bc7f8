// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions for whole conversions.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "formats/speakers.h"
#include "studio/c_api/boundary.h"
#include "studio/c_api/file.h"
#include "studio/convert/copy.h"
#include "studio/convert/stretch.h"
#include "studio/convert/to_dsd.h"
#include "studio/convert/to_pcm.h"

namespace corvin::studio {
namespace {

// The defaults where there are no settings or they end earlier.
bool adopt_settings(const corvin_convert_settings* settings, corvin_convert_settings& known) {
  return adopt(settings, known) || settings == nullptr;
}

// Settings for a conversion that has no use for what stands around its source.
bool adopt_alone(const corvin_convert_settings* settings, corvin_convert_settings& known) {
  return adopt_settings(settings, known) && known.previous_count == 0 && known.next_count == 0 &&
         known.first_sample == 0;
}

// The same for one that has no file for a source, of which there could be a part.
bool adopt_all(const corvin_convert_settings* settings, corvin_convert_settings& known) {
  return adopt_alone(settings, known) && known.begin_sample == 0 && known.sample_count == 0 &&
         known.channel_map_count == 0;
}

// What is wanted of a file: a stretch, and channels that its reader and those of its neighbours give
// as long as this lives.
class Part {
 public:
  // CORVIN_OK when the file has it.
  int select(corvin_file& file, const corvin_convert_settings& settings,
             const Neighbours& around = {}) {
    const auto stretch = stretch_of(settings, file.sound);
    if (!stretch) return CORVIN_E_ARGUMENT;
    stretch_ = *stretch;
    if (settings.channel_map_count == 0) return CORVIN_OK;
    if (settings.channel_map == nullptr || settings.channel_map_count > formats::kMaxChannels) {
      return CORVIN_E_ARGUMENT;
    }
    const std::span map(settings.channel_map, settings.channel_map_count);
    const auto is_there = [&](std::uint32_t channel) { return channel < file.sound.channels; };
    if (!std::all_of(map.begin(), map.end(), is_there)) return CORVIN_E_ARGUMENT;
    readers_ = {&*file.reader};
    readers_.insert(readers_.end(), around.previous.begin(), around.previous.end());
    readers_.insert(readers_.end(), around.next.begin(), around.next.end());
    for (formats::SoundReader* reader : readers_) reader->Select(map);
    return CORVIN_OK;
  }
  Part() = default;
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;
  ~Part() {
    for (formats::SoundReader* reader : readers_) reader->Select({});
  }

  const Stretch& stretch() const { return stretch_; }

 private:
  Stretch stretch_;
  Sounds readers_;
};

// Whether a conversion with this status goes on to the end of what it has.
bool comes_to_end(int status, const corvin_convert_settings& settings) {
  return status == CORVIN_OK || (status == CORVIN_E_READ && settings.keep_damaged != 0);
}

int adopt_neighbours(const corvin_convert_settings& settings, const formats::SoundFile& file,
                     Neighbours& around) {
  const int status =
      adopt_sounds(settings.previous, settings.previous_count, file, around.previous);
  if (status != CORVIN_OK) return status;
  if (!fits_before(around.previous, settings.first_sample)) return CORVIN_E_ARGUMENT;
  return adopt_sounds(settings.next, settings.next_count, file, around.next);
}

bool valid(const corvin_convert_report* report) { return report == nullptr || is_sized(report); }

// Runs a conversion and hands out the report.
template <class Conversion>
int reported(corvin_convert_report* report, Conversion conversion) {
  corvin_convert_report result = {};
  const int status = guarded([&] { return conversion(result); });
  if (report != nullptr) hand_out(result, report);
  return status;
}

// Whether a writer is to have this number of samples, or any.
bool expects(const corvin_writer& writer, std::uint64_t samples) {
  return writer.settings.samples == 0 || writer.settings.samples == samples;
}

bool has_sound(const corvin_writer& writer) {
  return writer.finished || writer.sound->channel_bytes() != 0;
}

// The arguments of a conversion to tracks, of which each has a source and a writer.
struct Tracks {
  std::vector<corvin_pcm_source> sources;
  std::vector<corvin_writer*> targets;

  // CORVIN_OK when they go together.
  int adopt(const corvin_pcm_source* const* from, corvin_writer* const* to, std::size_t count) {
    sources.resize(count);
    targets.assign(to, to + count);
    for (std::size_t i = 0; i < count; ++i) {
      if (!studio::adopt(from[i], sources[i]) || sources[i].read == nullptr || to[i] == nullptr) {
        return CORVIN_E_ARGUMENT;
      }
      const corvin_pcm_source& source = sources[i];
      if (source.pcm_rate != sources[0].pcm_rate || source.format != sources[0].format ||
          source.channels != to[0]->settings.channels ||
          to[i]->settings.channels != to[0]->settings.channels ||
          to[i]->settings.dsd_rate != to[0]->settings.dsd_rate) {
        return CORVIN_E_ARGUMENT;
      }
    }
    std::vector<corvin_writer*> sorted = targets;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return CORVIN_E_ARGUMENT;
    const bool fresh = std::none_of(targets.begin(), targets.end(),
                                    [](const corvin_writer* target) { return has_sound(*target); });
    return fresh ? CORVIN_OK : CORVIN_E_STATE;
  }
};

int convert_tracks(const Tracks& tracks, const corvin_convert_settings& settings,
                   corvin_convert_report& report) {
  std::vector<formats::SoundWriter*> sounds;
  for (corvin_writer* target : tracks.targets) sounds.push_back(&*target->sound);
  const int status = convert_to_dsd(
      tracks.sources, sounds,
      [&](std::size_t track, std::uint64_t samples, bool goes_on) {
        const int finished = finish(*tracks.targets[track], samples, goes_on);
        if (finished == CORVIN_OK) ++report.finished;
        return finished;
      },
      settings, report);
  // Whichever did not take its bytes: none that waits for more becomes a file any more.
  for (corvin_writer* target : tracks.targets) {
    if (status == CORVIN_E_WRITE && !target->finished && has_sound(*target)) target->failed = true;
  }
  return status;
}

// What comes behind the last byte of a conversion with `status`.
int complete(corvin_writer& writer, int status, const corvin_convert_settings& settings,
             std::uint64_t samples) {
  writer.failed = writer.failed || status == CORVIN_E_WRITE;
  if (!comes_to_end(status, settings)) return status;
  const int finished = corvin_writer_finish(&writer, samples);
  return finished == CORVIN_OK ? status : finished;
}

}  // namespace
}  // namespace corvin::studio

extern "C" {

void corvin_convert_settings_defaults(corvin_convert_settings* settings) {
  if (settings == nullptr) return;
  *settings = {};
  settings->size = sizeof *settings;
  settings->pcm_rate = 44100;
  settings->format = CORVIN_S24;
  settings->dither = CORVIN_DITHER_TPDF;
  settings->modulator = CORVIN_MODULATOR_HIGH;
  settings->kernel_mask = std::numeric_limits<std::uint32_t>::max();
}

uint32_t corvin_speakers_mapped(uint32_t speakers, const uint32_t* channel_map, size_t count) {
  if (channel_map == nullptr) return 0;
  return corvin::formats::MappedSpeakers(speakers, {channel_map, count});
}

int corvin_convert_to_pcm(corvin_file* source, const corvin_convert_settings* settings,
                          const corvin_pcm_sink* sink, corvin_convert_report* report) {
  corvin_convert_settings known;
  corvin_pcm_sink known_sink;
  if (source == nullptr || !corvin::studio::adopt_settings(settings, known) ||
      !corvin::studio::adopt(sink, known_sink) || known_sink.write == nullptr ||
      !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    if (!source->reader) return corvin::studio::status_of(source->sound.readable);
    corvin::studio::Neighbours around;
    int status = corvin::studio::adopt_neighbours(known, source->sound, around);
    if (status != CORVIN_OK) return status;
    corvin::studio::Part part;
    status = part.select(*source, known, around);
    if (status == CORVIN_OK) status = corvin::studio::begin_sound(*source);
    if (status != CORVIN_OK) return status;
    return corvin::studio::convert_to_pcm(*source->reader, around, part.stretch(), known,
                                          known_sink, result);
  });
}

int corvin_convert_to_dsd(const corvin_pcm_source* source, corvin_writer* target,
                          const corvin_convert_settings* settings, corvin_convert_report* report) {
  return corvin_convert_to_dsd_tracks(&source, &target, 1, settings, report);
}

int corvin_convert_to_dsd_tracks(const corvin_pcm_source* const* sources,
                                 corvin_writer* const* targets, size_t count,
                                 const corvin_convert_settings* settings,
                                 corvin_convert_report* report) {
  corvin_convert_settings known;
  if (sources == nullptr || targets == nullptr || count == 0 ||
      !corvin::studio::adopt_all(settings, known) || !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  corvin::studio::Tracks tracks;
  const int status = corvin::studio::guarded([&] { return tracks.adopt(sources, targets, count); });
  if (status != CORVIN_OK) return status;
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    return corvin::studio::convert_tracks(tracks, known, result);
  });
}

int corvin_convert_dsd_rate(corvin_file* source, corvin_writer* target,
                            const corvin_convert_settings* settings,
                            corvin_convert_report* report) {
  corvin_convert_settings known;
  if (source == nullptr || target == nullptr || !corvin::studio::adopt_alone(settings, known) ||
      !corvin::studio::valid(report)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::reported(report, [&](corvin_convert_report& result) {
    if (!source->reader) return corvin::studio::status_of(source->sound.readable);
    corvin::studio::Part part;
    int status = part.select(*source, known);
    if (status != CORVIN_OK) return status;
    if (target->settings.channels != source->reader->channels()) {
      return static_cast<int>(CORVIN_E_ARGUMENT);
    }
    if (corvin::studio::has_sound(*target)) return static_cast<int>(CORVIN_E_STATE);
    status = corvin::studio::begin_sound(*source);
    if (status != CORVIN_OK) return status;
    status = corvin::studio::convert_dsd_rate(*source->reader, part.stretch(), *target->sound,
                                              known, result);
    status = corvin::studio::complete(*target, status, known, result.samples);
    result.finished = target->finished && !target->failed ? 1 : 0;
    return status;
  });
}

int corvin_convert_copy(corvin_file* source, corvin_writer* target,
                        const corvin_convert_settings* settings) {
  corvin_convert_settings known;
  if (source == nullptr || target == nullptr || !corvin::studio::adopt_alone(settings, known)) {
    return CORVIN_E_ARGUMENT;
  }
  if (!source->reader) return corvin::studio::status_of(source->sound.readable);
  return corvin::studio::guarded([&] {
    corvin::studio::Part part;
    int status = part.select(*source, known);
    if (status != CORVIN_OK) return status;
    if (target->settings.dsd_rate != source->sound.rate_hz ||
        target->settings.channels != source->reader->channels()) {
      return static_cast<int>(CORVIN_E_ARGUMENT);
    }
    if (corvin::studio::has_sound(*target) ||
        !corvin::studio::expects(*target, part.stretch().samples())) {
      return static_cast<int>(CORVIN_E_STATE);
    }
    status = corvin::studio::begin_sound(*source);
    if (status != CORVIN_OK) return status;
    std::uint64_t samples = 0;
    status = corvin::studio::copy(*source->reader, part.stretch(), *target->sound, known, samples);
    return corvin::studio::complete(*target, status, known, samples);
  });
}

}  // extern "C"
