/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin.hpp
 *  The studio engine, DSD files and their tags for C++20: owners, spans and callables over the C
 *  functions. Header only and without state of its own. What a function does, its units and threads
 *  stand with the C function that it calls; what differs stands here.
 *
 *  - A status below 0 is thrown as corvin::Error.
 *  - Handles move and do not copy. One that was moved from is what NULL is to the C functions.
 *  - A host's callables and ByteStream functions may throw: that counts as their failure, and what
 *    was thrown is dropped, for it must not pass through the library. */

#ifndef CORVIN_HPP_
#define CORVIN_HPP_

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "corvin.h"

namespace corvin {

/// A status, with corvin_strerror()'s sentence.
class Error : public std::runtime_error {
 public:
  explicit Error(int status) : Error(status, errno) {}

  int status() const noexcept { return status_; }

  /// errno at the failure. It says why for CORVIN_E_READ and CORVIN_E_WRITE of what was given by
  /// its path; 0 when that is no regular file to read.
  int system_error() const noexcept { return system_error_; }

 private:
  Error(int status, int system_error)
      : std::runtime_error(corvin_strerror(status)), status_(status), system_error_(system_error) {}

  int status_;
  int system_error_;
};

/// Of the library that is running.
inline std::string_view version() { return corvin_version(); }

inline int check(int status) {
  if (status < 0) throw Error(status);
  return status;
}

namespace detail {

/// What `call` returns, or `failure` when it throws.
template <class Result, class Call>
Result kept_in(Result failure, Call call) noexcept {
  try {
    return call();
  } catch (...) {
    return failure;
  }
}

/// The text that a C function of (text, size) writes.
template <class Describe>
std::string text_from(Describe describe) {
  std::string text(static_cast<std::size_t>(check(describe(nullptr, 0))), '\0');
  check(describe(text.data(), text.size() + 1));
  return text;
}

}  // namespace detail

// ---- Streaming -------------------------------------------------------------------------------

/// corvin_decoder_settings with its defaults.
struct DecoderSettings : corvin_decoder_settings {
  DecoderSettings() { corvin_decoder_settings_defaults(this); }
};

class Decoder {
 public:
  explicit Decoder(const corvin_decoder_settings& settings = DecoderSettings()) {
    corvin_decoder* made = nullptr;
    check(corvin_decoder_create(&settings, &made));
    handle_.reset(made);
  }

  /// Returns the bytes taken; the rest is to be pushed after a pull.
  std::size_t push(std::span<const std::byte> data) {
    std::size_t taken = 0;
    check(corvin_decoder_push(handle_.get(), data.data(), data.size(), &taken));
    return taken;
  }
  std::size_t push(std::span<const std::uint8_t> data) { return push(std::as_bytes(data)); }

  /// Returns the bytes taken of each channel.
  std::size_t push_planar(std::span<const std::uint8_t* const> channels, std::size_t bytes) {
    std::size_t taken = 0;
    check(corvin_decoder_push_planar(handle_.get(), channels.data(), bytes, &taken));
    return taken;
  }

  void finish() { check(corvin_decoder_finish(handle_.get())); }

  /// Writes up to `frames` interleaved frames to `out`; returns their number.
  std::size_t pull(void* out, std::size_t frames) {
    std::size_t done = 0;
    check(corvin_decoder_pull(handle_.get(), out, frames, &done));
    return done;
  }
  std::size_t pull_planar(std::span<void* const> out, std::size_t frames) {
    std::size_t done = 0;
    check(corvin_decoder_pull_planar(handle_.get(), out.data(), frames, &done));
    return done;
  }

  void reset() { check(corvin_decoder_reset(handle_.get())); }
  void seek(std::uint64_t sample) { check(corvin_decoder_seek(handle_.get(), sample)); }
  std::uint64_t preroll() const { return corvin_decoder_preroll(handle_.get()); }
  std::uint64_t latency() const { return corvin_decoder_latency(handle_.get()); }
  std::uint64_t frames(std::uint64_t samples) const {
    return corvin_decoder_frames(handle_.get(), samples);
  }

