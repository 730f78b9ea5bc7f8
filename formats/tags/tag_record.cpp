// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The storage behind a tag record: its pictures. They come from malloc(), for the record is plain
// data that C hosts zero and copy.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "corvin.h"

namespace {

void ReleasePictures(DSD_PICTURE** pictures, int begin, int end) {
  for (int i = begin; i < end; ++i) {
    if (pictures[i] != nullptr) std::free(pictures[i]->data);
    std::free(pictures[i]);
  }
}

void ReleaseAllPictures(DSD_TAG& tag) {
  if (tag.pictures != nullptr) ReleasePictures(tag.pictures, 0, tag.pictureCount);
  std::free(tag.pictures);
  tag.pictures = nullptr;
  tag.pictureCount = 0;
}

DSD_PICTURE* NewPicture(int data_bytes) {
  auto* picture = static_cast<DSD_PICTURE*>(std::calloc(1, sizeof(DSD_PICTURE)));
  if (picture == nullptr || data_bytes == 0) return picture;
  picture->data = static_cast<std::uint8_t*>(std::calloc(1, static_cast<std::size_t>(data_bytes)));
  if (picture->data == nullptr) {
    std::free(picture);
    return nullptr;
  }
  picture->dataSize = data_bytes;
  return picture;
}

}  // namespace

DSD_PICTURE* DSD_TAG::PictureAlloc(int count, int dataBytes, bool keep) {
  if (!keep) ReleaseAllPictures(*this);
  const int held = pictures == nullptr ? 0 : pictureCount;
  if (count < 1 || dataBytes < 0 || count > CORVIN_TAG_MAX_PICTURES - held) return nullptr;
  const int total = held + count;
  auto** entries = static_cast<DSD_PICTURE**>(
      std::realloc(pictures, static_cast<std::size_t>(total) * sizeof(DSD_PICTURE*)));
  if (entries == nullptr) return nullptr;
  pictures = entries;
  for (int i = held; i < total; ++i) {
    entries[i] = NewPicture(dataBytes);
    if (entries[i] == nullptr) {
      ReleasePictures(entries, held, i);
      return nullptr;
    }
  }
  pictureCount = total;
  return entries[held];
}

extern "C" void DSDTagClear(DSD_TAG* tag) {
  if (tag == nullptr) return;
  ReleaseAllPictures(*tag);
  std::memset(static_cast<void*>(tag), 0, sizeof *tag);
}
