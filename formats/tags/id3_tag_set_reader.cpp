// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// From the frames of a block to fields and pictures.

#include <algorithm>
#include <optional>
#include <utility>

#include "formats/tags/id3_names.h"
#include "formats/tags/id3_tag_set.h"
#include "formats/tags/id3_values.h"
#include "formats/tags/utf8_text.h"

namespace corvin::formats {
namespace {

// A text of nothing but separators would take many times its size in memory, and for ever: each
// value is compared with those before it.
constexpr std::size_t kMostValues = 4096;

class Reader {
 public:
  Reader(TagSet& set, std::vector<std::string>& warnings) : set_(set), warnings_(warnings) {}

  void Read(const Id3Frame& frame) {
    if (frame.header.IsPacked()) {
      warnings_.push_back("frame " + frame.header.id +
                          " is compressed or encrypted and kept as it is");
      return Keep(frame);
    }
    if (!Understand(frame.header.id, frame.body)) Keep(frame);
  }

  void Finish() {
    if (!set_.Find("DATE")) Add("DATE", DateOf(date_));
    if (!set_.Find("ORIGINALDATE")) Add("ORIGINALDATE", original_year_);
    // Last, so that a frame of its own has the first word.
    for (const auto& [name, value] : user_texts_) Add(name, value);
    if (values_ > kMostValues) {
      warnings_.push_back("values beyond the first " + std::to_string(kMostValues) +
                          " are left out");
    }
  }

 private:
  void Keep(const Id3Frame& frame) {
    // No later version has frames of its form.
    if (frame.header.id == "PIC ") return warnings_.push_back("a picture of ID3v2.2 is damaged");
    set_.frames.push_back({frame.header, {frame.body.begin(), frame.body.end()}});
  }

  void Add(std::string_view name, std::string text, std::string language = {}) {
    if (text.empty() || ++values_ > kMostValues) return;
    set_.Add(name, {std::move(text), std::move(language)});
  }

  // False: a frame to be kept.
  bool Understand(const std::string& id, ByteSpan body) {
    if (id == "TXXX") return ReadUserText(body);
    if (id == "COMM") return ReadRemark("COMMENT", body);
    if (id == "USLT") return ReadRemark("LYRICS", body);
    if (id == "UFID") return ReadIdentifier(body);
    if (id == "WXXX") return ReadUserAddress(body);
    if (id == "APIC" || id == "PIC ") return ReadPicture(body, id == "PIC ");
    if (id == "TYER") return ReadOne(body, date_.year);
    if (id == "TDAT") return ReadOne(body, date_.day);
    if (id == "TIME") return ReadOne(body, date_.time);
    if (id == "TORY") return ReadOne(body, original_year_);
    if (id == "TIPL" || id == "TMCL" || id == "IPLS") return ReadPeople(body, id == "TMCL");
    const Id3Name* name = Id3NameOfFrame(id);
    if (name == nullptr) return false;
    return id[0] == 'W' ? ReadAddress(*name, body) : ReadText(*name, body);
  }

  // Takes the byte that begins a frame with texts.
  static std::optional<TextReader> TextsOf(ByteSpan& body) {
    if (body.empty() || !IsTextEncoding(body[0])) return std::nullopt;
    const auto encoding = static_cast<TextEncoding>(body[0]);
    body = body.subspan(1);
    return TextReader(encoding, body);
  }

  bool ReadText(const Id3Name& name, ByteSpan body) {
    auto texts = TextsOf(body);
    if (!texts) return false;
    while (!texts->AtEnd() && values_ <= kMostValues) {
      std::string text = texts->Next();
      if (name.field == "GENRE") {
        for (std::string& genre : GenresOf(text)) Add(name.field, std::move(genre));
        continue;
      }
      const std::size_t slash = name.total.empty() ? std::string::npos : text.find('/');
      if (slash != std::string::npos) {
        Add(name.total, text.substr(slash + 1));
        text.resize(slash);
      }
      Add(name.field, std::move(text));
    }
    return true;
  }

  static bool ReadOne(ByteSpan body, std::string& to) {
    auto texts = TextsOf(body);
    if (texts && to.empty()) to = texts->Next();
    return texts.has_value();
  }

  bool ReadUserText(ByteSpan body) {
    auto texts = TextsOf(body);
    if (!texts) return false;
    const std::string description = texts->Next();
    if (description.empty() || !texts->was_terminated()) return false;
    while (!texts->AtEnd() && user_texts_.size() <= kMostValues) {
      user_texts_.emplace_back(FieldOfUserText(description), texts->Next());
    }
    return true;
  }