  corvin_decoder_report report() const {
    corvin_decoder_report report = {};
    report.size = sizeof report;
    check(corvin_decoder_get_report(handle_.get(), &report));
    return report;
  }

  std::string describe() const {
    return detail::text_from([&](char* text, std::size_t size) {
      return corvin_decoder_describe(handle_.get(), text, size);
    });
  }

  corvin_decoder* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_decoder* decoder) const { corvin_decoder_destroy(decoder); }
  };
  std::unique_ptr<corvin_decoder, Destroy> handle_;
};

/// corvin_quantizer_settings with its defaults.
struct QuantizerSettings : corvin_quantizer_settings {
  QuantizerSettings() { corvin_quantizer_settings_defaults(this); }
};

class Quantizer {
 public:
  explicit Quantizer(const corvin_quantizer_settings& settings = QuantizerSettings()) {
    corvin_quantizer* made = nullptr;
    check(corvin_quantizer_create(&settings, &made));
    handle_.reset(made);
  }

  /// Makes `frames` interleaved frames; without `out` they are heard and not written.
  void run(const double* in, std::size_t frames, void* out) {
    check(corvin_quantizer_run(handle_.get(), in, frames, out));
  }
  /// An empty `out` is none.
  void run_planar(std::span<const double* const> in, std::size_t frames,
                  std::span<void* const> out) {
    check(corvin_quantizer_run_planar(handle_.get(), in.data(), frames,
                                      out.empty() ? nullptr : out.data()));
  }

  void reset() { check(corvin_quantizer_reset(handle_.get())); }

  corvin_quantizer_report report() const {
    corvin_quantizer_report report = {};
    report.size = sizeof report;
    check(corvin_quantizer_get_report(handle_.get(), &report));
    return report;
  }

  corvin_quantizer* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_quantizer* quantizer) const { corvin_quantizer_destroy(quantizer); }
  };
  std::unique_ptr<corvin_quantizer, Destroy> handle_;
};

/// corvin_encoder_settings with its defaults.
struct EncoderSettings : corvin_encoder_settings {
  EncoderSettings() { corvin_encoder_settings_defaults(this); }
};

class Encoder {
 public:
  explicit Encoder(const corvin_encoder_settings& settings = EncoderSettings()) {
    corvin_encoder* made = nullptr;
    check(corvin_encoder_create(&settings, &made));
    handle_.reset(made);
  }

  /// Takes `frames` interleaved frames from `data`; returns the frames taken, the rest is to be
  /// pushed after a pull.
  std::size_t push(const void* data, std::size_t frames) {
    std::size_t taken = 0;
    check(corvin_encoder_push(handle_.get(), data, frames, &taken));
    return taken;
  }
  std::size_t push_planar(std::span<const void* const> channels, std::size_t frames) {
    std::size_t taken = 0;
    check(corvin_encoder_push_planar(handle_.get(), channels.data(), frames, &taken));
    return taken;
  }

  void finish() { check(corvin_encoder_finish(handle_.get())); }

  /// Returns the bytes written to `out`.
  std::size_t pull(std::span<std::byte> out) {
    std::size_t done = 0;
    check(corvin_encoder_pull(handle_.get(), out.data(), out.size(), &done));
    return done;
  }
  std::size_t pull(std::span<std::uint8_t> out) { return pull(std::as_writable_bytes(out)); }

  /// Writes up to `bytes` bytes of each channel; returns their number.
  std::size_t pull_planar(std::span<std::uint8_t* const> out, std::size_t bytes) {
    std::size_t done = 0;
    check(corvin_encoder_pull_planar(handle_.get(), out.data(), bytes, &done));
    return done;
  }

  void reset() { check(corvin_encoder_reset(handle_.get())); }
  std::uint64_t latency() const { return corvin_encoder_latency(handle_.get()); }
  std::uint64_t samples(std::uint64_t frames) const {
    return corvin_encoder_samples(handle_.get(), frames);
  }

