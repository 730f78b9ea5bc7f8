// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Writers of DSD bytes. After a failed write the rest is taken and dropped, so that the other
// stages come to their end.

#include "classic/encode/dsd_writer.h"

#include <algorithm>
#include <cstring>

CWriter::CWriter(int blockBytes, int nb, int channels) { blocks_.Init(nb, blockBytes, channels); }

CWriter::~CWriter() = default;

CBuffer* CWriter::Write1Lock(int n, int ch) { return blocks_.Write1Lock(n, ch); }

int CWriter::Wait() {
  if (thread_.joinable()) thread_.join();
  return result_;
}

ByteWindow::ByteWindow(int skip_bytes, unsigned long long total_bytes)
    : skip_left_(static_cast<unsigned long long>(std::max(skip_bytes, 0))),
      total_left_(total_bytes) {}

int ByteWindow::Cut(const char*& data, int length) {
  const auto available = static_cast<unsigned long long>(length);
  const unsigned long long skipped = std::min(available, skip_left_);
  skip_left_ -= skipped;
  data += skipped;
  const unsigned long long count = std::min(total_left_, available - skipped);
  total_left_ -= count;
  return static_cast<int>(count);
}

// ---- Interleaved bytes ------------------------------------------------------------------------

CDiskWriter::CDiskWriter(std::FILE* out, int blockBytes, int nb, int channels, int skipBytes,
                         unsigned long long totalBytes, char* outBuffer)
    : CWriter(blockBytes, nb, channels),
      out_(out),
      memory_(outBuffer),
      memory_half_(static_cast<std::size_t>(totalBytes / 2)),
      window_(skipBytes, totalBytes) {
  thread_ = std::thread(DiskWriterThread, this);
}

CDiskWriter::~CDiskWriter() { Wait(); }

void CDiskWriter::Run() {
  TakeBlocks([this](const char* data, int length) {
    const auto count = static_cast<std::size_t>(window_.Cut(data, length));
    if (memory_) {
      const std::size_t half = count / 2;
      std::memcpy(memory_ + memory_position_, data, half);
      std::memcpy(memory_ + memory_half_ + memory_position_, data + half, half);
      memory_position_ += half;
    } else if (result_ == 0 && out_ && std::fwrite(data, 1, count, out_) != count) {
      result_ = -1;
    }
  });
}

// ---- Channel blocks ---------------------------------------------------------------------------

CBlockWriter::CBlockWriter(std::FILE* out, int blockBytes, int nb, int channels, int blockSize,
                           int skipBytes, unsigned long long totalBytes, char* outBuffer)
    : CWriter(blockBytes, nb, channels),
      out_(out),
      staging_(static_cast<std::size_t>(channels),
               std::vector<char>(static_cast<std::size_t>(blockSize))),
      block_size_(static_cast<std::size_t>(blockSize)),
      memory_(outBuffer),
      region_(static_cast<std::size_t>(totalBytes) / staging_.size()),
      window_(skipBytes, totalBytes) {
  thread_ = std::thread(BlockWriterThread, this);
}

CBlockWriter::~CBlockWriter() { Wait(); }

void CBlockWriter::Run() {
  TakeBlocks([this](const char* data, int length) {
    const int count = window_.Cut(data, length);
    Stage(data, count);
  });
  Flush();
}

void CBlockWriter::Stage(const char* data, int length) {
  const std::size_t channels = staging_.size();
  const std::size_t frames = static_cast<std::size_t>(length) / channels;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    if (fill_ == block_size_) Flush();
    for (std::size_t c = 0; c < channels; ++c) staging_[c][fill_] = data[frame * channels + c];
    ++fill_;
  }
}

void CBlockWriter::Flush() {
  if (fill_ == 0) return;
  for (std::size_t c = 0; c < staging_.size(); ++c) {
    auto& block = staging_[c];
    if (memory_) {
      std::memcpy(memory_ + c * region_ + memory_position_, block.data(), fill_);
      continue;
    }
    std::fill(block.begin() + static_cast<std::ptrdiff_t>(fill_), block.end(), '\0');
    if (result_ == 0 && out_ && std::fwrite(block.data(), 1, block_size_, out_) != block_size_)
      result_ = -1;
  }
  memory_position_ += fill_;
  fill_ = 0;
}

// ---- Callback ---------------------------------------------------------------------------------

CBufferWriter::CBufferWriter(CorvinReadCallback write, void* data, int blockBytes, int nb,
                             int channels)
    : CWriter(blockBytes, nb, channels), write_(write), data_(data) {
  thread_ = std::thread(BufferWriterThread, this);
}

CBufferWriter::~CBufferWriter() { Wait(); }

void CBufferWriter::Run() {
  TakeBlocks([this](char* data, int length) {
    if (write_) write_(data, length, data_);
  });
}
