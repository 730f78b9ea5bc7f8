// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// From fields and pictures to the frames of a block. What has no frame of its own, or does not fit
// into that, becomes a text that the field's name describes.

#include <algorithm>
#include <utility>

#include "formats/tags/id3_names.h"
#include "formats/tags/id3_tag_set.h"
#include "formats/tags/id3_values.h"
#include "formats/tags/utf8_text.h"

namespace corvin::formats {
namespace {

using Texts = std::vector<std::string>;

class Writer {
 public:
  Writer(const TagSet& set, Id3Version version) : set_(set), version_(version), block_(version) {}

  bool Run(std::vector<std::uint8_t>& block) {
    for (const TagField& field : set_.fields) Write(field);
    WritePeople();
    for (const TagPicture& picture : set_.pictures) WritePicture(picture);
    for (const KeptFrame& frame : set_.frames) block_.Add(frame.header, frame.body);
    return block_.Finish(block);
  }

 private:
  bool is_24() const { return version_ == Id3Version::k24; }

  char Encoding() const {
    return static_cast<char>(is_24() ? TextEncoding::kUtf8 : TextEncoding::kUtf16);
  }
  std::string Encoded(std::string_view text) const {
    return is_24() ? std::string(text) : Utf16Of(text);
  }
  std::string Terminated(std::string_view text) const {
    return Encoded(text) + std::string(is_24() ? 1 : 2, '\0');
  }

  // Version 2.3 has no list of values; by its custom a slash stands between them.
  std::string Joined(const Texts& texts) const {
    std::string joined;
    for (const std::string& text : texts) {
      if (!joined.empty()) joined += is_24() ? '\0' : '/';
      joined += text;
    }
    return Encoded(joined);
  }

  static Texts TextsOf(const TagField& field) {
    Texts texts;
    for (const TagValue& value : field.values) texts.push_back(value.text);
    return texts;
  }

  void Write(const TagField& field) {
    const Texts texts = TextsOf(field);
    if (const auto description = DescriptionIn(field.name, "COMMENT")) {
      return WriteRemarks("COMM", *description, field);
    }
    if (const auto description = DescriptionIn(field.name, "LYRICS")) {
      return WriteRemarks("USLT", *description, field);
    }
    if (const auto description = DescriptionIn(field.name, "URL")) {
      const auto address = Latin1Of(texts[0]);
      if (texts.size() > 1 || !address) return WriteUserText(field.name, texts);
      return block_.Add("WXXX", Encoding() + Terminated(*description) + *address);
    }
    if (IsSameName(field.name, kRecordingField) && texts.size() == 1 && IsGraphic(texts[0])) {
      return block_.Add("UFID", std::string(kRecordingOwner) + '\0' + texts[0]);
    }
    const std::string_view role = RoleOfField(field.name);
    if (!role.empty()) {
      for (const std::string& text : texts) involved_.push_back({std::string(role), text});
      return;
    }
    if (IsSameName(field.name, "PERFORMER")) {
      for (const std::string& text : texts) performers_.push_back(PerformerOf(text));
      return;
    }
    if (const Id3Name* name = Id3NameOfTotal(field.name)) {
      const TagField* number = set_.Find(name->field);
      if (number != nullptr && IsPair(*number, field)) return;  // comes with the number
      return WriteUserText(field.name, texts);
    }
    const Id3Name* name = Id3NameOfField(field.name);
    if (name == nullptr || (!is_24() && !name->is_in_23)) return WriteUserText(field.name, texts);
    WriteNamed(*name, field, texts);
  }

  void WriteNamed(const Id3Name& name, const TagField& field, Texts texts) {
    if (name.frame[0] == 'W') {
      const auto address = Latin1Of(texts[0]);
      if (texts.size() > 1 || !address) return WriteUserText(field.name, texts);
      return block_.Add(name.frame, *address);
    }
    if (!is_24() && (name.frame == "TDRC" || name.frame == "TDOR")) {
      return WriteOldDate(name, field.name, texts);
    }
    if (name.field == "GENRE") {
      std::transform(texts.begin(), texts.end(), texts.begin(), TextOfGenre);
    }
    if (!name.total.empty()) {
      // The frame would be taken for a number and a total.
      const bool has_slash = std::any_of(texts.begin(), texts.end(), [](const auto& text) {
        return text.find('/') != std::string::npos;
      });
      if (has_slash) return WriteUserText(field.name, texts);
      const TagField* total = set_.Find(name.total);
      if (total != nullptr && IsPair(field, *total)) texts[0] += "/" + total->values[0].text;
    }
    WriteText(name.frame, texts);
  }

