/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_tags.h
 *  Tags of DSD files: the record that holds them, ID3v2.3 blocks and the genres. Both engines use
 *  it; corvin_file_get_tags() and corvin_writer_set_tags() stand in corvin_studio_files.h. The
 *  conventions are those of corvin.h. */

#ifndef CORVIN_TAGS_H_
#define CORVIN_TAGS_H_

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>

#include "corvin_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The record ---------------------------------------------------------------------------- */

/** Bytes of a text field; a text that fills its field has no terminator. */
#define CORVIN_TAG_TEXT_BYTES 514

/** Pictures that one record holds at most. */
#define CORVIN_TAG_MAX_PICTURES 256

/** A picture of a tag record. */
typedef struct DSD_PICTURE {
  char mime[32];         /**< MIME type, terminated */
  uint8_t pictureType;   /**< ID3 picture type, 3 = front cover */
  char description[512]; /**< UTF-8, terminated */
  int32_t dataSize;      /**< bytes of `data` */
  uint8_t* data;         /**< the picture file; null when there is none */
} DSD_PICTURE;

/** The tags of a file. Zero a record before its first use: the functions that fill it release the
 *  pictures it holds. Those that they allocate belong to the record; DSDTagClear() releases them.
 *
 *  A text is a byte string that ends at the first zero byte or with its field. ID3v2 texts are
 *  UTF-8, unless the tag states ISO 8859-1: those bytes, like all texts from DSDIFF files, are kept
 *  as they stand in the file. */
typedef struct DSD_TAG {
  uint32_t format;                          /**< container kind 1..3 */
  char title[CORVIN_TAG_TEXT_BYTES];        /**< "TIT2"; DSDIFF "DITI" */
  char artist[CORVIN_TAG_TEXT_BYTES];       /**< "TPE1"; DSDIFF "DIAR" */
  char album[CORVIN_TAG_TEXT_BYTES];        /**< "TALB" */
  int32_t year;                             /**< "TYER"; DSDIFF "COMT" time stamp; 0 = none */
  char comment[CORVIN_TAG_TEXT_BYTES];      /**< "COMM" in #CommentLanguage; DSDIFF "COMT" */
  char track[CORVIN_TAG_TEXT_BYTES];        /**< "TRCK" */
  char genre[CORVIN_TAG_TEXT_BYTES];        /**< "TCON" */
  char composer[CORVIN_TAG_TEXT_BYTES];     /**< "TCOM" */
  char rightsNotice[CORVIN_TAG_TEXT_BYTES]; /**< "TCOP" */
  int32_t pictureCount;                     /**< entries of `pictures` */
  DSD_PICTURE** pictures;                   /**< "APIC", in file order */

#ifdef __cplusplus
  /** Adds empty picture entries that the record owns.
   *  @param count      entries to add, 0..#CORVIN_TAG_MAX_PICTURES
   *  @param dataBytes  bytes of zeroed `data` that each gets, 0 or more; with 0 `data` stays null
   *  @param keep       true adds to the pictures already held, false releases those first
   *  @return           the first new entry; null when none was added: a count of 0, an argument out
   *                    of range, too many pictures, or no memory. The pictures kept are then as
   *                    they were
   *  Threads: reentrant for different records. Since 0.1. */
  CORVIN_API DSD_PICTURE* PictureAlloc(int count, int dataBytes, bool keep);
#endif
} DSD_TAG;

/* ---- Reading and writing ------------------------------------------------------------------- */

/** Reads the tags of a DSD file: of a DSF file its ID3v2.3 block, of a DSDIFF file the comments and
 *  the edited master information.
 *  @param path  the file
 *  @param tag   emptied first, also when the file cannot be opened
 *  @return      -1 when the file cannot be opened, when it is a "1bit" file or a DSF file without a
 *               tag, and for a null pointer; 0 in every other case, including a file of no known
 *               kind (`format` is then 0) and a tag that cannot be read
 *  Threads: reentrant for different records. Since 0.1. */
