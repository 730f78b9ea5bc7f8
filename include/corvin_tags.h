/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_tags.h
 *  Tags of DSD files. There are two ways of having them: a corvin_tags holds all that a tag can
 *  say; the record DSD_TAG, which the flat functions fill, has room for some short texts. Here are
 *  also ID3v2.3 blocks of the record, and the genres. What takes tags from files and brings them
 *  there stands in corvin_studio_files.h. The conventions are those of corvin.h, those of a
 *  corvin_tags, with its status codes, are those of corvin_studio.h. */

#ifndef CORVIN_TAGS_H_
#define CORVIN_TAGS_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "corvin_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- All of a tag ---------------------------------------------------------------------------- */

/** Named fields with any number of values each, pictures, and the ID3v2 frames that are neither.
 *
 *  - Names are those of Vorbis comments ("TITLE", "ALBUMARTIST"; docs/tags.md lists them), in
 *    UTF-8; letters of either case mean the same. Any other name is a field too. "COMMENT",
 *    "LYRICS" and "URL" may have a description behind a colon: "COMMENT:description".
 *  - Values are UTF-8 and not empty. Those of comments and lyrics may have a language.
 *  - Fields, values, pictures and frames count from 0, in the order of their coming. What a
 *    function returns of them lives until the tags change.
 *  - One caller at a time for each object; objects are independent. */
typedef struct corvin_tags corvin_tags;

/** What an ID3v2 block is to look like. */
typedef enum corvin_id3_form {
  CORVIN_ID3_AS_READ =
      0,              /**< the block that the tags were read from, byte for byte, as long as they
                               are what that block holds; else CORVIN_ID3_V24 */
  CORVIN_ID3_V23 = 3, /**< version 2.3, its texts in UTF-16, several values joined by "/" */
  CORVIN_ID3_V24 = 4  /**< version 2.4, its texts in UTF-8 */
} corvin_id3_form;

/** A picture of a tag. */
typedef struct corvin_picture {
  size_t size;             /**< sizeof(corvin_picture), set by the caller */
  uint32_t type;           /**< ID3 picture type, 0..20; 3 = front cover, 4 = back cover */
  uint32_t reserved0;      /**< 0 */
  const char* mime;        /**< MIME type; "-->": the data is an address. NULL: "" */
  const char* description; /**< UTF-8. NULL: "" */
  const void* data;        /**< data[bytes], the picture file */
  size_t bytes;
} corvin_picture;

/** An ID3v2 frame that is no field and no picture. */
typedef struct corvin_tag_frame {
  size_t size;      /**< sizeof(corvin_tag_frame), set by the caller */
  char id[8];       /**< four characters, terminated */
  const void* data; /**< data[bytes], its content as it stands */
  size_t bytes;
} corvin_tag_frame;

/** Makes tags without content.
 *  @param tags  receives the handle, NULL on failure
 *  @return      CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_tags_create(corvin_tags** tags);

/** Ends a handle. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_tags_destroy(corvin_tags* tags);

/** Takes everything out. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_tags_clear(corvin_tags* tags);

/** Replaces the content by that of an ID3v2 block of version 2.2, 2.3 or 2.4, in any encoding,
 *  unsynchronised or not. Values end at zero bytes; a slash separates none, but for the totals of
 *  tracks, discs and movements. Genres by number become names. Frames that are compressed,
 *  encrypted or not known are kept as they are.
 *  @param block  block[bytes]; what lies behind the block is ignored
 *  @return       CORVIN_OK, also for a damaged block, of which as much is read as makes sense (see
 *                corvin_tags_warning()); CORVIN_E_FORMAT when no block of these versions begins
 *                there, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY: without content
 *  Memory: three times the block at most. Of more than 16384 frames or 4096 values the rest is left
 *  out, with a warning.
 *  Since 0.1. */
CORVIN_API int corvin_tags_read_id3(corvin_tags* tags, const void* block, size_t bytes);

