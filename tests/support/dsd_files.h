// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Builds DSD files in memory, sound and lying ones. The payload is the same for every kind: one
// byte per channel in turn, earliest sample in the most significant bit; the builders bring it into
// the container's own layout. Every lie is an optional that replaces a true value.

#ifndef CORVIN_TESTS_SUPPORT_DSD_FILES_H_
#define CORVIN_TESTS_SUPPORT_DSD_FILES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvin::testing {

using Bytes = std::vector<std::uint8_t>;

inline Bytes& Append(Bytes& to, const Bytes& more) {
  to.insert(to.end(), more.begin(), more.end());
  return to;
}

inline Bytes& Append(Bytes& to, std::string_view text) {
  to.insert(to.end(), text.begin(), text.end());
  return to;
}

inline Bytes& AppendBig(Bytes& to, std::uint64_t value, int width) {
  for (int i = width - 1; i >= 0; --i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  return to;
}

inline Bytes& AppendLittle(Bytes& to, std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  return to;
}

/// A DSDIFF chunk: id, size and body. The size may lie.
inline Bytes DsdiffChunk(std::string_view id, const Bytes& body,
                         std::optional<std::uint64_t> size = {}) {
  Bytes chunk = {};
  Append(chunk, id);
  AppendBig(chunk, size.value_or(body.size()), 8);
  return Append(chunk, body);
}

/// A DSF chunk; its size counts the 12 bytes of the header.
inline Bytes DsfChunk(std::string_view id, const Bytes& body,
                      std::optional<std::uint64_t> size = {}) {
  Bytes chunk = {};
  Append(chunk, id);
  AppendLittle(chunk, size.value_or(body.size() + 12), 8);
  return Append(chunk, body);
}

struct DsfOptions {
  std::uint32_t block_bytes = 4096;  ///< block size per channel
  std::optional<std::uint32_t> stated_channels = {};
  std::optional<std::uint32_t> stated_block_bytes = {};
  std::optional<std::uint32_t> bits_per_sample = {};
  std::optional<std::uint64_t> sample_count = {};  ///< per channel
  std::optional<std::uint64_t> data_size = {};
  std::optional<std::uint64_t> metadata_pointer = {};
  Bytes before_fmt = {};   ///< whole chunks
  Bytes before_data = {};  ///< whole chunks
  Bytes tag = {};          ///< behind the sound, pointed to unless it is empty
};

inline Bytes DsfFile(std::uint32_t channels, std::uint32_t rate, const Bytes& payload,
                     const DsfOptions& options = {}) {
  const std::size_t frames = payload.size() / (channels == 0 ? 1 : channels);
  const std::size_t groups = (frames + options.block_bytes - 1) / options.block_bytes;
  Bytes sound(groups * channels * options.block_bytes);
  for (std::size_t frame = 0; frame < frames; ++frame) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
      std::uint8_t reversed = 0;
      for (int bit = 0; bit < 8; ++bit) {
        if (payload[frame * channels + channel] >> bit & 1)
          reversed |= static_cast<std::uint8_t>(0x80 >> bit);
      }
      const std::size_t group = frame / options.block_bytes;
      sound[(group * channels + channel) * options.block_bytes + frame % options.block_bytes] =
          reversed;
    }
  }
  Bytes fmt = {};
  AppendLittle(fmt, 1, 4);
  AppendLittle(fmt, 0, 4);
  AppendLittle(fmt, channels, 4);
  AppendLittle(fmt, options.stated_channels.value_or(channels), 4);
  AppendLittle(fmt, rate, 4);
  AppendLittle(fmt, options.bits_per_sample.value_or(1), 4);
  AppendLittle(fmt, options.sample_count.value_or(frames * 8), 8);
  AppendLittle(fmt, options.stated_block_bytes.value_or(options.block_bytes), 4);
  AppendLittle(fmt, 0, 4);

  Bytes rest = {};
  Append(rest, options.before_fmt);
  Append(rest, DsfChunk("fmt ", fmt));
  Append(rest, options.before_data);
  Append(rest, DsfChunk("data", sound, options.data_size));
  const std::uint64_t tag_at = 28 + rest.size();
  Bytes head = {};
  AppendLittle(head, tag_at + options.tag.size(), 8);
  AppendLittle(head, options.metadata_pointer.value_or(options.tag.empty() ? 0 : tag_at), 8);
  Bytes file = DsfChunk("DSD ", head);
  Append(file, rest);
  return Append(file, options.tag);
}

