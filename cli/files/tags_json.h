// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Tags as JSON, for programs and for keeping: an object with "file", "fields" (a list of values
// each, texts or objects of "text" and "language"), "pictures" and the ids of other "frames".

#ifndef CORVIN_CLI_FILES_TAGS_JSON_H_
#define CORVIN_CLI_FILES_TAGS_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

#include "corvin.hpp"

namespace corvin::cli {

using Json = nlohmann::ordered_json;

/** @param with_data  pictures have their "data" in base64; else it is only said how many bytes */
Json json_of(const std::string& path, const TagSet& tags, bool with_data);

/** Replaces the fields and the pictures of `tags` by those of an object. Throws
 *  nlohmann::json::exception or Error when it is of another form. */
void read_json(const Json& object, TagSet& tags);

/** The bytes that base64 stands for. Throws Error when it stands for none. */
std::string from_base64(const std::string& text);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_FILES_TAGS_JSON_H_
