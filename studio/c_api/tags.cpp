// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The C functions on tags.

#include "studio/c_api/tags.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "formats/bytes/new_file.h"
#include "formats/tag_replacement.h"
#include "formats/tags/id3_block.h"
#include "formats/tags/utf8_text.h"
#include "studio/c_api/boundary.h"

namespace corvin::studio {
namespace {

bool is_form(std::uint32_t form) {
  return form == CORVIN_ID3_AS_READ || form == CORVIN_ID3_V23 || form == CORVIN_ID3_V24;
}

formats::Id3Version version_of(std::uint32_t form) {
  return form == CORVIN_ID3_V23 ? formats::Id3Version::k23 : formats::Id3Version::k24;
}

bool is_as_read(const corvin_tags& tags, std::uint32_t form) {
  return form == CORVIN_ID3_AS_READ && !tags.block.empty();
}

int make_block(const corvin_tags& tags, std::uint32_t form, std::vector<std::uint8_t>& block) {
  if (!is_form(form)) return CORVIN_E_ARGUMENT;
  if (is_as_read(tags, form)) {
    block = tags.block;
    return CORVIN_OK;
  }
  return formats::MakeId3Block(tags.set, version_of(form), block) ? CORVIN_OK
                                                                  : CORVIN_E_UNSUPPORTED;
}

bool is_text(const char* text) {
  return text != nullptr && text[0] != '\0' && formats::IsUtf8(text);
}

// Null when there is none.
const formats::TagValue* value_of(const corvin_tags* tags, const char* name, std::uint32_t value) {
  if (tags == nullptr || name == nullptr) return nullptr;
  const formats::TagField* field = tags->set.Find(name);
  return field == nullptr || value >= field->values.size() ? nullptr : &field->values[value];
}

// Changes the tags, which are then no longer what they were read from.
template <class Change>
int changed(corvin_tags& tags, Change change) {
  return guarded([&] {
    change(tags.set);
    tags.block.clear();
    return CORVIN_OK;
  });
}

template <class List>
int removed(corvin_tags* tags, List formats::TagSet::*list, std::uint32_t index) {
  if (tags == nullptr || index >= (tags->set.*list).size()) return CORVIN_E_ARGUMENT;
  return changed(*tags, [&](formats::TagSet& set) {
    (set.*list).erase((set.*list).begin() + static_cast<std::ptrdiff_t>(index));
  });
}

int status_of(formats::Replaced replaced) {
  switch (replaced) {
    case formats::Replaced::kYes:
      return CORVIN_OK;
    case formats::Replaced::kUnfit:
      return CORVIN_E_FORMAT;
    case formats::Replaced::kReadFailed:
      return CORVIN_E_READ;
    case formats::Replaced::kWriteFailed:
      break;
  }
  return CORVIN_E_WRITE;
}

int save(const corvin_tags& tags, const char* path, std::uint32_t form) {
  formats::ContainerTags made;
  if (const int status = container_tags(tags, form, made); status != CORVIN_OK) return status;
  const auto source = formats::OpenFileSource(path);
  if (source == nullptr) return CORVIN_E_READ;
  formats::SoundFile file;
  const bool is_dsd = formats::ReadSoundFile(*source, file);
  if (source->failed()) return CORVIN_E_READ;
  if (!is_dsd || file.readable == formats::Readable::kDamaged) return CORVIN_E_FORMAT;
  if (file.kind == formats::kOneBit) return CORVIN_E_UNSUPPORTED;
  // Renaming asks for no right to write to the file itself.
  if (access(path, W_OK) != 0) return CORVIN_E_WRITE;
  formats::NewFile sink;
  if (!sink.Open(path)) return CORVIN_E_WRITE;
  const int status = status_of(formats::ReplaceTags(*source, file, made, sink));
  if (status != CORVIN_OK) return status;
  return sink.Sync() && sink.Commit() ? CORVIN_OK : CORVIN_E_WRITE;
}

}  // namespace

int container_tags(const corvin_tags& tags, std::uint32_t form, formats::ContainerTags& made) {
  std::vector<std::uint8_t> block;
  if (const int status = make_block(tags, form, block); status != CORVIN_OK) return status;
  made = formats::MakeContainerTags(tags.set, std::move(block));
  return CORVIN_OK;
}

}  // namespace corvin::studio