  corvin_encoder_report report() const {
    corvin_encoder_report report = {};
    report.size = sizeof report;
    check(corvin_encoder_get_report(handle_.get(), &report));
    return report;
  }

  std::string describe() const {
    return detail::text_from([&](char* text, std::size_t size) {
      return corvin_encoder_describe(handle_.get(), text, size);
    });
  }

  corvin_encoder* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_encoder* encoder) const { corvin_encoder_destroy(encoder); }
  };
  std::unique_ptr<corvin_encoder, Destroy> handle_;
};

// ---- Tags ------------------------------------------------------------------------------------

/// The text of a record's field, up to its first zero byte or its end.
template <std::size_t size>
std::string text_of(const char (&field)[size]) {
  return {field, strnlen(field, size)};
}

/// Puts a UTF-8 text into a record's field, zeros behind it. One that is too long is cut after a
/// character.
template <std::size_t size>
void set_text(char (&field)[size], std::string_view text) {
  std::size_t length = std::min(text.size(), size - 1);
  if (length < text.size()) {
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80) --length;
  }
  std::fill(std::copy_n(text.data(), length, field), field + size, '\0');
}

/// A tag record that releases its pictures.
class Tags : public DSD_TAG {
 public:
  Tags() noexcept : DSD_TAG{} {}
  ~Tags() { DSDTagClear(this); }

  /// Leaves `other` empty.
  Tags(Tags&& other) noexcept : DSD_TAG(other) { other.forget(); }
  Tags& operator=(Tags&& other) noexcept {
    if (this != &other) {
      DSDTagClear(this);
      static_cast<DSD_TAG&>(*this) = other;
      other.forget();
    }
    return *this;
  }

  void clear() noexcept { DSDTagClear(this); }

  /// The pictures held, for as long as none is added.
  std::span<DSD_PICTURE* const> all_pictures() const {
    return {pictures, static_cast<std::size_t>(pictureCount)};
  }

  /// Adds a copy of a picture file. Throws CORVIN_E_MEMORY, also when #CORVIN_TAG_MAX_PICTURES are
  /// held, and CORVIN_E_ARGUMENT for one beyond 2 GiB.
  DSD_PICTURE& add_picture(std::uint8_t type, std::string_view mime,
                           std::span<const std::byte> data, std::string_view description = {}) {
    if (data.size() > INT_MAX) throw Error(CORVIN_E_ARGUMENT);
    DSD_PICTURE* entry = PictureAlloc(1, static_cast<int>(data.size()), true);
    if (entry == nullptr) throw Error(CORVIN_E_MEMORY);
    entry->pictureType = type;
    set_text(entry->mime, mime);
    set_text(entry->description, description);
    if (!data.empty()) std::memcpy(entry->data, data.data(), data.size());
    return *entry;
  }

  /// Reads an ID3v2.3 block from `stream`'s position; false when there is none or it is empty.
  /// Throws CORVIN_E_READ when it ends early or memory runs out.
  bool read_id3(std::FILE* stream) {
    const int result = Read_id3tag_v2(stream, this);
    if (result < 0) throw Error(CORVIN_E_READ);
    return result == 0;
  }

  /// Writes an ID3v2.3 block at `stream`'s position and returns its bytes. Throws CORVIN_E_WRITE,
  /// also when the stream's error flag is set.
  std::size_t write_id3(std::FILE* stream) const {
    const int bytes = Write_id3tag_v2(stream, this);
    if (bytes < 0 || std::ferror(stream) != 0) throw Error(CORVIN_E_WRITE);
    return static_cast<std::size_t>(bytes);
  }

 private:
  void forget() noexcept { static_cast<DSD_TAG&>(*this) = {}; }
};

/// A picture of a TagSet; what it points to lives until that changes.
struct Picture {
  std::uint32_t type = 3;  // front cover
  std::string mime;
  std::string description;
  std::span<const std::byte> data;
};

