// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Opens a DSD file for reading without the risk of waiting for a writer: a path may name anything.

#ifndef CORVIN_FORMATS_BYTES_INPUT_FILE_H_
#define CORVIN_FORMATS_BYTES_INPUT_FILE_H_

#include <cstdint>
#include <cstdio>
#include <memory>

namespace corvin::formats {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using InputFile = std::unique_ptr<std::FILE, FileCloser>;

/// Opens `path` in binary. Null when that fails and for everything that is not a regular file: a
/// directory has no bytes, and a FIFO would block and cannot be seeked in.
InputFile OpenInputFile(const char* path);

/// The same as a descriptor, with the file's size; -1 on failure. errno then says why; it is 0 for
/// what is not a regular file.
int OpenInputDescriptor(const char* path, std::uint64_t& bytes);

/// Whether the path is that of a FIFO, or of standard input where that is a pipe or a socket.
bool IsPipe(const char* path);

/// Opens such a path for reading; -1, with errno, on failure. A FIFO that nobody has open for writing
/// keeps it waiting, for to be read before that is to be at its end.
int OpenPipeDescriptor(const char* path);

}  // namespace corvin::formats

#endif  // CORVIN_FORMATS_BYTES_INPUT_FILE_H_
