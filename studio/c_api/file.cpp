// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions that read files.

#include "studio/c_api/file.h"

#include <algorithm>
#include <utility>

#include "formats/sound_tags.h"
#include "studio/c_api/boundary.h"
#include "studio/c_api/decoder.h"
#include "studio/c_api/stream_bytes.h"
#include "studio/c_api/tags.h"

namespace corvin::studio {

int status_of(formats::Readable readable) {
  switch (readable) {
    case formats::Readable::kYes:
      return CORVIN_OK;
    case formats::Readable::kDamaged:
      return CORVIN_E_FORMAT;
    case formats::Readable::kCompressed:
      return CORVIN_E_COMPRESSED;
    case formats::Readable::kUnsupported:
      break;
  }
  return CORVIN_E_UNSUPPORTED;
}

int begin_sound(corvin_file& file) {
  if (!file.reader) return status_of(file.sound.readable);
  if (file.sound.sequential && file.begun) return CORVIN_E_STATE;
  file.begun = true;
  return CORVIN_OK;
}

int adopt_sounds(corvin_file* const* files, std::size_t count, const formats::SoundFile& file,
                 Sounds& sounds) {
  if (count > 0 && files == nullptr) return CORVIN_E_ARGUMENT;
  for (std::size_t i = 0; i < count; ++i) {
    corvin_file* one = files[i];
    if (one == nullptr) return CORVIN_E_ARGUMENT;
    if (!one->reader) return status_of(one->sound.readable);
    if (one->sound.rate_hz != file.rate_hz || one->sound.channels != file.channels) {
      return CORVIN_E_ARGUMENT;
    }
    if (one->sound.sequential) return CORVIN_E_UNSUPPORTED;
    sounds.push_back(&*one->reader);
  }
  return CORVIN_OK;
}

bool fits_before(const Sounds& previous, std::uint64_t first_sample) {
  for (const formats::SoundReader* one : previous) {
    if (one->file().samples > first_sample) return false;
    first_sample -= one->file().samples;
  }
  return true;
}

namespace {

int open_source(std::unique_ptr<formats::ByteSource> source, corvin_file** file) {
  auto made = std::make_unique<corvin_file>();
  made->source = std::move(source);
  const bool is_dsd = formats::ReadSoundFile(*made->source, made->sound);
  if (made->source->failed()) return CORVIN_E_READ;
  if (!is_dsd) return CORVIN_E_FORMAT;
  if (made->sound.readable == formats::Readable::kYes) {
    made->reader.emplace(*made->source, made->sound);
  }
  *file = made.release();
  return CORVIN_OK;
}

int read(corvin_file& file, std::uint8_t* const* places, std::size_t stride, std::size_t bytes,
         std::uint32_t bit_order, std::size_t& done) {
  done = 0;
  if (bit_order > CORVIN_LSB_FIRST) return CORVIN_E_ARGUMENT;
  if (!file.reader) return status_of(file.sound.readable);
  file.begun = true;
  done = file.reader->Read(places, stride, bytes, bit_order == CORVIN_LSB_FIRST);
  return file.reader->failed() ? CORVIN_E_READ : CORVIN_OK;
}

}  // namespace
}  // namespace corvin::studio