/// A frame of a TagSet; what it points to lives until that changes.
struct TagFrame {
  std::string id;
  std::span<const std::byte> data;
};

/// All of a tag: named fields, pictures and other frames.
class TagSet {
 public:
  TagSet() {
    corvin_tags* made = nullptr;
    check(corvin_tags_create(&made));
    handle_.reset(made);
  }

  void clear() { corvin_tags_clear(handle_.get()); }

  void read_id3(std::span<const std::byte> block) {
    check(corvin_tags_read_id3(handle_.get(), block.data(), block.size()));
  }
  std::vector<std::byte> write_id3(corvin_id3_form form = CORVIN_ID3_AS_READ) const {
    std::size_t bytes = 0;
    check(corvin_tags_write_id3(handle_.get(), form, nullptr, 0, &bytes));
    std::vector<std::byte> block(bytes);
    check(corvin_tags_write_id3(handle_.get(), form, block.data(), block.size(), &bytes));
    return block;
  }

  /// Gives the file at `path` these tags.
  void save(const char* path, corvin_id3_form form = CORVIN_ID3_AS_READ) const {
    check(corvin_tags_save(handle_.get(), path, form));
  }

  /// One line for each.
  std::string losses(corvin_id3_form form) const {
    return detail::text_from([&](char* text, std::size_t size) {
      return corvin_tags_losses(handle_.get(), form, text, size);
    });
  }
  std::vector<std::string> warnings() const {
    std::vector<std::string> all;
    for (std::uint32_t i = 0; const char* one = corvin_tags_warning(handle_.get(), i); ++i) {
      all.emplace_back(one);
    }
    return all;
  }

  bool empty() const {
    return corvin_tags_fields(handle_.get()) == 0 && corvin_tags_pictures(handle_.get()) == 0 &&
           corvin_tags_frames(handle_.get()) == 0;
  }

  /// The fields' names.
  std::vector<std::string> names() const {
    std::vector<std::string> all(corvin_tags_fields(handle_.get()));
    for (std::uint32_t i = 0; i < all.size(); ++i) all[i] = corvin_tags_name(handle_.get(), i);
    return all;
  }
  std::vector<std::string> values(const std::string& name) const {
    std::vector<std::string> all(corvin_tags_values(handle_.get(), name.c_str()));
    for (std::uint32_t i = 0; i < all.size(); ++i) {
      all[i] = corvin_tags_value(handle_.get(), name.c_str(), i);
    }
    return all;
  }
  /// The first value; empty when there is none.
  std::string value(const std::string& name) const {
    const char* first = corvin_tags_value(handle_.get(), name.c_str(), 0);
    return first == nullptr ? "" : first;
  }
  /// Empty when it is not known.
  std::string language(const std::string& name, std::uint32_t value = 0) const {
    const char* code = corvin_tags_language(handle_.get(), name.c_str(), value);
    return code == nullptr ? "" : code;
  }

  void set(const std::string& name, const std::string& value) {
    check(corvin_tags_set(handle_.get(), name.c_str(), value.c_str()));
  }
  void add(const std::string& name, const std::string& value, const std::string& language = {}) {
    check(corvin_tags_add(handle_.get(), name.c_str(), value.c_str(), language.c_str()));
  }
  void remove(const std::string& name) { check(corvin_tags_remove(handle_.get(), name.c_str())); }

  std::vector<Picture> pictures() const {
    std::vector<Picture> all(corvin_tags_pictures(handle_.get()));
    for (std::uint32_t i = 0; i < all.size(); ++i) {
      corvin_picture one = {};
      one.size = sizeof one;
      check(corvin_tags_get_picture(handle_.get(), i, &one));
      all[i] = {one.type,
                one.mime,
                one.description,
                {static_cast<const std::byte*>(one.data), one.bytes}};
    }
    return all;
  }
  void add_picture(const Picture& picture) {
    corvin_picture one = {};
    one.size = sizeof one;
    one.type = picture.type;
    one.mime = picture.mime.c_str();
    one.description = picture.description.c_str();
    one.data = picture.data.data();
    one.bytes = picture.data.size();
    check(corvin_tags_add_picture(handle_.get(), &one));
  }
  void remove_picture(std::uint32_t index) {
    check(corvin_tags_remove_picture(handle_.get(), index));
  }

