// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The MIME type of a picture, told by its first bytes.

#ifndef CORVIN_CLI_FILES_PICTURE_MIME_H_
#define CORVIN_CLI_FILES_PICTURE_MIME_H_

#include <algorithm>
#include <string>
#include <string_view>

namespace corvin::cli {

/** "image/" for a picture of no kind that is known here. */
inline std::string mime_of(std::string_view data) {
  if (data.starts_with("\x89PNG")) return "image/png";
  if (data.starts_with("\xff\xd8\xff")) return "image/jpeg";
  if (data.starts_with("GIF8")) return "image/gif";
  if (data.starts_with("BM")) return "image/bmp";
  if (data.starts_with("RIFF") && data.substr(std::min<size_t>(8, data.size())).starts_with("WEBP"))
    return "image/webp";
  return "image/";
}

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_PICTURE_MIME_H_
