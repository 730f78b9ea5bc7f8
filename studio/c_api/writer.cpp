// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions that write files.

#include <bit>
#include <utility>

#include "formats/speakers.h"
#include "formats/tags/id3_block.h"
#include "studio/c_api/boundary.h"
#include "studio/c_api/file.h"
#include "studio/c_api/stream_bytes.h"
#include "studio/c_api/tags.h"

namespace corvin::studio {
namespace {

using formats::ContainerKind;

int check(const corvin_writer_settings* settings, corvin_writer_settings& known) {
  if (!adopt(settings, known)) return CORVIN_E_ARGUMENT;
  const bool valid =
      known.container >= CORVIN_DSDIFF && known.container <= CORVIN_ONE_BIT &&
      known.dsd_rate != 0 && known.channels != 0 &&
      known.channels <= formats::MostChannels(static_cast<ContainerKind>(known.container)) &&
      known.bit_order <= CORVIN_LSB_FIRST &&
      (known.speakers == 0 ||
       static_cast<std::uint32_t>(std::popcount(known.speakers)) == known.channels);
  if (!valid) return CORVIN_E_ARGUMENT;
  if (known.speakers == 0) return CORVIN_OK;
  const std::uint32_t written = formats::SpeakersAsWritten(
      static_cast<ContainerKind>(known.container), known.speakers, known.channels);
  return written == 0 || written == known.speakers ? CORVIN_OK : CORVIN_E_UNSUPPORTED;
}

int start(std::unique_ptr<corvin_writer> writer, corvin_writer** made) {
  const corvin_writer_settings& settings = writer->settings;
  const formats::SoundFormat format = {static_cast<ContainerKind>(settings.container),
                                       settings.dsd_rate, settings.channels, settings.speakers,
                                       settings.samples};
  writer->sound.emplace(*writer->sink, format, writer->tags);
  if (!writer->sound->Start()) return CORVIN_E_WRITE;
  *made = writer.release();
  return CORVIN_OK;
}

int write(corvin_writer& writer, const std::uint8_t* const* places, std::size_t stride,
          std::size_t bytes) {
  if (writer.finished || bytes > writer.sound->room()) return CORVIN_E_STATE;
  const bool lsb_first = writer.settings.bit_order == CORVIN_LSB_FIRST;
  writer.failed = writer.failed || !writer.sound->Write(places, stride, bytes, lsb_first);
  return writer.failed ? CORVIN_E_WRITE : CORVIN_OK;
}

}  // namespace

bool takes_tags(const corvin_writer& writer) {
  const bool is_stated = writer.settings.samples != 0 && writer.sound->channel_bytes() != 0;
  return !writer.finished && !is_stated;
}

int finish(corvin_writer& writer, std::uint64_t samples, bool goes_on) {
  if (writer.settings.samples != 0 && samples != writer.settings.samples) return CORVIN_E_STATE;
  return guarded([&] {
    writer.finished = true;
    writer.failed = !writer.sound->Finish(samples, goes_on) ||
                    (writer.new_file != nullptr && !writer.new_file->Commit());
    return writer.failed ? CORVIN_E_WRITE : CORVIN_OK;
  });
}

}  // namespace corvin::studio