  std::vector<TagFrame> frames() const {
    std::vector<TagFrame> all(corvin_tags_frames(handle_.get()));
    for (std::uint32_t i = 0; i < all.size(); ++i) {
      corvin_tag_frame one = {};
      one.size = sizeof one;
      check(corvin_tags_get_frame(handle_.get(), i, &one));
      all[i] = {one.id, {static_cast<const std::byte*>(one.data), one.bytes}};
    }
    return all;
  }
  void remove_frame(std::uint32_t index) { check(corvin_tags_remove_frame(handle_.get(), index)); }

  corvin_tags* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_tags* tags) const { corvin_tags_destroy(tags); }
  };
  std::unique_ptr<corvin_tags, Destroy> handle_;
};

struct Genre {
  int number;  // of ID3v1
  std::string_view name;
};

/// The ID3v1 genres in alphabetical order.
inline std::vector<Genre> genres() {
  std::vector<Genre> all;
  all.reserve(CORVIN_GENRE_COUNT);  // the callback must not throw
  id3tag_genre_list(
      [](int number, const char* name, void* user) {
        static_cast<std::vector<Genre>*>(user)->push_back({number, name});
      },
      &all);
  return all;
}

/// A text without its byte-order mark, if it has one.
inline std::string without_byte_order_mark(std::string text) {
  auto* bytes = reinterpret_cast<unsigned char*>(text.data());
  const int left = CutUnicodeBOM(bytes, static_cast<int>(text.size()), bytes);
  if (left > 0) text.resize(static_cast<std::size_t>(left));
  return text;
}

// ---- Files -----------------------------------------------------------------------------------

/// A host's own file. Lives longer than the File or Writer on it. Reading needs read() and, where it
/// can seek, seek() and length(); writing needs write(), and seek() where it can.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  /// Whether seek() is of use.
  virtual bool can_seek() { return true; }

  /// Moves to a byte; false on failure.
  virtual bool seek(std::uint64_t) { return false; }

  /// Returns the bytes read, 0 at the end, a negative number on failure.
  virtual std::int64_t read(std::span<std::byte>) { return -1; }

  /// Returns the size, a negative number on failure.
  virtual std::int64_t length() { return -1; }

  /// Writes all; false on failure.
  virtual bool write(std::span<const std::byte>) { return false; }

  /// The callbacks that call these functions.
  corvin_stream callbacks() noexcept {
    corvin_stream stream = {};
    stream.size = sizeof stream;
    stream.user = this;
    const bool seeks = detail::kept_in(true, [&] { return can_seek(); });
    if (seeks)
      stream.seek = [](void* user, std::uint64_t offset) {
        return detail::kept_in(1, [&] { return of(user).seek(offset) ? 0 : 1; });
      };
    stream.read = [](void* user, void* to, std::size_t bytes) {
      return detail::kept_in<std::int64_t>(-1, [&] {
        return of(user).read({static_cast<std::byte*>(to), bytes});
      });
    };
    stream.length = [](void* user) {
      return detail::kept_in<std::int64_t>(-1, [&] { return of(user).length(); });
    };
    stream.write = [](void* user, const void* from, std::size_t bytes) {
      return detail::kept_in(1, [&] {
        return of(user).write({static_cast<const std::byte*>(from), bytes}) ? 0 : 1;
      });
    };
    return stream;
  }

 private:
  static ByteStream& of(void* user) { return *static_cast<ByteStream*>(user); }
};