  // Whether number and total fit into one text.
  static bool IsPair(const TagField& number, const TagField& total) {
    return number.values.size() == 1 && total.values.size() == 1 &&
           number.values[0].text.find('/') == std::string::npos;
  }

  static bool IsGraphic(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7f; });
  }

  void WriteText(std::string_view id, const Texts& texts) {
    block_.Add(id, Encoding() + Joined(texts));
  }

  void WriteUserText(std::string_view name, const Texts& texts) {
    block_.Add("TXXX", Encoding() + Terminated(UserTextOfField(name)) + Joined(texts));
  }

  void WriteOldDate(const Id3Name& name, std::string_view field, const Texts& texts) {
    const OldDate date = OldDateOf(texts[0]);
    if (date.year.empty()) return WriteUserText(field, texts);
    if (name.frame == "TDOR") return WriteText("TORY", {date.year});
    WriteText("TYER", {date.year});
    if (!date.day.empty()) WriteText("TDAT", {date.day});
    if (!date.time.empty()) WriteText("TIME", {date.time});
  }

  // One frame for each language.
  void WriteRemarks(std::string_view id, std::string_view description, const TagField& field) {
    std::vector<std::pair<std::string, Texts>> languages;
    for (const TagValue& value : field.values) {
      const auto same = std::find_if(languages.begin(), languages.end(), [&](const auto& language) {
        return language.first == value.language;
      });
      if (same != languages.end()) {
        same->second.push_back(value.text);
      } else {
        languages.push_back({value.language, {value.text}});
      }
    }
    for (const auto& [language, texts] : languages) {
      block_.Add(id, Encoding() + (language.empty() ? "XXX" : language) + Terminated(description) +
                         Joined(texts));
    }
  }

  void WritePeople() {
    if (!is_24()) {
      involved_.insert(involved_.end(), performers_.begin(), performers_.end());
      return WriteList("IPLS", involved_);
    }
    WriteList("TIPL", involved_);
    WriteList("TMCL", performers_);
  }

  void WriteList(std::string_view id, const std::vector<Person>& people) {
    std::string body;
    for (const Person& person : people) body += Terminated(person.role) + Terminated(person.name);
    if (!body.empty()) block_.Add(id, Encoding() + body);
  }

  void WritePicture(const TagPicture& picture) {
    std::string body = Encoding() + Latin1Of(picture.mime).value_or("image/") + '\0';
    body += static_cast<char>(picture.type);
    block_.Add("APIC", body + Terminated(picture.description), picture.data);
  }

  const TagSet& set_;
  Id3Version version_;
  Id3BlockBuilder block_;
  std::vector<Person> involved_, performers_;
};

std::string ListOf(const TagField& field) {
  std::string list;
  for (const TagValue& value : field.values) {
    list += (list.empty() ? "\"" : ", \"") + value.text + "\"";
    if (!value.language.empty()) list += " (" + value.language + ")";
  }
  return list;
}

bool SameValues(const TagField& a, const TagField* b) {
  return b != nullptr && a.values.size() == b->values.size() &&
         std::is_permutation(a.values.begin(), a.values.end(), b->values.begin());
}

}  // namespace

bool MakeId3Block(const TagSet& set, Id3Version version, std::vector<std::uint8_t>& block) {
  return Writer(set, version).Run(block);
}

// By trying, so that no rule of the writer has to be told twice.
std::vector<std::string> Id3Losses(const TagSet& set, Id3Version version) {
  TagSet texts;
  texts.fields = set.fields;
  std::vector<std::uint8_t> block;
  if (!MakeId3Block(texts, version, block)) return {"the texts are larger than a tag can be"};
  TagSet back;
  std::vector<std::string> losses;
  ReadId3TagSet(block, back, losses);
  for (const TagField& field : set.fields) {
    const TagField* held = back.Find(field.name);
    if (SameValues(field, held)) continue;
    losses.push_back(field.name + ": " + ListOf(field) +
                     (held == nullptr ? " is lost" : " becomes " + ListOf(*held)));
  }
  return losses;
}

}  // namespace corvin::formats
