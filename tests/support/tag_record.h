// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// A tag record that releases its pictures, and its reading and writing in memory.

#ifndef CORVIN_TESTS_SUPPORT_TAG_RECORD_H_
#define CORVIN_TESTS_SUPPORT_TAG_RECORD_H_

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "corvin.h"
#include "tests/support/dsd_files.h"
#include "tests/support/temp_file.h"

namespace corvin::testing {

struct TagRecord : DSD_TAG {
  TagRecord() : DSD_TAG{} {}
  TagRecord(const TagRecord&) = delete;
  TagRecord& operator=(const TagRecord&) = delete;
  ~TagRecord() { DSDTagClear(this); }
};

/// A field up to its terminator or its end.
template <std::size_t N>
std::string TextOf(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

inline StreamPointer StreamOf(const Bytes& bytes) {
  StreamPointer stream(std::tmpfile());
  if (!bytes.empty()) {
    EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), stream.get()), bytes.size());
  }
  std::rewind(stream.get());
  return stream;
}

inline int ReadTag(const Bytes& block, DSD_TAG& tag) {
  return Read_id3tag_v2(StreamOf(block).get(), &tag);
}

/// The block that the writer makes of a record.
inline Bytes WriteTag(const DSD_TAG& tag) {
  const StreamPointer stream(std::tmpfile());
  const int written = Write_id3tag_v2(stream.get(), &tag);
  EXPECT_EQ(written, std::ftell(stream.get()));
  return ReadBack(stream.get());
}

}  // namespace corvin::testing

#endif  // CORVIN_TESTS_SUPPORT_TAG_RECORD_H_