class File {
 public:
  explicit File(const char* path) {
    corvin_file* made = nullptr;
    check(corvin_file_open(path, &made));
    handle_.reset(made);
  }
  explicit File(ByteStream& stream) : File(stream.callbacks()) {}
  explicit File(const corvin_stream& stream) {
    corvin_file* made = nullptr;
    check(corvin_file_open_stream(&stream, &made));
    handle_.reset(made);
  }

  corvin_file_info info() const {
    corvin_file_info info = {};
    info.size = sizeof info;
    check(corvin_file_get_info(handle_.get(), &info));
    return info;
  }

  /// Empty when the sound can be read.
  std::string problem() const {
    const char* sentence = corvin_file_problem(handle_.get());
    return sentence == nullptr ? "" : sentence;
  }
  std::vector<std::string> warnings() const {
    std::vector<std::string> all;
    for (std::uint32_t i = 0; const char* one = corvin_file_warning(handle_.get(), i); ++i) {
      all.emplace_back(one);
    }
    return all;
  }

  std::vector<corvin_file_chunk> chunks() const {
    std::vector<corvin_file_chunk> all(info().chunks);
    for (std::uint32_t i = 0; i < all.size(); ++i) {
      all[i].size = sizeof all[i];
      check(corvin_file_get_chunk(handle_.get(), i, &all[i]));
    }
    return all;
  }

  Tags tags() {
    Tags tags;
    check(corvin_file_get_tags(handle_.get(), &tags));
    return tags;
  }
  /// DSDTagClear() releases what `tag`, zero before its first use, holds afterwards.
  void tags(DSD_TAG& tag) { check(corvin_file_get_tags(handle_.get(), &tag)); }

  TagSet all_tags() {
    TagSet tags;
    check(corvin_file_get_all_tags(handle_.get(), tags.handle()));
    return tags;
  }

  /// Returns the bytes of each channel that were read.
  std::size_t read(void* to, std::size_t bytes, corvin_bit_order order = CORVIN_MSB_FIRST) {
    std::size_t done = 0;
    check(corvin_file_read(handle_.get(), to, bytes, order, &done));
    return done;
  }
  std::size_t read_planar(std::span<std::uint8_t* const> channels, std::size_t bytes,
                          corvin_bit_order order = CORVIN_MSB_FIRST) {
    std::size_t done = 0;
    check(corvin_file_read_planar(handle_.get(), channels.data(), bytes, order, &done));
    return done;
  }

  void seek(std::uint64_t sample) { check(corvin_file_seek(handle_.get(), sample)); }
  std::uint64_t tell() const { return corvin_file_tell(handle_.get()); }

  /// Moves `decoder` to a sample and this file to what is to be pushed next.
  void seek_decoder(Decoder& decoder, std::uint64_t sample,
                    std::span<corvin_file* const> previous = {}) {
    check(corvin_file_seek_decoder(handle_.get(), decoder.handle(), sample, previous.data(),
                                   previous.size()));
  }

  corvin_file* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(corvin_file* file) const { corvin_file_close(file); }
  };
  std::unique_ptr<corvin_file, Close> handle_;
};

/// Whether a file can tell that its channels are those of the mask.
inline bool names_speakers(corvin_container container, std::uint32_t speakers) {
  return corvin_container_names_speakers(container, speakers) != 0;
}

/// corvin_writer_settings with its defaults.
struct WriterSettings : corvin_writer_settings {
  WriterSettings() { corvin_writer_settings_defaults(this); }
};

class Writer {
 public:
  Writer(const char* path, const corvin_writer_settings& settings) {
    corvin_writer* made = nullptr;
    check(corvin_writer_create(path, &settings, &made));
    handle_.reset(made);
  }
  Writer(ByteStream& stream, const corvin_writer_settings& settings)
      : Writer(stream.callbacks(), settings) {}
  Writer(const corvin_stream& stream, const corvin_writer_settings& settings) {
    corvin_writer* made = nullptr;
    check(corvin_writer_create_stream(&stream, &settings, &made));
    handle_.reset(made);
  }