struct DsdiffOptions {
  bool compression_chunk = true;
  std::string compression_type = "DSD ";  ///< also the id of the sound chunk
  std::string compression_name = "not compressed";
  std::optional<std::uint16_t> stated_channels = {};
  std::optional<std::uint8_t> name_length = {};
  std::optional<std::uint64_t> compression_size = {};
  std::optional<std::uint64_t> channels_size = {};
  std::optional<std::uint64_t> properties_size = {};
  std::optional<std::uint64_t> sound_size = {};
  Bytes properties_first = {};   ///< whole sub-chunks, before the sample rate
  Bytes properties_last = {};    ///< whole sub-chunks, behind the compression type
  Bytes before_properties = {};  ///< whole chunks
  Bytes before_sound = {};       ///< whole chunks
  Bytes after_sound = {};        ///< whole chunks
};

inline Bytes DsdiffFile(std::uint16_t channels, std::uint32_t rate, const Bytes& payload,
                        const DsdiffOptions& options = {}) {
  Bytes properties = {};
  Append(properties, "SND ");
  Append(properties, options.properties_first);
  Bytes body = {};
  Append(properties, DsdiffChunk("FS  ", AppendBig(body, rate, 4)));
  body.clear();
  AppendBig(body, options.stated_channels.value_or(channels), 2);
  for (int channel = 0; channel < channels; ++channel) {
    Append(body, channel == 0 ? "SLFT" : channel == 1 ? "SRGT" : "    ");
  }
  Append(properties, DsdiffChunk("CHNL", body, options.channels_size));
  if (options.compression_chunk) {
    body.clear();
    Append(body, options.compression_type);
    const auto length = static_cast<std::uint8_t>(options.compression_name.size());
    body.push_back(options.name_length.value_or(length));
    Append(body, options.compression_name);
    if (body.size() % 2 != 0) body.push_back(0);
    Append(properties, DsdiffChunk("CMPR", body, options.compression_size));
  }
  Append(properties, options.properties_last);

  Bytes form = {};
  Append(form, "DSD ");
  Append(form, DsdiffChunk("FVER", {1, 5, 0, 0}));
  Append(form, options.before_properties);
  Append(form, DsdiffChunk("PROP", properties, options.properties_size));
  Append(form, options.before_sound);
  Append(form, DsdiffChunk(options.compression_type, payload, options.sound_size));
  Append(form, options.after_sound);
  return DsdiffChunk("FRM8", form);
}

struct OneBitOptions {
  std::uint32_t data_offset = 2048;
  std::optional<std::uint8_t> stated_channels = {};
  std::optional<std::uint32_t> stated_data_offset = {};
  std::optional<std::uint64_t> file_size = {};
};

inline Bytes OneBitFile(std::uint8_t channels, std::uint32_t rate, const Bytes& payload,
                        const OneBitOptions& options = {}) {
  const std::uint64_t size = options.file_size.value_or(options.data_offset + payload.size());
  Bytes file = {};
  Append(file, "1bit");
  AppendBig(file, 0, 4);
  AppendBig(file, 0x10000000, 4);
  AppendBig(file, size & 0xffffffff, 4);
  AppendBig(file, size >> 32, 4);
  AppendBig(file, 128, 4);
  AppendBig(file, options.stated_data_offset.value_or(options.data_offset), 4);
  AppendBig(file, 0, 4);
  AppendBig(file, 0, 4);
  AppendBig(file, rate, 4);
  AppendBig(file, 0, 4);
  AppendBig(file, std::uint32_t{options.stated_channels.value_or(channels)} << 24, 4);
  AppendBig(file, channels == 1 ? 0x40000000 : 0x44000000, 4);
  file.resize(128, 0);
  file.resize(options.data_offset, ' ');
  return Append(file, payload);
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_DSD_FILES_H_