extern "C" {

int corvin_file_open(const char* path, corvin_file** file) {
  if (file == nullptr) return CORVIN_E_ARGUMENT;
  *file = nullptr;
  if (path == nullptr) return CORVIN_E_ARGUMENT;
  return corvin::studio::guarded([&] {
    auto source = corvin::formats::OpenFileOrPipeSource(path);
    if (source == nullptr) return static_cast<int>(CORVIN_E_READ);
    return corvin::studio::open_source(std::move(source), file);
  });
}

int corvin_file_open_stream(const corvin_stream* stream, corvin_file** file) {
  if (file == nullptr) return CORVIN_E_ARGUMENT;
  *file = nullptr;
  corvin_stream known;
  if (!corvin::studio::adopt(stream, known) || known.read == nullptr ||
      (known.seek != nullptr && known.length == nullptr)) {
    return CORVIN_E_ARGUMENT;
  }
  if (known.seek == nullptr) {
    return corvin::studio::guarded([&] {
      return corvin::studio::open_source(
          std::make_unique<corvin::studio::SequentialStreamSource>(known), file);
    });
  }
  const std::int64_t size = known.length(known.user);
  if (size < 0) return CORVIN_E_READ;
  return corvin::studio::guarded([&] {
    return corvin::studio::open_source(
        std::make_unique<corvin::studio::StreamSource>(known, static_cast<std::uint64_t>(size)),
        file);
  });
}

void corvin_file_close(corvin_file* file) { delete file; }

int corvin_file_get_info(const corvin_file* file, corvin_file_info* info) {
  if (file == nullptr || !corvin::studio::is_sized(info)) return CORVIN_E_ARGUMENT;
  const corvin::formats::SoundFile& sound = file->sound;
  corvin_file_info known = {};
  known.container = sound.kind;
  known.dsd_rate = sound.rate_hz;
  known.channels = sound.channels;
  known.speakers = sound.speakers;
  known.bit_order = sound.lsb_first ? CORVIN_LSB_FIRST : CORVIN_MSB_FIRST;
  known.block_bytes = sound.block_bytes;
  known.warnings = static_cast<std::uint32_t>(sound.warnings.size());
  known.readable = corvin::studio::status_of(sound.readable);
  known.samples = sound.samples;
  known.stated_samples = sound.stated_samples;
  known.sound_bytes = sound.sound.bytes;
  known.sequential = sound.sequential ? 1 : 0;
  known.chunks = static_cast<std::uint32_t>(sound.chunks.size());
  sound.compression.copy(known.compression, sizeof known.compression - 1);
  corvin::studio::hand_out(known, info);
  return CORVIN_OK;
}

const char* corvin_file_warning(const corvin_file* file, uint32_t index) {
  if (file == nullptr || index >= file->sound.warnings.size()) return nullptr;
  return file->sound.warnings[index].c_str();
}

const char* corvin_file_problem(const corvin_file* file) {
  if (file == nullptr || file->sound.problem.empty()) return nullptr;
  return file->sound.problem.c_str();
}

int corvin_file_get_chunk(const corvin_file* file, uint32_t index, corvin_file_chunk* chunk) {
  if (file == nullptr || !corvin::studio::is_sized(chunk) || index >= file->sound.chunks.size()) {
    return CORVIN_E_ARGUMENT;
  }
  const corvin::formats::SoundChunk& found = file->sound.chunks[index];
  corvin_file_chunk known = {};
  std::copy(found.id.begin(), found.id.end(), known.id);
  known.is_part = found.is_part ? 1 : 0;
  known.header_offset = found.header_offset;
  known.offset = found.content.offset;
  known.stated_bytes = found.stated_bytes;
  known.bytes = found.content.bytes;
  corvin::studio::hand_out(known, chunk);
  return CORVIN_OK;
}

int corvin_file_get_tags(corvin_file* file, DSD_TAG* tag) {
  if (file == nullptr || tag == nullptr) return CORVIN_E_ARGUMENT;
  DSDTagClear(tag);
  if (file->sound.sequential) return CORVIN_E_UNSUPPORTED;
  return corvin::studio::guarded([&] {
    corvin::formats::ReadSoundTags(*file->source, file->sound, *tag);
    return CORVIN_OK;
  });
}

int corvin_file_get_all_tags(corvin_file* file, corvin_tags* tags) {
  if (file == nullptr || tags == nullptr) return CORVIN_E_ARGUMENT;
  corvin_tags_clear(tags);
  if (file->sound.sequential) return CORVIN_E_UNSUPPORTED;
  return corvin::studio::guarded([&]() -> int {
    corvin::formats::HeldTags held;
    corvin::formats::ReadSoundTags(*file->source, file->sound, held);
    if (file->source->failed()) return CORVIN_E_READ;
    static_cast<corvin::formats::HeldTags&>(*tags) = std::move(held);
    return CORVIN_OK;
  });
}

int corvin_file_read(corvin_file* file, void* to, size_t bytes, uint32_t bit_order, size_t* done) {
  if (file == nullptr || done == nullptr || (to == nullptr && bytes > 0)) return CORVIN_E_ARGUMENT;
  std::uint8_t* places[corvin::formats::kMaxChannels];
  const std::size_t channels = file->reader ? file->sound.channels : 0;
  for (std::size_t c = 0; c < channels; ++c) places[c] = static_cast<std::uint8_t*>(to) + c;
  return corvin::studio::read(*file, places, channels, bytes, bit_order, *done);
}

int corvin_file_read_planar(corvin_file* file, uint8_t* const* channels, size_t bytes,
                            uint32_t bit_order, size_t* done) {
  if (file == nullptr || done == nullptr || (channels == nullptr && bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  *done = 0;
  if (bytes == 0) return CORVIN_OK;
  return corvin::studio::read(*file, channels, 1, bytes, bit_order, *done);
}

int corvin_file_seek(corvin_file* file, uint64_t sample) {
  if (file == nullptr || sample > file->sound.samples) return CORVIN_E_ARGUMENT;
  if (!file->reader) return corvin::studio::status_of(file->sound.readable);
  if (file->sound.sequential) return CORVIN_E_UNSUPPORTED;
  const bool at_end = sample == file->sound.samples;
  file->reader->Seek(at_end ? file->sound.ChannelBytes() : sample / 8);
  return CORVIN_OK;
}

int corvin_file_seek_decoder(corvin_file* file, corvin_decoder* decoder, uint64_t sample,
                             corvin_file* const* previous, size_t previous_count) {
  if (file == nullptr || decoder == nullptr) return CORVIN_E_ARGUMENT;
  const corvin::formats::SoundFile& sound = file->sound;
  if (!file->reader) return corvin::studio::status_of(sound.readable);
  if (sound.sequential) return CORVIN_E_UNSUPPORTED;
  const corvin_decoder_settings& settings = decoder->engine->settings();
  const bool hears_before = (settings.context & CORVIN_CONTEXT_BEFORE) != 0;
  if (settings.dsd_rate != sound.rate_hz || settings.channels != sound.channels ||
      sample < settings.first_sample || sample - settings.first_sample > sound.samples ||
      (previous_count > 0 && !hears_before)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::guarded([&] {
    corvin::studio::Sounds before;
    const int status = corvin::studio::adopt_sounds(previous, previous_count, sound, before);
    if (status != CORVIN_OK) return status;
    if (!corvin::studio::fits_before(before, settings.first_sample)) {
      return static_cast<int>(CORVIN_E_ARGUMENT);
    }
    return corvin::studio::seek_with_preroll(*decoder->engine, *file->reader, before, sample);
  });
}

uint64_t corvin_file_tell(const corvin_file* file) {
  if (file == nullptr || !file->reader) return 0;
  return std::min(file->reader->position() * 8, file->sound.samples);
}

}  // extern "C"