  void write(const void* data, std::size_t bytes) {
    check(corvin_writer_write(handle_.get(), data, bytes));
  }
  void write_planar(std::span<const std::uint8_t* const> channels, std::size_t bytes) {
    check(corvin_writer_write_planar(handle_.get(), channels.data(), bytes));
  }
  void set_tags(const DSD_TAG& tag) { check(corvin_writer_set_tags(handle_.get(), &tag)); }
  void set_all_tags(const TagSet& tags, corvin_id3_form form = CORVIN_ID3_AS_READ) {
    check(corvin_writer_set_all_tags(handle_.get(), tags.handle(), form));
  }
  void finish(std::uint64_t samples) { check(corvin_writer_finish(handle_.get(), samples)); }

  corvin_writer* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(corvin_writer* writer) const { corvin_writer_close(writer); }
  };
  std::unique_ptr<corvin_writer, Close> handle_;
};

// ---- Whole conversions -----------------------------------------------------------------------

/// corvin_convert_settings with its defaults.
struct ConvertSettings : corvin_convert_settings {
  ConvertSettings() { corvin_convert_settings_defaults(this); }
};

/// The mask of mapped channels.
inline std::uint32_t speakers_mapped(std::uint32_t speakers,
                                     std::span<const std::uint32_t> channel_map) {
  return corvin_speakers_mapped(speakers, channel_map.data(), channel_map.size());
}

/// A conversion that failed, and how far it came.
class ConvertError : public Error {
 public:
  ConvertError(int status, const corvin_convert_report& report) : Error(status), report_(report) {}
  const corvin_convert_report& report() const noexcept { return report_; }

 private:
  corvin_convert_report report_;
};

/// Is told how many of the source's samples or frames are read; false cancels.
using Progress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

/// Where PCM goes; false ends the conversion with CORVIN_E_WRITE.
struct PcmSink {
  std::function<bool(const corvin_pcm_format&)> begin;  // may be empty
  std::function<bool(const void* frames, std::size_t count)> write;
};

/// Where PCM comes from: corvin_pcm_source with a callable.
struct PcmSource {
  std::uint32_t pcm_rate = 44100;
  std::uint32_t channels = 2;
  corvin_sample_format format = CORVIN_S24;
  std::uint64_t frames = 0;  // that will come, 0: not known
  std::function<std::int64_t(void* frames, std::size_t count)> read;
};

namespace detail {

/// `settings` with `progress`, if there is one, in place of theirs. It is not copied.
inline corvin_convert_settings with_progress(corvin_convert_settings settings,
                                             const Progress& progress) {
  if (!progress) return settings;
  settings.progress = [](void* user, std::uint64_t done, std::uint64_t total) {
    return kept_in(1, [&] { return (*static_cast<const Progress*>(user))(done, total) ? 0 : 1; });
  };
  settings.progress_user = const_cast<Progress*>(&progress);
  return settings;
}

/// What calls `source`, which is not copied.
inline corvin_pcm_source calls_of(const PcmSource& source) {
  corvin_pcm_source calls = {};
  calls.size = sizeof calls;
  calls.pcm_rate = source.pcm_rate;
  calls.channels = source.channels;
  calls.format = source.format;
  calls.frames = source.frames;
  calls.user = const_cast<PcmSource*>(&source);
  calls.read = [](void* user, void* frames, std::size_t count) {
    const auto& read = static_cast<const PcmSource*>(user)->read;
    return kept_in<std::int64_t>(-1, [&] { return read(frames, count); });
  };
  return calls;
}

template <class Convert>
corvin_convert_report reported(const corvin_convert_settings& settings, const Progress& progress,
                               Convert convert) {
  corvin_convert_report report = {};
  report.size = sizeof report;
  const corvin_convert_settings all = with_progress(settings, progress);
  const int status = convert(&all, &report);
  if (status < 0) throw ConvertError(status, report);
  return report;
}

}  // namespace detail