CORVIN_API int DSDTag(const char* path, DSD_TAG* tag);

/** Empties a record: releases its pictures and zeroes every field.
 *  @param tag  null is allowed. Its pictures are those that the library allocated: a host that has
 *              put in memory of its own takes it out before
 *  Threads: reentrant for different records. Since 0.1. */
CORVIN_API void DSDTagClear(DSD_TAG* tag);

/** Reads an ID3v2.3 block from a stream's current position into a record.
 *  @param stream  left behind the block, when that could be read whole; need not be seekable
 *  @param tag     the fields that the block has are replaced, others are left. Of equal text frames
 *                 the last wins, of comments the first in #CommentLanguage; other comments are
 *                 skipped. Pictures replace those held before the call
 *  @return        0 when the block holds at least one frame, known or not; 1 when there is no
 *                 ID3v2.3 header (2.2 and 2.4 are not read), or no frame; -1 when header or block
 *                 end early, memory runs out or a pointer is null. Except when memory runs out, the
 *                 record is untouched unless 0 is returned
 *  Memory: at most a few times what the stream really holds. Threads: reentrant for different
 *  streams and records. Since 0.1. */
CORVIN_API int Read_id3tag_v2(FILE* stream, DSD_TAG* tag);

/** Writes a record as one ID3v2.3 block at a stream's current position. Texts are announced as
 *  UTF-8 and written as they stand; empty fields, a year of 0 and pictures without data are left
 *  out.
 *  @param stream  left behind the block; need not be seekable
 *  @param tag     is not changed
 *  @return  bytes written: the size of the block, 10 for an empty record, unless the stream's error
 *           flag is set; -1 without writing when memory runs out, a pointer is null or the block
 *           would exceed the 256 MiB that an ID3v2 header can state
 *  Threads: reentrant for different streams. Since 0.1. */
CORVIN_API int Write_id3tag_v2(FILE* stream, const DSD_TAG* tag);

/** Does the same as Write_id3tag_v2(), under its older name. Since 0.1. */
CORVIN_API int id3tag_write_v2(FILE* stream, const DSD_TAG* tag);

/** Copies a text without its byte-order mark: FF FE, FE FF or EF BB BF.
 *  @param src  src[len]
 *  @param dst  receives what follows the mark; may be `src`
 *  @return     bytes copied; 0, and nothing is copied, when there is no mark, `len` is below 4 or a
 *              pointer is null
 *  Threads: reentrant. Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API int CutUnicodeBOM(const unsigned char* src, int len, unsigned char* dst);

/** Whether the latest Read_id3tag_v2() to make progress has taken a comment. Reads in several
 *  threads share it, so it says something only when one is running at a time; no read depends on
 *  it. */
extern CORVIN_API bool bFindCommentTag;

/** ISO 639-2 code of the comments that are read and written: "jpn". */
extern CORVIN_API const char CommentLanguage[4];

/* ---- Genres -------------------------------------------------------------------------------- */

/** Number of ID3v1 genres known. */
#define CORVIN_GENRE_COUNT 148

/** The ID3v1 genre names by genre number. */
extern CORVIN_API const char* const genre_names[CORVIN_GENRE_COUNT];

/** The genre numbers in the order of the listing. */
extern CORVIN_API const int genre_alpha_map[CORVIN_GENRE_COUNT];

/** Is told one genre.
 *  @param genre  its ID3v1 number, 0..147
 *  @param name   its English name, terminated, for good
 *  @param user   what id3tag_genre_list() was given */
typedef void (*CorvinGenreCallback)(int genre, const char* name, void* user);

/** Calls `callback` for every genre in alphabetical order, "Alt. Rock" right after "Alternative".
 *  @param callback  called #CORVIN_GENRE_COUNT times on this thread; nothing happens when it is
 *                   null
 *  @param user      passed to `callback`
 *  Threads: reentrant. Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API void id3tag_genre_list(CorvinGenreCallback callback, void* user);

#ifdef __cplusplus
}
#endif

#endif /* CORVIN_TAGS_H_ */
