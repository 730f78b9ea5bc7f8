/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin.h
 *  The Corvin library for C99 and C++: DSD and PCM, DSD files and their tags. It includes
 *  - corvin_studio.h        the studio engine: streaming conversion in both directions
 *  - corvin_studio_files.h  DSD files, read and written, and whole conversions
 *  - corvin_tags.h          the tag record and ID3v2.3 blocks
 *  - corvin_classic.h       the classic engine, for hosts that need its bytes or its names
 *  Each of them may also be included alone. corvin.hpp has owners and spans for C++20.
 *
 *  Conventions
 *  - A DSD *sample* is one bit of one channel; lengths count samples per channel. A DSD byte holds
 *    eight samples, the earliest in the most significant bit in DSDIFF and "1bit" files and in the
 *    least significant bit in DSF files.
 *  - A PCM *frame* is one sample of every channel. Interleaved frames have the channels in the
 *    order of the file.
 *  - Rates are in Hz. 0 dBFS is full scale of PCM, and 50 % modulation of DSD.
 *  - Container kinds: 1 = DSDIFF, 2 = DSF, 3 = "1bit".
 *  - Buffers, streams and records belong to the caller unless a function says otherwise.
 *  - Any number of calls may run at once from different threads, on different files, buffers,
 *    records and objects; one of these takes one call at a time.
 *  - Functions allocate and may block, unless they say otherwise: they are not for real-time
 *    threads. Conversions by push and pull are, once their object is made.
 *  - No function throws.
 *
 *  Life of an object of the studio engine
 *  - A conversion by pieces: fill the settings with ..._settings_defaults(), change some, create;
 *    push until all is taken, pulling what is ready in between; finish; pull until nothing comes.
 *    Then reset for another stream, or destroy.
 *  - A file to read: open, get_info, then read and seek, or hand it to a corvin_convert_...()
 *    function; close.
 *  - A file to write: create, set_tags, then write and finish, or hand it to a corvin_convert_...()
 *    function, which finishes it; close. A file given by its path is gone if it was not finished.
 *  Every function there tells success or failure by a corvin_status, and corvin_strerror() tells it
 *  in words. */

#ifndef CORVIN_H_
#define CORVIN_H_

#include "corvin_api.h"
#include "corvin_classic.h"
#include "corvin_studio.h"
#include "corvin_studio_files.h"
#include "corvin_tags.h"

/** The version of the header; corvin_version() returns that of the library. */
#define CORVIN_VERSION_MAJOR 0
#define CORVIN_VERSION_MINOR 1
#define CORVIN_VERSION_PATCH 0

#ifdef __cplusplus
extern "C" {
#endif

/** Returns the version of the library that is running, "0.1.0": terminated, for good. Threads:
 *  reentrant. Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API const char* corvin_version(void);

#ifdef __cplusplus
}
#endif

#endif /* CORVIN_H_ */
