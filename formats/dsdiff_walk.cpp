// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// DSDIFF: one form of chunks, each padded to an even length. Real files state sizes of a stereo
// file for every channel count, leave out pad bytes, or never came to state a size at all; where a
// size does not lead to a chunk of a known name, places where one may have been meant are tried.

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>
#include <string>

#include "formats/chunk_cursor.h"
#include "formats/sound_file.h"
#include "formats/speakers.h"

namespace corvin::formats {
namespace {

bool IsOneOf(const ChunkId& id, std::initializer_list<const char*> names) {
  return std::any_of(names.begin(), names.end(), [&](const char* name) {
    return std::equal(id.begin(), id.end(), reinterpret_cast<const std::uint8_t*>(name));
  });
}

bool IsOfForm(const ChunkId& id) {
  return IsOneOf(id, {"FVER", "PROP", "DSD ", "DST ", "DSTI", "COMT", "DIIN", "MANF", "ID3 "});
}

bool IsOfProperties(const ChunkId& id) {
  return IsOneOf(id, {"FS  ", "CHNL", "CMPR", "ABSS", "LSCO", "ID3 "});
}

std::string Name(const ChunkId& id) {
  std::string name = "'";
  for (const std::uint8_t c : id) name += c >= ' ' && c <= '~' ? static_cast<char>(c) : '?';
  return name + "'";
}

class DsdiffWalk {
 public:
  DsdiffWalk(ByteSource& source, SoundFile& file) : file_(file), cursor_(source, ByteOrder::kBig) {}

  void Run() {
    ChunkHeader form;
    ChunkId type{};
    const bool sized = cursor_.ReadHeader(form);
    if (!cursor_.SeekTo(kChunkHeaderBytes) || !cursor_.Read(type.data(), type.size())) {
      return file_.Fail(Readable::kDamaged, "is damaged: its header is cut short");
    }
    if (type != MakeChunkId("DSD ")) {
      return file_.Fail(Readable::kUnsupported, "is a form of another kind, " + Name(type));
    }
    const std::uint64_t rest = cursor_.file_size() - kChunkHeaderBytes;
    if (!file_.sequential && (!sized || form.size > rest || rest - form.size > 1)) {
      file_.Warn("the form states " + std::to_string(form.size) + " bytes; the file holds " +
                 std::to_string(rest));
    }
    file_.chunks.push_back(
        {.id = form.id, .content = {kChunkHeaderBytes, rest}, .stated_bytes = form.size});
    form_end_ = sized && form.size < rest ? kChunkHeaderBytes + form.size : cursor_.file_size();
    WalkForm();
    Settle();
  }

 private:
  std::optional<ChunkId> IdAt(std::uint64_t offset) {
    ChunkId id{};
    if (!cursor_.SeekTo(offset) || !cursor_.Read(id.data(), id.size())) return std::nullopt;
    return id;
  }

  // The first of the places at which a known chunk begins, or the first one.
  template <class Known>
  std::uint64_t Resume(Known known, std::initializer_list<std::uint64_t> places) {
    for (const std::uint64_t place : places) {
      const auto id = IdAt(place);
      if (id && known(*id)) return place;
    }
    return *places.begin();
  }

  // Behind a chunk: an odd one is followed by a pad byte, which some writers forget.
  template <class Known>
  std::uint64_t Behind(const ChunkHeader& chunk, std::uint64_t body, Known known) {
    const std::uint64_t end = body + std::min(chunk.size, cursor_.file_size() - body);
    if (chunk.size % 2 == 0) return end;
    const std::uint64_t place = Resume(known, {end + 1, end});
    if (place == end && end < cursor_.file_size()) {
      file_.Warn("there is no pad byte behind chunk " + Name(chunk.id));
    }
    return place;
  }

  void WalkForm() {
    std::uint64_t place = kChunkHeaderBytes + 4;
    while (cursor_.SeekTo(place) && cursor_.left() >= kChunkHeaderBytes) {
      ChunkHeader chunk;
      const bool sized = cursor_.ReadHeader(chunk);
      const std::uint64_t body = cursor_.position();
      const bool known = IsOfForm(chunk.id);
      if (place >= form_end_ && !known) break;
      if (!sized && chunk.id != MakeChunkId("DSD ")) {
        file_.Warn("chunk " + Name(chunk.id) + " states an impossible size");
        return;
      }
      if (chunk.size > cursor_.file_size() - body && !IsOneOf(chunk.id, {"DSD ", "DST "})) {
        file_.Warn("chunk " + Name(chunk.id) + " is cut short");
      }
      place = ReadChunk(chunk, body);
      if (file_.sequential && (has_sound_ || has_compressed_)) return;
    }
    if (place < cursor_.file_size()) {
      file_.Warn(std::to_string(cursor_.file_size() - place) + " bytes at the end are no chunk");
    }
  }