extern "C" {

int corvin_tags_create(corvin_tags** tags) {
  if (tags == nullptr) return CORVIN_E_ARGUMENT;
  *tags = nullptr;
  return corvin::studio::guarded([&] {
    *tags = std::make_unique<corvin_tags>().release();
    return CORVIN_OK;
  });
}

void corvin_tags_destroy(corvin_tags* tags) { delete tags; }

void corvin_tags_clear(corvin_tags* tags) {
  if (tags != nullptr) *tags = {};
}

int corvin_tags_read_id3(corvin_tags* tags, const void* block, size_t bytes) {
  if (tags == nullptr || (block == nullptr && bytes > 0)) return CORVIN_E_ARGUMENT;
  corvin_tags_clear(tags);
  return corvin::studio::guarded([&]() -> int {
    corvin::formats::ByteSpan span(static_cast<const std::uint8_t*>(block), bytes);
    const std::uint64_t stated = corvin::formats::Id3BlockBytes(span);
    corvin::formats::HeldTags held;
    if (!corvin::formats::ReadId3TagSet(span, held.set, held.warnings)) return CORVIN_E_FORMAT;
    if (stated <= bytes) held.block.assign(span.begin(), span.begin() + static_cast<long>(stated));
    static_cast<corvin::formats::HeldTags&>(*tags) = std::move(held);
    return CORVIN_OK;
  });
}

int corvin_tags_write_id3(const corvin_tags* tags, uint32_t form, void* to, size_t size,
                          size_t* bytes) {
  if (tags == nullptr || bytes == nullptr) return CORVIN_E_ARGUMENT;
  *bytes = 0;
  return corvin::studio::guarded([&]() -> int {
    std::vector<std::uint8_t> block;
    const int status = corvin::studio::make_block(*tags, form, block);
    *bytes = block.size();
    if (status != CORVIN_OK || to == nullptr) return status;
    if (size < block.size()) return CORVIN_E_ARGUMENT;
    std::copy(block.begin(), block.end(), static_cast<std::uint8_t*>(to));
    return CORVIN_OK;
  });
}

int corvin_tags_losses(const corvin_tags* tags, uint32_t form, char* text, size_t size) {
  if (tags == nullptr || (text == nullptr && size > 0) || !corvin::studio::is_form(form)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::guarded([&] {
    std::string lines;
    if (!corvin::studio::is_as_read(*tags, form)) {
      for (const std::string& loss :
           corvin::formats::Id3Losses(tags->set, corvin::studio::version_of(form))) {
        lines += lines.empty() ? loss : "\n" + loss;
      }
    }
    return corvin::studio::hand_out(lines, text, size);
  });
}

const char* corvin_tags_warning(const corvin_tags* tags, uint32_t index) {
  return tags == nullptr || index >= tags->warnings.size() ? nullptr
                                                           : tags->warnings[index].c_str();
}

uint32_t corvin_tags_fields(const corvin_tags* tags) {
  return tags == nullptr ? 0 : static_cast<uint32_t>(tags->set.fields.size());
}

const char* corvin_tags_name(const corvin_tags* tags, uint32_t field) {
  return field >= corvin_tags_fields(tags) ? nullptr : tags->set.fields[field].name.c_str();
}

uint32_t corvin_tags_values(const corvin_tags* tags, const char* name) {
  if (tags == nullptr || name == nullptr) return 0;
  const corvin::formats::TagField* field = tags->set.Find(name);
  return field == nullptr ? 0 : static_cast<uint32_t>(field->values.size());
}

const char* corvin_tags_value(const corvin_tags* tags, const char* name, uint32_t value) {
  const corvin::formats::TagValue* found = corvin::studio::value_of(tags, name, value);
  return found == nullptr ? nullptr : found->text.c_str();
}

const char* corvin_tags_language(const corvin_tags* tags, const char* name, uint32_t value) {
  const corvin::formats::TagValue* found = corvin::studio::value_of(tags, name, value);
  return found == nullptr ? nullptr : found->language.c_str();
}

int corvin_tags_set(corvin_tags* tags, const char* name, const char* value) {
  if (tags == nullptr || !corvin::studio::is_text(name) || !corvin::studio::is_text(value)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::changed(*tags, [&](corvin::formats::TagSet& set) {
    const corvin::formats::TagValue* first = corvin::studio::value_of(tags, name, 0);
    const corvin::formats::TagValue made = {value, first == nullptr ? "" : first->language};
    for (corvin::formats::TagField& field : set.fields) {
      if (corvin::formats::IsSameName(field.name, name)) return field.values.assign(1, made);
    }
    set.Add(name, made);
  });
}

int corvin_tags_add(corvin_tags* tags, const char* name, const char* value, const char* language) {
  if (tags == nullptr || !corvin::studio::is_text(name) || !corvin::studio::is_text(value)) {
    return CORVIN_E_ARGUMENT;
  }
  const bool has_language = language != nullptr && language[0] != '\0';
  const bool is_code =
      has_language && std::strlen(language) == 3 &&
      std::all_of(language, language + 3, [](char c) { return c > ' ' && c < 127; });
  if (has_language && (!is_code || !corvin::formats::HasLanguages(name))) return CORVIN_E_ARGUMENT;
  return corvin::studio::changed(*tags, [&](corvin::formats::TagSet& set) {
    set.Add(name, {value, has_language ? language : ""});
  });
}

int corvin_tags_remove(corvin_tags* tags, const char* name) {
  if (tags == nullptr || name == nullptr) return CORVIN_E_ARGUMENT;
  if (tags->set.Remove(name)) tags->block.clear();
  return CORVIN_OK;
}

uint32_t corvin_tags_pictures(const corvin_tags* tags) {
  return tags == nullptr ? 0 : static_cast<uint32_t>(tags->set.pictures.size());
}

int corvin_tags_get_picture(const corvin_tags* tags, uint32_t index, corvin_picture* picture) {
  if (index >= corvin_tags_pictures(tags) || !corvin::studio::is_sized(picture)) {
    return CORVIN_E_ARGUMENT;
  }
  const corvin::formats::TagPicture& held = tags->set.pictures[index];
  corvin_picture known = {};
  known.type = held.type;
  known.mime = held.mime.c_str();
  known.description = held.description.c_str();
  known.data = held.data.data();
  known.bytes = held.data.size();
  corvin::studio::hand_out(known, picture);
  return CORVIN_OK;
}

int corvin_tags_add_picture(corvin_tags* tags, const corvin_picture* picture) {
  corvin_picture known;
  if (tags == nullptr || !corvin::studio::adopt(picture, known)) return CORVIN_E_ARGUMENT;
  constexpr std::uint32_t kMostTypes = 21;
  const bool has_texts =
      (known.mime == nullptr || corvin::formats::IsUtf8(known.mime)) &&
      (known.description == nullptr || corvin::formats::IsUtf8(known.description));
  if (known.type >= kMostTypes || !has_texts || (known.data == nullptr && known.bytes > 0)) {
    return CORVIN_E_ARGUMENT;
  }
  return corvin::studio::changed(*tags, [&](corvin::formats::TagSet& set) {
    const auto* data = static_cast<const std::uint8_t*>(known.data);
    set.pictures.push_back({static_cast<std::uint8_t>(known.type),
                            known.mime == nullptr ? "" : known.mime,
                            known.description == nullptr ? "" : known.description,
                            {data, data + known.bytes}});
  });
}

int corvin_tags_remove_picture(corvin_tags* tags, uint32_t index) {
  return corvin::studio::removed(tags, &corvin::formats::TagSet::pictures, index);
}

uint32_t corvin_tags_frames(const corvin_tags* tags) {
  return tags == nullptr ? 0 : static_cast<uint32_t>(tags->set.frames.size());
}

int corvin_tags_get_frame(const corvin_tags* tags, uint32_t index, corvin_tag_frame* frame) {
  if (index >= corvin_tags_frames(tags) || !corvin::studio::is_sized(frame)) {
    return CORVIN_E_ARGUMENT;
  }
  const corvin::formats::KeptFrame& held = tags->set.frames[index];
  corvin_tag_frame known = {};
  held.header.id.copy(known.id, sizeof known.id - 1);
  known.data = held.body.data();
  known.bytes = held.body.size();
  corvin::studio::hand_out(known, frame);
  return CORVIN_OK;
}

int corvin_tags_remove_frame(corvin_tags* tags, uint32_t index) {
  return corvin::studio::removed(tags, &corvin::formats::TagSet::frames, index);
}

int corvin_tags_save(const corvin_tags* tags, const char* path, uint32_t form) {
  if (tags == nullptr || path == nullptr) return CORVIN_E_ARGUMENT;
  return corvin::studio::guarded([&] { return corvin::studio::save(*tags, path, form); });
}

}  // extern "C"
