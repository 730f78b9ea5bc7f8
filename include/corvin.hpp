/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin.hpp
 *  The studio engine for C++20: corvin_studio.h with owners and spans. Header only and without
 * state of its own; every function does what the C function of its name documents. Failures of what
 *  cannot be expected to fail in the middle of a stream (creation, misuse) throw corvin::Error. */

#ifndef CORVIN_HPP_
#define CORVIN_HPP_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "corvin.h"

namespace corvin {

class Error : public std::runtime_error {
 public:
  explicit Error(int status) : std::runtime_error(corvin_strerror(status)), status_(status) {}
  int status() const noexcept { return status_; }

 private:
  int status_;
};

inline int check(int status) {
  if (status < 0) throw Error(status);
  return status;
}

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
    const int length = check(corvin_decoder_describe(handle_.get(), nullptr, 0));
    std::string text(static_cast<std::size_t>(length), '\0');
    check(corvin_decoder_describe(handle_.get(), text.data(), text.size() + 1));
    return text;
  }

  corvin_decoder* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_decoder* decoder) const { corvin_decoder_destroy(decoder); }
  };
  std::unique_ptr<corvin_decoder, Destroy> handle_;
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
    const int length = check(corvin_encoder_describe(handle_.get(), nullptr, 0));
    std::string text(static_cast<std::size_t>(length), '\0');
    check(corvin_encoder_describe(handle_.get(), text.data(), text.size() + 1));
    return text;
  }

  corvin_encoder* handle() const { return handle_.get(); }

 private:
  struct Destroy {
    void operator()(corvin_encoder* encoder) const { corvin_encoder_destroy(encoder); }
  };
  std::unique_ptr<corvin_encoder, Destroy> handle_;
};

// ---- Files and whole conversions -------------------------------------------------------------

class File {
 public:
  explicit File(const char* path) {
    corvin_file* made = nullptr;
    check(corvin_file_open(path, &made));
    handle_.reset(made);
  }
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

  /// DSDTagClear() releases what `tag`, zero before its first use, holds afterwards.
  void tags(DSD_TAG& tag) { check(corvin_file_get_tags(handle_.get(), &tag)); }

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

  corvin_file* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(corvin_file* file) const { corvin_file_close(file); }
  };
  std::unique_ptr<corvin_file, Close> handle_;
};

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
  void finish(std::uint64_t samples) { check(corvin_writer_finish(handle_.get(), samples)); }

  corvin_writer* handle() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(corvin_writer* writer) const { corvin_writer_close(writer); }
  };
  std::unique_ptr<corvin_writer, Close> handle_;
};

/// corvin_convert_settings with its defaults.
struct ConvertSettings : corvin_convert_settings {
  ConvertSettings() { corvin_convert_settings_defaults(this); }
};

inline corvin_convert_report convert_to_pcm(
    File& source, const corvin_pcm_sink& sink,
    const corvin_convert_settings& settings = ConvertSettings()) {
  corvin_convert_report report = {};
  report.size = sizeof report;
  check(corvin_convert_to_pcm(source.handle(), &settings, &sink, &report));
  return report;
}

inline corvin_convert_report convert_to_dsd(
    const corvin_pcm_source& source, Writer& target,
    const corvin_convert_settings& settings = ConvertSettings()) {
  corvin_convert_report report = {};
  report.size = sizeof report;
  check(corvin_convert_to_dsd(&source, target.handle(), &settings, &report));
  return report;
}

inline corvin_convert_report convert_dsd_rate(
    File& source, Writer& target, const corvin_convert_settings& settings = ConvertSettings()) {
  corvin_convert_report report = {};
  report.size = sizeof report;
  check(corvin_convert_dsd_rate(source.handle(), target.handle(), &settings, &report));
  return report;
}

}  // namespace corvin

#endif  // CORVIN_HPP_