  // Comments and lyrics: a language, a description, the text.
  bool ReadRemark(std::string name, ByteSpan body) {
    if (body.size() < 4 || !IsTextEncoding(body[0])) return false;
    std::string language(body.begin() + 1, body.begin() + 4);
    const bool is_plain =
        std::all_of(language.begin(), language.end(), [](char c) { return c > ' ' && c < 0x7f; });
    if (!is_plain || language == "XXX" || language == "xxx" || language == "und") language.clear();
    TextReader texts(static_cast<TextEncoding>(body[0]), body.subspan(4));
    const std::string description = texts.Next();
    if (!texts.was_terminated()) return false;
    if (!description.empty()) name += ":" + description;
    while (!texts.AtEnd() && values_ <= kMostValues) Add(name, texts.Next(), language);
    return true;
  }

  bool ReadIdentifier(ByteSpan body) {
    TextReader texts(TextEncoding::kLatin1, body);
    if (texts.Next() != kRecordingOwner || texts.AtEnd()) return false;
    const ByteSpan rest = texts.rest();
    const std::string identifier(rest.begin(), rest.end());
    const bool is_text = std::all_of(identifier.begin(), identifier.end(),
                                     [](char c) { return c > ' ' && c < 0x7f; });
    if (is_text) Add(kRecordingField, identifier);
    return is_text;
  }

  bool ReadAddress(const Id3Name& name, ByteSpan body) {
    Add(name.field, TextReader(TextEncoding::kLatin1, body).Next());
    return true;
  }

  bool ReadUserAddress(ByteSpan body) {
    auto texts = TextsOf(body);
    if (!texts) return false;
    const std::string description = texts->Next();
    if (!texts->was_terminated()) return false;
    // The address itself is in ISO 8859-1 always; some writers use the description's encoding.
    const ByteSpan rest = texts->rest();
    const bool is_wide = rest.size() >= 2 && (rest[0] >= 0xfe || rest[0] == 0 || rest[1] == 0);
    std::string address = is_wide ? texts->Next() : TextReader(TextEncoding::kLatin1, rest).Next();
    Add(description.empty() ? "URL" : "URL:" + description, std::move(address));
    return true;
  }

  bool ReadPeople(ByteSpan body, bool are_performers) {
    auto texts = TextsOf(body);
    if (!texts) return false;
    while (!texts->AtEnd() && values_ <= kMostValues) {
      Person person;
      person.role = texts->Next();
      person.name = texts->Next();
      if (person.name.empty()) continue;
      const std::string_view field = are_performers ? "" : FieldOfRole(person.role);
      if (field.empty()) {
        Add("PERFORMER", TextOfPerformer(person));
      } else {
        Add(field, person.name);
      }
    }
    return true;
  }

  bool ReadPicture(ByteSpan body, bool is_of_22) {
    if (body.empty() || !IsTextEncoding(body[0])) return false;
    const auto encoding = static_cast<TextEncoding>(body[0]);
    body = body.subspan(1);
    TagPicture picture;
    if (is_of_22) {
      if (body.size() < 3) return false;
      const std::string format(body.begin(), body.begin() + 3);
      picture.mime = format == "PNG"   ? "image/png"
                     : format == "JPG" ? "image/jpeg"
                     : format == "-->" ? format
                                       : "image/";
      body = body.subspan(3);
    } else {
      TextReader mime(TextEncoding::kLatin1, body);
      picture.mime = mime.Next();
      body = mime.rest();
    }
    if (body.empty()) return false;
    picture.type = body[0];
    TextReader texts(encoding, body.subspan(1));
    picture.description = texts.Next();
    if (!texts.was_terminated()) return false;
    picture.data.assign(texts.rest().begin(), texts.rest().end());
    set_.pictures.push_back(std::move(picture));
    return true;
  }

  TagSet& set_;
  std::vector<std::string>& warnings_;
  OldDate date_;
  std::string original_year_;
  std::vector<std::pair<std::string, std::string>> user_texts_;
  std::size_t values_ = 0;
};

}  // namespace

bool ReadId3TagSet(ByteSpan block, TagSet& set, std::vector<std::string>& warnings) {
  Id3Frames frames;
  if (!SplitId3Block(block, frames)) return false;
  warnings.insert(warnings.end(), frames.warnings.begin(), frames.warnings.end());
  Reader reader(set, warnings);
  for (const Id3Frame& frame : frames.frames) reader.Read(frame);
  reader.Finish();
  return true;
}

}  // namespace corvin::formats
