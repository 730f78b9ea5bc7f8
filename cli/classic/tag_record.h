// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The record of tags that the flat functions take.

#ifndef CORVIN_CLI_CLASSIC_TAG_RECORD_H_
#define CORVIN_CLI_CLASSIC_TAG_RECORD_H_

#include "corvin.hpp"

namespace corvin::cli {

/** What the record has room for: several values in one text, the front cover (without one, the
 *  first picture). Texts longer than their fields are cut after a character. */
Tags record_of(const TagSet& tags);

}  // namespace corvin::cli

#endif  // CORVIN_CLI_CLASSIC_TAG_RECORD_H_