/** Makes an ID3v2 block.
 *  @param form   corvin_id3_form
 *  @param to     room for `size` bytes; NULL when only the number is wanted
 *  @param bytes  receives the size of the block; 0 for tags without content
 *  @return       CORVIN_OK, CORVIN_E_ARGUMENT (also when `size` is too small, `bytes` is set then),
 *                CORVIN_E_MEMORY; CORVIN_E_UNSUPPORTED when it would exceed the 256 MiB that a
 *                block can state
 *  Since 0.1. */
CORVIN_API int corvin_tags_write_id3(const corvin_tags* tags, uint32_t form, void* to, size_t size,
                                     size_t* bytes);

/** Describes what a block would not give back as it is, one line each: "DATE: "1993-07" becomes
 *  "1993"". Nothing for CORVIN_ID3_V24 but in odd cases.
 *  @param form  corvin_id3_form
 *  @param text  receives as much as fits, terminated; NULL when `size` is 0
 *  @return      the length of the whole description, CORVIN_E_ARGUMENT or CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_tags_losses(const corvin_tags* tags, uint32_t form, char* text, size_t size);

/** Returns a sentence without subject on something in what was read that could not be taken as it
 *  is; NULL from their number on. Since 0.1. */
CORVIN_API const char* corvin_tags_warning(const corvin_tags* tags, uint32_t index);

/** Returns the number of fields; 0 for NULL. Since 0.1. */
CORVIN_API uint32_t corvin_tags_fields(const corvin_tags* tags);

/** Returns the name of a field; NULL when there is none of that number. Since 0.1. */
CORVIN_API const char* corvin_tags_name(const corvin_tags* tags, uint32_t field);

/** Returns the number of a field's values; 0 when there is no such field. Since 0.1. */
CORVIN_API uint32_t corvin_tags_values(const corvin_tags* tags, const char* name);

/** Returns a value of a field; NULL when there is none. Since 0.1. */
CORVIN_API const char* corvin_tags_value(const corvin_tags* tags, const char* name, uint32_t value);

/** Returns the language of a value, an ISO 639-2 code; "" when it is not known, NULL when there is
 *  no such value. Since 0.1. */
CORVIN_API const char* corvin_tags_language(const corvin_tags* tags, const char* name,
                                            uint32_t value);

/** Gives a field one value in place of all it had, the language of the first of them included.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also for an empty name or value and what is not UTF-8),
 *           CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_tags_set(corvin_tags* tags, const char* name, const char* value);

/** Adds a value to a field, which is made if need be. One that it has is not added again.
 *  @param language  three characters, for comments and lyrics alone; NULL or "": not known
 *  @return  as corvin_tags_set()
 *  Since 0.1. */
CORVIN_API int corvin_tags_add(corvin_tags* tags, const char* name, const char* value,
                               const char* language);

/** Removes a field; no such field is no error.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_tags_remove(corvin_tags* tags, const char* name);

/** Returns the number of pictures; 0 for NULL. Since 0.1. */
CORVIN_API uint32_t corvin_tags_pictures(const corvin_tags* tags);

/** Tells a picture.
 *  @param picture  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also when there is none of that number)
 *  Since 0.1. */
CORVIN_API int corvin_tags_get_picture(const corvin_tags* tags, uint32_t index,
                                       corvin_picture* picture);

/** Adds a copy of a picture.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_tags_add_picture(corvin_tags* tags, const corvin_picture* picture);

/** Removes a picture.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also when there is none of that number)
 *  Since 0.1. */
CORVIN_API int corvin_tags_remove_picture(corvin_tags* tags, uint32_t index);

/** Returns the number of frames that are kept; 0 for NULL. Since 0.1. */
CORVIN_API uint32_t corvin_tags_frames(const corvin_tags* tags);

/** Tells a frame.
 *  @param frame  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also when there is none of that number)
 *  Since 0.1. */
CORVIN_API int corvin_tags_get_frame(const corvin_tags* tags, uint32_t index,
                                     corvin_tag_frame* frame);

/** Removes a frame.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also when there is none of that number)
 *  Since 0.1. */
CORVIN_API int corvin_tags_remove_frame(corvin_tags* tags, uint32_t index);

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