  void NoteChunk(const ChunkHeader& chunk, std::uint64_t body, bool is_part = false) {
    file_.chunks.push_back({.id = chunk.id,
                            .is_part = is_part,
                            .header_offset = body - kChunkHeaderBytes,
                            .content = {body, std::min(chunk.size, cursor_.file_size() - body)},
                            .stated_bytes = chunk.size});
  }

  // Returns where the next chunk is to be expected.
  std::uint64_t ReadChunk(const ChunkHeader& chunk, std::uint64_t body) {
    const std::uint64_t there = std::min(chunk.size, cursor_.file_size() - body);
    NoteChunk(chunk, body);
    if (chunk.id == MakeChunkId("PROP")) return ReadProperties(chunk, body);
    if (chunk.id == MakeChunkId("DSD ") && !has_sound_) return TakeSound(chunk, body);
    if (chunk.id == MakeChunkId("DST ")) {
      ReadCompressedLength(body, there);
      if (file_.sequential) return body;
    } else if (chunk.id == MakeChunkId("COMT")) {
      ReadComments(body, there);
    } else if (chunk.id == MakeChunkId("DIIN")) {
      ReadEditedMaster(body, there);
    } else if (chunk.id == MakeChunkId("ID3 ")) {
      file_.id3.push_back({body, there});
    }
    return Behind(chunk, body, IsOfForm);
  }

  std::uint64_t TakeSound(const ChunkHeader& chunk, std::uint64_t body) {
    has_sound_ = true;
    const std::uint64_t left = cursor_.file_size() - body;
    stated_sound_ = chunk.size;
    const auto next = IdAt(body);
    const bool never_stated = chunk.size > static_cast<std::uint64_t>(INT64_MAX) ||
                              (chunk.size == 0 && left > 0 && !(next && IsOfForm(*next)));
    if (never_stated && file_.sequential) {
      file_.Fail(Readable::kUnsupported,
                 "does not state the size of its sound, which a pipe does not tell");
    } else if (never_stated) {
      file_.Warn("the sound chunk states no size; the file's end stands in");
      stated_sound_ = left;
    }
    file_.sound = {body, std::min(stated_sound_, left)};
    file_.chunks.back().content = file_.sound;
    if (file_.sequential) return body;
    return Behind({chunk.id, stated_sound_}, body, IsOfForm);
  }

  std::uint64_t ReadProperties(const ChunkHeader& properties, std::uint64_t body) {
    const std::uint64_t end = body + std::min(properties.size, cursor_.file_size() - body);
    const auto type = IdAt(body);
    if (type != MakeChunkId("SND ")) return Behind(properties, body, IsOfForm);
    std::uint64_t place = body + 4;
    while (cursor_.SeekTo(place)) {
      ChunkHeader chunk;
      if (!cursor_.ReadHeader(chunk)) break;
      const bool known = IsOfProperties(chunk.id);
      // "ID3 " may stand in both lists; behind the end it belongs to the form.
      if (place >= end && (!known || chunk.id == MakeChunkId("ID3 "))) break;
      if (!known && (IsOfForm(chunk.id) || place + kChunkHeaderBytes > end)) break;
      place = ReadProperty(chunk, cursor_.position());
    }
    const std::uint64_t by_size = Behind(properties, body, IsOfForm);
    const std::uint64_t next = Resume(IsOfForm, {by_size, place});
    if (next != by_size || (place > by_size && properties.size != 0)) {
      file_.Warn("the property chunk states a wrong size");
    }
    return std::max(next, body);
  }

  std::uint64_t ReadProperty(const ChunkHeader& chunk, std::uint64_t body) {
    const std::uint64_t there = std::min(chunk.size, cursor_.file_size() - body);
    NoteChunk(chunk, body, true);
    if (chunk.id == MakeChunkId("FS  ")) {
      cursor_.Read(file_.rate_hz);
    } else if (chunk.id == MakeChunkId("CHNL")) {
      return ReadChannels(chunk, body);
    } else if (chunk.id == MakeChunkId("CMPR")) {
      ReadCompression();
    } else if (chunk.id == MakeChunkId("ID3 ")) {
      file_.id3.push_back({body, there});
    }
    return Behind(chunk, body,
                  [](const ChunkId& id) { return IsOfProperties(id) || IsOfForm(id); });
  }

  std::uint64_t ReadChannels(const ChunkHeader& chunk, std::uint64_t body) {
    std::uint16_t channels = 0;
    cursor_.Read(channels);
    file_.channels = channels;
    const auto known = [](const ChunkId& id) { return IsOfProperties(id) || IsOfForm(id); };
    const std::uint64_t by_size = Behind(chunk, body, known);
    // Written with the size of a stereo file, and from three channels up with one name too few.
    const std::uint64_t by_count = body + 2 + std::uint64_t{channels} * 4;
    const std::uint64_t place =
        Resume(known, {by_size, by_count, std::max(body + 2, by_count - 4)});
    file_.chunks.back().content.bytes = std::min(place, cursor_.file_size()) - body;
    if (place != by_count) {
      file_.Warn("the channel chunk does not name each channel");
    } else if (by_size != by_count) {
      file_.Warn("the channel chunk states a wrong size");
    }
    if (place != by_count || channels > kMaxChannels) return place;
    ReadSpeakers(body + 2);
    return place;
  }

