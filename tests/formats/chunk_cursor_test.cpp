// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "formats/chunk_cursor.h"

#include <gtest/gtest.h>

#include "formats/input_file.h"
#include "tests/support/dsd_files.h"
#include "tests/support/temp_file.h"

namespace {

using namespace corvin::formats;
using namespace corvin::testing;

TEST(ChunkCursor, StaysInsideTheLimitAndInStepWithTheStream) {
  Bytes bytes = DsdiffChunk("ABCD", {1, 2, 3, 4, 5, 6});
  Append(bytes, DsdiffChunk("EFGH", {7, 8}));
  const TempFile temp(bytes);
  const InputFile file = OpenInputFile(temp.path());
  ASSERT_TRUE(file);
  ChunkCursor cursor(file.get(), ByteOrder::kBig);
  const auto in_step = [&] { return ftello(file.get()) == static_cast<off_t>(cursor.position()); };

  ChunkHeader chunk;
  ASSERT_TRUE(cursor.ReadHeader(chunk));
  EXPECT_EQ(chunk.id, MakeChunkId("ABCD"));
  EXPECT_EQ(chunk.size, 6u);
  cursor.set_limit(cursor.position() + chunk.size);
  std::uint64_t wide;
  EXPECT_FALSE(cursor.Read(wide)) << "eight bytes of a chunk of six";
  std::uint32_t word;
  ASSERT_TRUE(cursor.Read(word));
  EXPECT_EQ(word, 0x01020304u);
  EXPECT_FALSE(cursor.Skip(3));
  EXPECT_FALSE(cursor.Skip(UINT64_MAX)) << "must not wrap round";
  EXPECT_EQ(cursor.left(), 2u);
  EXPECT_TRUE(in_step());
  EXPECT_TRUE(cursor.Skip(2));
  EXPECT_FALSE(cursor.ReadHeader(chunk));

  cursor.set_limit(UINT64_MAX);
  EXPECT_EQ(cursor.limit(), bytes.size());
  ASSERT_TRUE(cursor.ReadHeader(chunk));
  EXPECT_EQ(chunk.id, MakeChunkId("EFGH"));
  EXPECT_TRUE(cursor.StepBack(kChunkHeaderBytes));
  EXPECT_FALSE(cursor.StepBack(19));
  EXPECT_TRUE(in_step());
  ASSERT_TRUE(cursor.ReadHeader(chunk));
  EXPECT_EQ(chunk.id, MakeChunkId("EFGH"));
}

TEST(ChunkCursor, RefusesNegativeSizes) {
  const TempFile temp(DsfChunk("ABCD", {}, UINT64_C(1) << 63));
  const InputFile file = OpenInputFile(temp.path());
  ChunkHeader chunk;
  EXPECT_FALSE(ChunkCursor(file.get(), ByteOrder::kLittle).ReadHeader(chunk));
}

}  // namespace