inline corvin_convert_report convert_to_pcm(
    File& source, const corvin_pcm_sink& sink,
    const corvin_convert_settings& settings = ConvertSettings(), const Progress& progress = {}) {
  return detail::reported(settings, progress, [&](const auto* all, auto* report) {
    return corvin_convert_to_pcm(source.handle(), all, &sink, report);
  });
}

inline corvin_convert_report convert_to_pcm(
    File& source, const PcmSink& sink, const corvin_convert_settings& settings = ConvertSettings(),
    const Progress& progress = {}) {
  corvin_pcm_sink calls = {};
  calls.size = sizeof calls;
  calls.user = const_cast<PcmSink*>(&sink);
  calls.begin = [](void* user, const corvin_pcm_format* format) {
    const auto& begin = static_cast<const PcmSink*>(user)->begin;
    return detail::kept_in(1, [&] { return !begin || begin(*format) ? 0 : 1; });
  };
  calls.write = [](void* user, const void* frames, std::size_t count) {
    const auto& write = static_cast<const PcmSink*>(user)->write;
    return detail::kept_in(1, [&] { return write(frames, count) ? 0 : 1; });
  };
  return convert_to_pcm(source, calls, settings, progress);
}

inline corvin_convert_report convert_to_dsd(
    const corvin_pcm_source& source, Writer& target,
    const corvin_convert_settings& settings = ConvertSettings(), const Progress& progress = {}) {
  return detail::reported(settings, progress, [&](const auto* all, auto* report) {
    return corvin_convert_to_dsd(&source, target.handle(), all, report);
  });
}

inline corvin_convert_report convert_to_dsd(
    const PcmSource& source, Writer& target,
    const corvin_convert_settings& settings = ConvertSettings(), const Progress& progress = {}) {
  return convert_to_dsd(detail::calls_of(source), target, settings, progress);
}

/// Throws CORVIN_E_ARGUMENT also when there are not as many targets as sources.
inline corvin_convert_report convert_to_dsd_tracks(
    std::span<const corvin_pcm_source> sources, std::span<Writer> targets,
    const corvin_convert_settings& settings = ConvertSettings(), const Progress& progress = {}) {
  if (sources.size() != targets.size()) throw Error(CORVIN_E_ARGUMENT);
  std::vector<const corvin_pcm_source*> from;
  for (const corvin_pcm_source& source : sources) from.push_back(&source);
  std::vector<corvin_writer*> to;
  for (const Writer& target : targets) to.push_back(target.handle());
  return detail::reported(settings, progress, [&](const auto* all, auto* report) {
    return corvin_convert_to_dsd_tracks(from.data(), to.data(), from.size(), all, report);
  });
}

inline corvin_convert_report convert_to_dsd_tracks(
    std::span<const PcmSource> sources, std::span<Writer> targets,
    const corvin_convert_settings& settings = ConvertSettings(), const Progress& progress = {}) {
  std::vector<corvin_pcm_source> calls;
  for (const PcmSource& source : sources) calls.push_back(detail::calls_of(source));
  return convert_to_dsd_tracks(calls, targets, settings, progress);
}

inline corvin_convert_report convert_dsd_rate(
    File& source, Writer& target, const corvin_convert_settings& settings = ConvertSettings(),
    const Progress& progress = {}) {
  return detail::reported(settings, progress, [&](const auto* all, auto* report) {
    return corvin_convert_dsd_rate(source.handle(), target.handle(), all, report);
  });
}

/// The sound, or a stretch of it, bit for bit.
inline void convert_copy(File& source, Writer& target,
                         const corvin_convert_settings& settings = ConvertSettings(),
                         const Progress& progress = {}) {
  const corvin_convert_settings all = detail::with_progress(settings, progress);
  check(corvin_convert_copy(source.handle(), target.handle(), &all));
}

}  // namespace corvin

#endif  // CORVIN_HPP_