  void ReadSpeakers(std::uint64_t place) {
    std::uint32_t mask = 0;
    for (std::uint32_t c = 0; c < file_.channels; ++c) {
      const auto id = IdAt(place + 4 * c);
      const std::uint32_t speaker = id ? SpeakerOfDsdiffName(id->data()) : 0;
      if (speaker <= mask) {  // unnamed, or in another order than that of the bits
        mask = 0;
        break;
      }
      mask |= speaker;
    }
    // A single channel is in the middle whatever it is called.
    file_.speakers = file_.channels == 1 ? kFrontCentre : mask;
  }

  void ReadCompression() {
    std::uint8_t length = 0;
    ChunkId type{};
    std::array<char, 255> name;
    if (!cursor_.Read(type.data(), type.size())) return;
    compression_ = type;
    if (!cursor_.Read(length) || !cursor_.Read(name.data(), length)) return;
    file_.compression.assign(name.data(), std::find(name.data(), name.data() + length, '\0'));
  }

  // The frames of the compressed sound, which the chunk begins with, say how long it is.
  void ReadCompressedLength(std::uint64_t body, std::uint64_t there) {
    has_compressed_ = true;
    file_.sound = {body, there};
    ChunkHeader chunk;
    if (!cursor_.SeekTo(body) || !cursor_.ReadHeader(chunk)) return;
    std::uint32_t frames = 0;
    std::uint16_t frame_rate = 0;
    if (chunk.id == MakeChunkId("FRTE") && cursor_.Read(frames) && cursor_.Read(frame_rate) &&
        frame_rate != 0) {
      file_.stated_samples = std::uint64_t{frames} * file_.rate_hz / frame_rate;
    }
  }

  void ReadComments(std::uint64_t body, std::uint64_t there) {
    const std::uint64_t end = body + there;
    std::uint16_t count = 0;
    if (!cursor_.SeekTo(body) || !cursor_.Read(count)) return;
    for (int i = 0; i < count && cursor_.position() + 14 <= end; ++i) {
      DsdiffComment comment;
      std::uint32_t date;
      std::uint16_t type, reference;
      std::uint32_t length;
      if (!cursor_.Read(comment.year) || !cursor_.Read(date) || !cursor_.Read(type) ||
          !cursor_.Read(reference) || !cursor_.Read(length)) {
        return;
      }
      const std::uint64_t start = cursor_.position();
      if (length > end - start) return file_.Warn("a comment leads out of its chunk");
      comment.is_general = type == 0 && reference == 0;
      comment.text = {start, length};
      file_.comments.push_back(comment);
      if (!cursor_.SeekTo(start + length + length % 2)) return;
    }
  }

  void ReadEditedMaster(std::uint64_t body, std::uint64_t there) {
    const std::uint64_t end = body + there;
    std::uint64_t place = body;
    while (place + kChunkHeaderBytes <= end && cursor_.SeekTo(place)) {
      ChunkHeader chunk;
      if (!cursor_.ReadHeader(chunk)) return;
      NoteChunk(chunk, place + kChunkHeaderBytes, true);
      std::uint32_t length = 0;
      const bool is_artist = chunk.id == MakeChunkId("DIAR");
      if (is_artist || chunk.id == MakeChunkId("DITI")) {
        if (!cursor_.Read(length)) return;
        const std::uint64_t start = cursor_.position();
        if (start > end || length > end - start) {
          return file_.Warn("a name leads out of the edited master information");
        }
        (is_artist ? file_.artist : file_.title) = {start, length};
      }
      place = Behind(chunk, place + kChunkHeaderBytes, [](const ChunkId& id) {
        return IsOneOf(id, {"EMID", "MARK", "DIAR", "DITI", "DIFN"}) || IsOfForm(id);
      });
    }
  }

  void Settle() {
    if (!has_sound_) {
      if (has_compressed_ || compression_ == MakeChunkId("DST ")) {
        return file_.Fail(Readable::kCompressed,
                          "has sound in DST compression, which cannot be read");
      }
      return file_.Fail(Readable::kDamaged, "is damaged: it has no sound chunk");
    }
    if (compression_ != MakeChunkId("DSD ")) {
      file_.Warn("the compression type does not say that the sound is plain DSD");
    }
    SettleInterleaved(file_, stated_sound_);
  }

  SoundFile& file_;
  ChunkCursor cursor_;
  std::uint64_t form_end_ = 0;
  ChunkId compression_{};
  bool has_sound_ = false;
  bool has_compressed_ = false;
  std::uint64_t stated_sound_ = 0;
};

}  // namespace

void WalkDsdiff(ByteSource& source, SoundFile& file) { DsdiffWalk(source, file).Run(); }

}  // namespace corvin::formats
