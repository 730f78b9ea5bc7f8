// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// What is behind the handle of tags, for the functions that bring them into files.

#ifndef CORVIN_STUDIO_C_API_TAGS_H_
#define CORVIN_STUDIO_C_API_TAGS_H_

#include <cstdint>
#include <vector>

#include "corvin.h"
#include "formats/container_tags.h"
#include "formats/tags/id3_tag_set.h"

struct corvin_tags : corvin::formats::HeldTags {};

namespace corvin::studio {

/// What a container gets of the tags. CORVIN_OK, CORVIN_E_ARGUMENT for no form,
/// CORVIN_E_UNSUPPORTED when no block can hold them.
int container_tags(const corvin_tags& tags, std::uint32_t form, formats::ContainerTags& made);

}  // namespace corvin::studio

#endif  // CORVIN_STUDIO_C_API_TAGS_H_