extern "C" {

void corvin_writer_settings_defaults(corvin_writer_settings* settings) {
  if (settings == nullptr) return;
  *settings = {};
  settings->size = sizeof *settings;
  settings->container = CORVIN_DSF;
  settings->dsd_rate = 2822400;
  settings->channels = 2;
}

int corvin_container_names_speakers(uint32_t container, uint32_t speakers) {
  const auto kind = static_cast<corvin::formats::ContainerKind>(container);
  const auto channels = static_cast<std::uint32_t>(std::popcount(speakers));
  if (container > CORVIN_ONE_BIT || channels == 0 ||
      channels > corvin::formats::MostChannels(kind)) {
    return 0;
  }
  return corvin::formats::SpeakersAsWritten(kind, speakers, channels) == speakers ? 1 : 0;
}

int corvin_writer_create(const char* path, const corvin_writer_settings* settings,
                         corvin_writer** writer) {
  if (writer == nullptr) return CORVIN_E_ARGUMENT;
  *writer = nullptr;
  if (path == nullptr) return CORVIN_E_ARGUMENT;
  return corvin::studio::guarded([&] {
    auto made = std::make_unique<corvin_writer>();
    const int status = corvin::studio::check(settings, made->settings);
    if (status != CORVIN_OK) return status;
    auto file = std::make_unique<corvin::formats::NewFile>();
    if (!file->Open(path)) return static_cast<int>(CORVIN_E_WRITE);
    made->new_file = file.get();
    made->sink = std::move(file);
    return corvin::studio::start(std::move(made), writer);
  });
}

int corvin_writer_create_stream(const corvin_stream* stream, const corvin_writer_settings* settings,
                                corvin_writer** writer) {
  if (writer == nullptr) return CORVIN_E_ARGUMENT;
  *writer = nullptr;
  corvin_stream known;
  if (!corvin::studio::adopt(stream, known) || known.write == nullptr) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::guarded([&] {
    auto made = std::make_unique<corvin_writer>();
    int status = corvin::studio::check(settings, made->settings);
    if (known.seek == nullptr && made->settings.samples == 0) status = CORVIN_E_ARGUMENT;
    if (status != CORVIN_OK) return status;
    made->sink = std::make_unique<corvin::studio::StreamSink>(known);
    return corvin::studio::start(std::move(made), writer);
  });
}

int corvin_writer_write(corvin_writer* writer, const void* data, size_t bytes) {
  if (writer == nullptr || (data == nullptr && bytes > 0)) return CORVIN_E_ARGUMENT;
  const std::uint8_t* places[corvin::formats::kMaxChannels];
  const std::size_t channels = writer->settings.channels;
  for (std::size_t c = 0; c < channels; ++c) {
    places[c] = static_cast<const std::uint8_t*>(data) + c;
  }
  return corvin::studio::write(*writer, places, channels, bytes);
}

int corvin_writer_write_planar(corvin_writer* writer, const uint8_t* const* channels,
                               size_t bytes) {
  if (writer == nullptr || (channels == nullptr && bytes > 0)) return CORVIN_E_ARGUMENT;
  return corvin::studio::write(*writer, channels, 1, bytes);
}

int corvin_writer_set_tags(corvin_writer* writer, const DSD_TAG* tag) {
  if (writer == nullptr || tag == nullptr) return CORVIN_E_ARGUMENT;
  if (!corvin::studio::takes_tags(*writer)) return CORVIN_E_STATE;
  return corvin::studio::guarded([&] {
    writer->tags = {};
    writer->tags.id3 = corvin::formats::MakeId3Block(*tag);
    return CORVIN_OK;
  });
}

int corvin_writer_set_all_tags(corvin_writer* writer, const corvin_tags* tags, uint32_t form) {
  if (writer == nullptr || tags == nullptr) return CORVIN_E_ARGUMENT;
  if (!corvin::studio::takes_tags(*writer)) return CORVIN_E_STATE;
  return corvin::studio::guarded([&]() -> int {
    writer->tags = {};
    if (writer->settings.container == CORVIN_ONE_BIT) {
      return tags->set.IsEmpty() ? CORVIN_OK : CORVIN_E_UNSUPPORTED;
    }
    return corvin::studio::container_tags(*tags, form, writer->tags);
  });
}

int corvin_writer_finish(corvin_writer* writer, uint64_t samples) {
  if (writer == nullptr) return CORVIN_E_ARGUMENT;
  if (writer->finished) return CORVIN_E_STATE;
  if (writer->failed) return CORVIN_E_WRITE;
  const std::uint64_t bytes = writer->sound->channel_bytes();
  if (samples / 8 + (samples % 8 != 0) != bytes) return CORVIN_E_ARGUMENT;
  return corvin::studio::finish(*writer, samples, false);
}

void corvin_writer_close(corvin_writer* writer) { delete writer; }

}  // extern "C"
