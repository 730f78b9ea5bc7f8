/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_studio_files.h
 *  The studio engine's files and whole conversions. Handles, settings that begin with their size
 *  and status codes are as in corvin_studio.h.
 *
 *  - DSD bytes of a channel hold eight samples each. Positions in files count samples per channel;
 *    reading and writing go by whole bytes.
 *  - Speakers are a mask of bits: 1 front left, 2 front right, 4 front centre, 8 low frequencies,
 *    16 back left, 32 back right (and on as in extensible WAV files). The channels stand in the
 *    order of the bits. 0: not known, or another order.
 *  - A path goes to the system as it is. When a function fails because of the system, errno says
 *    why.
 *  - A file that cannot seek, such as a pipe, is read once, in order: corvin_file_read() and one
 *    conversion, of a stretch too, do that. Its headers are all that is known of its length, and one
 *    that ends before is cut short: that it is shows when the sound is read so far, in the info, in
 *    a warning and as `missing` in the report. Tags, moving to a sample, and standing as a neighbour
 *    are CORVIN_E_UNSUPPORTED. */

#ifndef CORVIN_STUDIO_FILES_H_
#define CORVIN_STUDIO_FILES_H_

#include <stddef.h>
#include <stdint.h>

#include "corvin_api.h"
#include "corvin_studio.h"
#include "corvin_tags.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Bytes from and to a host ---------------------------------------------------------------- */

/** A host's own file. Calls come from one thread at a time, though not always from the same one,
 *  until the handle that was given it is closed. */
typedef struct corvin_stream {
  size_t size; /**< sizeof(corvin_stream) */
  void* user;  /**< passed to each call */
  /** Moves to a byte, for the read or write that follows; returns 0, or another value on
   *  failure. NULL: the stream cannot seek; `length` is not called then. */
  int (*seek)(void* user, uint64_t offset);
  /** Reads up to `bytes` bytes and returns their number, 0 at the end, a negative number on
   *  failure. For reading only. */
  int64_t (*read)(void* user, void* to, size_t bytes);
  /** Returns the size of the file, a negative number on failure. For reading only. */
  int64_t (*length)(void* user);
  /** Writes all bytes; returns 0, or another value on failure. For writing only. */
  int (*write)(void* user, const void* from, size_t bytes);
} corvin_stream;

/* ---- Reading --------------------------------------------------------------------------------- */

/** A container. The numbers are those of the container kinds in corvin.h. */
typedef enum corvin_container {
  CORVIN_DSDIFF = 1,
  CORVIN_DSF = 2,
  CORVIN_ONE_BIT = 3
} corvin_container;

/** What a file holds. */
typedef struct corvin_file_info {
  size_t size;        /**< sizeof(corvin_file_info), set by the caller */
  uint32_t container; /**< corvin_container */
  uint32_t dsd_rate;  /**< Hz */
  uint32_t channels;
  uint32_t speakers;       /**< mask */
  uint32_t bit_order;      /**< corvin_bit_order, in the file */
  uint32_t block_bytes;    /**< of a channel before the next one's follow, in the file; 1 when the
                                channels take turns byte by byte */
  uint32_t warnings;       /**< sentences that corvin_file_warning() has */
  int32_t readable;        /**< CORVIN_OK, or what corvin_file_read() will return; then
                                corvin_file_problem() tells more and the other fields what could be
                                found */
  uint64_t samples;        /**< per channel, that are there: without the padding of a last block. Of
                                a file that cannot seek, those stated until it has ended early */
  uint64_t stated_samples; /**< per channel, by the headers; more than `samples` in a file that was
                                cut short */
  uint64_t sound_bytes;    /**< of all channels in the file, padding included */
  char compression[256];   /**< DSDIFF: the compression's name, terminated, else empty */
  uint32_t sequential;     /**< not 0: the file cannot seek */
  uint32_t chunks;         /**< parts that corvin_file_get_chunk() has */
  uint64_t reserved[7];
} corvin_file_info;

/** A part of a file as it was found: a chunk, or what has a place of its own in containers without
 *  chunks. Sizes are those of the content, without the chunk's header, its pad byte, or both. */
typedef struct corvin_file_chunk {
  size_t size;      /**< sizeof(corvin_file_chunk), set by the caller */
  char id[8];       /**< its name in the file, terminated: "PROP", "fmt ". The tag of a DSF file is
                         "ID3 ", the parts of a "1bit" file are "1bit" and "data" */
  uint32_t is_part; /**< not 0: within the last chunk before it that is not itself within one */
  uint32_t reserved0;
  uint64_t header_offset; /**< where its header begins in the file; `offset` when it has none */
  uint64_t offset;        /**< where its content begins */
  uint64_t stated_bytes;  /**< of content, by its header */
  uint64_t bytes;         /**< of content, as it was taken: up to the file's end, or up to where the
                               next chunk was found when the header was wrong */
  uint64_t reserved[4];
} corvin_file_chunk;

/** A DSD file open for reading. */
typedef struct corvin_file corvin_file;

/** Opens a file and reads its headers. A damaged file opens as long as its first bytes tell a
 *  container: see `readable`.
 *  @param file  receives the handle, NULL on failure
 *  @param path  of a regular file or a FIFO, which keeps it waiting until somebody writes to that;
 *               "/dev/stdin" where that is one of these, a pipe or a socket
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY; CORVIN_E_READ when it cannot be opened
 *           or is something else (errno is 0 then); CORVIN_E_FORMAT when it is no DSD file
 *  Since 0.1. */
CORVIN_API int corvin_file_open(const char* path, corvin_file** file);

/** The same on a host's callbacks, of which `read` is needed, and with `seek` also `length`. No more
 *  is read than is used, up to the end of the sound. `stream` is copied. Since 0.1. */
CORVIN_API int corvin_file_open_stream(const corvin_stream* stream, corvin_file** file);

/** Closes a file. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_file_close(corvin_file* file);

/** Tells what the file holds.
 *  @param info  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT. Since 0.1. */
CORVIN_API int corvin_file_get_info(const corvin_file* file, corvin_file_info* info);

/** Returns a sentence without subject on something odd in the file that does not keep it from being
 *  read, "is cut short: ..."; NULL from the number of warnings on. Lives as long as the handle.
 *  Since 0.1. */
CORVIN_API const char* corvin_file_warning(const corvin_file* file, uint32_t index);

/** Returns a sentence without subject on why no sound can be read, "has sound in DST compression,
 *  ..."; NULL when it can. Lives as long as the handle. Since 0.1. */
CORVIN_API const char* corvin_file_problem(const corvin_file* file);

/** Tells of a part of the file, in the order in which they were found. Of a file that is damaged there
 *  are those up to the damage, of one that cannot seek those up to the sound. Chunks within PROP and
 *  DIIN of a DSDIFF file are told of; what is within others is not looked into.
 *  @param index  0..`chunks` of the info - 1
 *  @param chunk  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT. Since 0.1. */
CORVIN_API int corvin_file_get_chunk(const corvin_file* file, uint32_t index,
                                     corvin_file_chunk* chunk);

/** Reads the tags: of DSDIFF files names, comments and ID3v2 blocks within and behind the
 *  properties, of which the blocks win; of DSF files the ID3v2 block. Versions 2.3 and 2.4,
 *  comments in any language.
 *  @param tag  emptied first; zero it before its first use. DSDTagClear() releases what it holds
 *  @return  CORVIN_OK (also without tags), CORVIN_E_ARGUMENT, CORVIN_E_MEMORY; CORVIN_E_UNSUPPORTED
 *           for a file that cannot seek
 *  Since 0.1. */
CORVIN_API int corvin_file_get_tags(corvin_file* file, DSD_TAG* tag);

/** Reads all tags, of any version of ID3v2; of DSDIFF files also names and general comments that no
 *  block has. What is odd about them corvin_tags_warning() tells.
 *  @param tags  its content is replaced
 *  @return  CORVIN_OK (also without tags), CORVIN_E_ARGUMENT; CORVIN_E_MEMORY, CORVIN_E_READ and,
 *           for a file that cannot seek, CORVIN_E_UNSUPPORTED: without content
 *  Since 0.1. */
CORVIN_API int corvin_file_get_all_tags(corvin_file* file, corvin_tags* tags);

/** Reads sound, one byte of each channel in turn.
 *  @param to         room for bytes x channels bytes
 *  @param bytes      of each channel
 *  @param bit_order  corvin_bit_order wanted
 *  @param done       receives the bytes of each channel that were read; 0 at the end. Bits behind
 *                    the last sample are silence
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_READ (what came before the failure counts), or
 *           the `readable` of the file's info
 *  Since 0.1. */
CORVIN_API int corvin_file_read(corvin_file* file, void* to, size_t bytes, uint32_t bit_order,
                                size_t* done);

/** The same, each channel to a place of its own: channels[channels]. Since 0.1. */
CORVIN_API int corvin_file_read_planar(corvin_file* file, uint8_t* const* channels, size_t bytes,
                                       uint32_t bit_order, size_t* done);

/** Moves to a sample: to the byte that holds it, so multiples of eight are reached exactly.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT when it is beyond the end, CORVIN_E_UNSUPPORTED for a file
 *           that cannot seek. Since 0.1. */
CORVIN_API int corvin_file_seek(corvin_file* file, uint64_t sample);

/** Returns the sample that the next byte read begins with; 0 for NULL. Since 0.1. */
CORVIN_API uint64_t corvin_file_tell(const corvin_file* file);

/** Goes on at a sample with a file and its decoder: moves the decoder there as
 *  corvin_decoder_seek() does, feeds it all that it is to hear before the byte that holds the
 *  sample, and moves the file to that byte. Pushing what is read from then on, in the decoder's bit
 *  order, gives the frames from corvin_decoder_frames(sample) on, bit for bit those of decoding from
 *  the start. The file's sound is the decoder's stretch: it begins with `first_sample`.
 *
 *  What is fed belongs to no block of the decoder's layout: the next byte pushed begins one. So
 *  corvin_file_read() goes with corvin_decoder_push() for a `block_bytes` of 1, and
 *  corvin_file_read_planar() with corvin_decoder_push_planar() for any.
 *  @param sample    of the whole, from the decoder's `first_sample` to the file's end
 *  @param previous  previous[previous_count]: for a decoder with CORVIN_CONTEXT_BEFORE the files
 *                   before this one, the nearest one first, as for corvin_convert_to_pcm(); they
 *                   are left at unspecified positions. What they lack is silence. NULL and 0: none
 *  @return  CORVIN_OK; CORVIN_E_ARGUMENT, also when rate or channels of a file differ from the
 *           decoder's, and for `previous` without that context or with more samples than
 *           `first_sample`; the `readable` of a file's info; CORVIN_E_UNSUPPORTED when one cannot
 *           seek: then nothing has moved.
 *           CORVIN_E_READ, CORVIN_E_MEMORY: then both stand anywhere until they are moved again
 *  Reads and pushes up to corvin_decoder_preroll() bytes of each channel, which is more than an
 *  audio callback has time for. Since 0.1. */
CORVIN_API int corvin_file_seek_decoder(corvin_file* file, corvin_decoder* decoder, uint64_t sample,
                                        corvin_file* const* previous, size_t previous_count);

/* ---- Writing --------------------------------------------------------------------------------- */

/** What a file is to be. */
typedef struct corvin_writer_settings {
  size_t size;        /**< sizeof(corvin_writer_settings), set by ..._defaults() */
  uint32_t container; /**< corvin_container. Default CORVIN_DSF */
  uint32_t dsd_rate;  /**< Hz, not 0. Default 2822400 */
  uint32_t channels;  /**< 1..6 for DSF, 1..64 for DSDIFF and "1bit". Default 2 */
  uint32_t bit_order; /**< corvin_bit_order of what is handed in. Default CORVIN_MSB_FIRST */
  uint32_t speakers;  /**< mask of as many bits as channels; 0: the usual ones, up to six channels.
                           corvin_container_names_speakers() tells which a file can name. DSDIFF
                           leaves those open that it cannot, "1bit" of more than two channels all;
                           else what would read as another mask is refused. Default 0 */
  uint32_t reserved0; /**< 0 */
  uint64_t samples;   /**< per channel, that will come; 0: not known. With a number all is written
                           once and in order, the header with the first sound. Default 0 */
  uint64_t reserved[7]; /**< 0 */
} corvin_writer_settings;

/** A DSD file being written. */
typedef struct corvin_writer corvin_writer;

/** Fills `settings` with the defaults. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_writer_settings_defaults(corvin_writer_settings* settings);

/** Tells whether a file of that container can say that its channels are those of a mask, so that it is
 *  read with the same one. DSF can for its seven types: 0x4, 0x3, 0x7, 0x33, 0xf, 0x37 and 0x3f.
 *  DSDIFF can for the 18 speakers of extensible WAV in any number but one, which is front centre;
 *  those beyond the first six have names there that other programs may not know. "1bit" says nothing:
 *  one channel counts as front centre, two as front left and right.
 *  @return  1 or 0; 0 also for no container, and a mask without a bit
 *  Since 0.1. */
CORVIN_API int corvin_container_names_speakers(uint32_t container, uint32_t speakers);

/** Begins a file. It is written beside its name under another one and takes the name at
 *  corvin_writer_finish(), in place of an older file; until then that one stays.
 *  @param writer  receives the handle, NULL on failure
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY, CORVIN_E_WRITE; CORVIN_E_UNSUPPORTED for
 *           `speakers` that would be read as others
 *  A process that does not want to be ended by a file size limit ignores SIGXFSZ. Since 0.1. */
CORVIN_API int corvin_writer_create(const char* path, const corvin_writer_settings* settings,
                                    corvin_writer** writer);

/** The same on a host's callbacks, of which `write` is needed, and `seek` unless the settings have
 *  `samples`. Without such a number the header is written first and once more at the end, and a `seek`
 *  of NULL is CORVIN_E_ARGUMENT. Since 0.1. */
CORVIN_API int corvin_writer_create_stream(const corvin_stream* stream,
                                           const corvin_writer_settings* settings,
                                           corvin_writer** writer);

/** Appends sound, one byte of each channel in turn.
 *  @param data   bytes x channels bytes
 *  @param bytes  of each channel
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT; CORVIN_E_STATE after finish, and for more than the `samples`
 *           of the settings take; CORVIN_E_WRITE, also in every call after one that failed
 *  Since 0.1. */
CORVIN_API int corvin_writer_write(corvin_writer* writer, const void* data, size_t bytes);

/** The same, each channel from a place of its own: channels[channels]. Since 0.1. */
CORVIN_API int corvin_writer_write_planar(corvin_writer* writer, const uint8_t* const* channels,
                                          size_t bytes);

/** Sets the tags that finish will write, as an ID3v2.3 block; "1bit" files have none.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY; CORVIN_E_STATE after finish, and after the
 *           first sound when the settings have `samples`
 *  Since 0.1. */
CORVIN_API int corvin_writer_set_tags(corvin_writer* writer, const DSD_TAG* tag);

/** Sets the tags that finish will write: an ID3v2 block, and in DSDIFF files title and artist as
 *  edited master information too. `tags` are not needed any more afterwards.
 *  @param form  corvin_id3_form
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY; CORVIN_E_STATE as there;
 *           CORVIN_E_UNSUPPORTED, and there will be no tags, for "1bit" files unless the tags are
 *           without content, and for more than the 256 MiB that a block can state
 *  Since 0.1. */
CORVIN_API int corvin_writer_set_all_tags(corvin_writer* writer, const corvin_tags* tags,
                                          uint32_t form);

/** Completes the file.
 *  @param samples  per channel: above 8 x (bytes - 1) and up to 8 x bytes of the bytes written of
 *                  each channel. DSF states the number; DSDIFF and "1bit" know bytes only, the last
 *                  of which is filled up with silence
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_WRITE; CORVIN_E_STATE after finish, and when the
 *           settings have another number: what is written cannot be completed then
 *  Since 0.1. */
CORVIN_API int corvin_writer_finish(corvin_writer* writer, uint64_t samples);

/** Ends a writer. Without a finish before, a file that was given by its path is gone. NULL is
 *  ignored. Since 0.1. */
CORVIN_API void corvin_writer_close(corvin_writer* writer);

/* ---- Tags of a file that is there ------------------------------------------------------------ */

/** Gives a DSF or DSDIFF file other tags. The file is written anew beside the old one, everything
 *  but its tags as it stands, and takes its name when it is complete on the disk: any failure
 *  leaves the old file as it was.
 *  @param tags  without content: the file is to have no tags
 *  @param path  not read-only. Through symbolic links; the mode stays, owner and further names not
 *  @param form  corvin_id3_form
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY; CORVIN_E_READ as corvin_file_open();
 *           CORVIN_E_FORMAT for no DSD file, and one whose chunks do not add up (copying its sound
 *           to a new file mends that); CORVIN_E_UNSUPPORTED for "1bit" files, and for more than the
 *           256 MiB that a block can state; CORVIN_E_WRITE
 *  Since 0.1. */
CORVIN_API int corvin_tags_save(const corvin_tags* tags, const char* path, uint32_t form);

/* ---- Whole conversions ----------------------------------------------------------------------- */

/** What a conversion is asked for. Fields mean what those of the decoder's and the encoder's
 *  settings do; each conversion looks at those that concern it. Neighbours and a place in a whole
 *  are for corvin_convert_to_pcm(): the others, which begin a modulator's or a container's bits
 *  anew, refuse them. A stretch and a map of channels are for the conversions from a file; those from
 *  PCM refuse them. */
typedef struct corvin_convert_settings {
  size_t size;          /**< sizeof(corvin_convert_settings), set by ..._defaults() */
  uint32_t pcm_rate;    /**< of PCM to come, Hz. Default 44100 */
  uint32_t format;      /**< of PCM to come, corvin_sample_format. Default CORVIN_S24 */
  uint32_t dither;      /**< corvin_dither. Default CORVIN_DITHER_TPDF */
  uint32_t phase;       /**< corvin_phase. Default CORVIN_LINEAR_PHASE */
  uint32_t modulator;   /**< corvin_modulator. Default CORVIN_MODULATOR_HIGH */
  uint32_t threads;     /**< worker threads, 0..64, and one more that reads ahead; 0: all on the
                             caller's. Default 0 */
  uint32_t kernel_mask; /**< Default all bits */
  uint64_t seed;        /**< Default 0 */
  double pass_hz;       /**< Default 0 */
  double stop_hz;       /**< Default 0 */
  double gain_db;       /**< Default 0 */
  /** Is told, on the caller's thread after each piece of the source, how many of its samples or
   *  frames are read; returns 0 to go on, another value to cancel. NULL: nobody. Default NULL */
  int (*progress)(void* user, uint64_t done, uint64_t total);
  void* progress_user; /**< Default NULL */
  /** previous[previous_count], next[next_count]: files whose sound comes before and behind the
   *  source's, the nearest one first. Default NULL and 0 */
  corvin_file* const* previous;
  corvin_file* const* next;
  size_t previous_count;
  size_t next_count;
  uint64_t first_sample; /**< where in the whole the source's first sample stands; up to 2^60.
                              Default 0 */
  uint64_t
      begin_sample; /**< of the source, with which the stretch to convert begins, be it within a
                         byte. Default 0 */
  uint64_t sample_count; /**< of the stretch, which ends at the source's end or before; 0: all from
                              begin_sample on. Default 0 */
  /** channel_map[channel_map_count]: channel k of the output is the source's channel
   *  channel_map[k]. Up to 64, the same one several times too; what comes out is what a file of
   *  these channels makes. NULL and 0: all as they stand. Default NULL and 0 */
  const uint32_t* channel_map;
  size_t channel_map_count;
  uint32_t keep_damaged; /**< not 0: when a file cannot be read on, what came before it is converted
                              to its end, the writer finished, and CORVIN_E_READ returned all the
                              same. Conversions from PCM have no use for it: a source that returns 0
                              ends. Default 0 */
  uint32_t reserved0;    /**< 0 */
  uint64_t reserved[6];  /**< 0 */
} corvin_convert_settings;

/** What is to come, for a sink. */
typedef struct corvin_pcm_format {
  size_t size;       /**< sizeof(corvin_pcm_format) of the library */
  uint32_t pcm_rate; /**< Hz */
  uint32_t channels;
  uint32_t speakers; /**< mask; with a map of channels as corvin_speakers_mapped() */
  uint32_t format;   /**< corvin_sample_format */
  uint64_t frames;   /**< that will come; fewer do when a file ends early that cannot seek */
} corvin_pcm_format;

/** Where PCM goes. The calls come on the caller's thread. */
typedef struct corvin_pcm_sink {
  size_t size; /**< sizeof(corvin_pcm_sink) */
  void* user;  /**< passed to each call */
  /** Comes first, once; returns 0 to go on. NULL: not needed. */
  int (*begin)(void* user, const corvin_pcm_format* format);
  /** Takes interleaved frames; returns 0 to go on. */
  int (*write)(void* user, const void* frames, size_t count);
} corvin_pcm_sink;

/** Where PCM comes from. The calls come on the caller's thread. */
typedef struct corvin_pcm_source {
  size_t size;        /**< sizeof(corvin_pcm_source) */
  uint32_t pcm_rate;  /**< Hz: 44100 or 48000 x 1, 2, 4, 8 or 16 */
  uint32_t channels;  /**< as many as the writer's */
  uint32_t format;    /**< corvin_sample_format */
  uint32_t reserved0; /**< 0 */
  uint64_t frames;    /**< that will come, for the progress; 0: not known */
  void* user;         /**< passed to each call */
  /** Reads up to `count` interleaved frames and returns their number, 0 at the end, a negative
   *  number on failure. */
  int64_t (*read)(void* user, void* frames, size_t count);
} corvin_pcm_source;

/** How a conversion went. */
typedef struct corvin_convert_report {
  size_t size;        /**< sizeof(corvin_convert_report), set by the caller */
  uint64_t frames;    /**< of PCM: handed to the sink, or taken from the source */
  uint64_t samples;   /**< one-bit samples per channel handed to the writer; of
                           corvin_convert_to_pcm(), read from the stretch */
  uint64_t clips;     /**< PCM samples that met a limit of their integer format */
  uint64_t limited;   /**< as in corvin_encoder_report */
  uint64_t overloads; /**< as in corvin_encoder_report */
  double peak;        /**< largest absolute sample after the gain, before limiting; 1.0 = full
                           scale */
  double gain_db;     /**< that was applied */
  uint64_t finished;  /**< writers that became files */
  uint64_t missing; /**< samples per channel of the stretch that were not read and, when it goes to
                         the file's end, those that the file states and does not have */
  uint64_t reserved[6];
} corvin_convert_report;

/** Fills `settings` with the defaults. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_convert_settings_defaults(corvin_convert_settings* settings);

/** Returns the mask of channels that a map makes of those of a file, bit by bit: 0 when they do not
 *  stand in the order of the bits, when one has no bit in `speakers` and when one comes twice.
 *  @param speakers       of the file
 *  @param channel_map    channel_map[count], as in corvin_convert_settings. NULL: 0 comes back
 *  Since 0.1. */
CORVIN_API uint32_t corvin_speakers_mapped(uint32_t speakers, const uint32_t* channel_map,
                                           size_t count);

/** Converts a file's sound, from its first to its last sample, to PCM.
 *
 *  Of a stretch from sample `a` to sample `b` of the file the frames come that converting all of it
 *  makes from corvin_decoder_frames(a) to corvin_decoder_frames(b), bit for bit: the filters hear
 *  what is around. With a place in a whole, `a` and `b` count in that.
 *
 *  The file may be a part of a whole, such as a track of an album. With the files around it, which
 *  the filters then hear in place of silence, and its place, what comes out is bit for bit what
 *  converting the whole makes of the part, so the outputs of an album's tracks, joined, are the
 *  conversion of their joined sound: wherever it is cut, be it within a byte, and whatever the
 *  containers. Frames are counted in the whole: from its sample `a` to its sample `b` they are
 *  those from corvin_decoder_frames(a) to corvin_decoder_frames(b), so a part that is shorter than
 *  a frame may make none.
 *  Of track k, `previous` are the tracks k - 1, k - 2 and so on, `first_sample` is the sum of the
 *  samples of all tracks before it, and `next` are k + 1, k + 2 and so on. Only what is nearer than
 *  corvin_decoder_preroll() bytes is heard: files that lie farther away may be left out. Where the
 *  neighbours have less than that there is silence.
 *  @param source    left at an unspecified position, as are its neighbours; none is to be used
 *                   meanwhile. The same file may come in several places. One that cannot seek has
 *                   one conversion in it, and before that no reading: CORVIN_E_STATE, here and in
 *                   the other conversions from a file
 *  @param settings  NULL: the defaults
 *  @param report    its `size` set; filled whenever the arguments are valid, for what came so far.
 *                   May be NULL
 *  @return  CORVIN_OK; CORVIN_E_ARGUMENT, also when a neighbour has another rate or other channels,
 *           `previous` hold more than `first_sample` samples, the stretch goes beyond the file or
 *           a mapped channel is not there; CORVIN_E_MEMORY, CORVIN_E_THREAD;
 *           CORVIN_E_UNSUPPORTED when there is no plan for the rates; the `readable` of the file's
 *           info or a neighbour's; CORVIN_E_READ, of a neighbour too: of the sound before the
 *           source's it comes before the sink has begun; CORVIN_E_WRITE when the sink did not go
 *           on; CORVIN_E_CANCELLED
 *  Memory does not depend on the length. Since 0.1. */
CORVIN_API int corvin_convert_to_pcm(corvin_file* source, const corvin_convert_settings* settings,
                                     const corvin_pcm_sink* sink, corvin_convert_report* report);

/** Converts PCM to DSD of the writer's rate and finishes the writer. The number of samples is that
 *  of corvin_encoder_samples().
 *  @param target    without sound so far
 *  @param settings  NULL: the defaults
 *  @param report    as for corvin_convert_to_pcm()
 *  @return  CORVIN_OK; CORVIN_E_ARGUMENT (also when the channels differ, or the settings tell of
 *           neighbours, a place in a whole, a stretch or a map), CORVIN_E_MEMORY, CORVIN_E_THREAD;
 *           CORVIN_E_UNSUPPORTED when there is no plan for the rates;
 *           CORVIN_E_STATE when the writer has sound already, and at the end when it was to have
 *           more samples, CORVIN_E_WRITE when it was to have fewer; CORVIN_E_READ when the source
 *           failed; CORVIN_E_WRITE, CORVIN_E_CANCELLED. After a failure the writer is not finished
 *  Memory does not depend on the length. Since 0.1. */
CORVIN_API int corvin_convert_to_dsd(const corvin_pcm_source* source, corvin_writer* target,
                                     const corvin_convert_settings* settings,
                                     corvin_convert_report* report);

/** Converts PCM that goes on from source to source, as an album's tracks do, to DSD that goes on
 *  from writer to writer: one conversion of the joined PCM, cut into files, whose sound joined
 *  again is that conversion bit for bit.
 *  Track k begins with the sample corvin_encoder_samples(frames of the sources before it). DSF
 *  states that exactly; the rest of a track's last byte and of its last block are the bits that
 *  come next, with which the following tracks begin. DSDIFF and "1bit" know whole bytes: when one
 *  of the writers is such, every cut lies at the next whole byte of the conversion, up to seven
 *  samples later. The last track ends as that of corvin_convert_to_dsd() does.
 *  @param sources   sources[count], of the same rate, channels and format, read one after the
 *                   other; such without frames are files without sound
 *  @param targets   targets[count], all different, without sound so far, of the same rate and
 *                   channels; containers may differ
 *  @param count     at least 1
 *  @param settings  NULL: the defaults. The progress counts the frames of all sources; its total
 *                   is 0 when one of them says 0
 *  @param report    as for corvin_convert_to_pcm(), for all tracks together; `finished` of the
 *                   writers, from the first on, are files
 *  @return  as corvin_convert_to_dsd(). Writers are finished in order, each as soon as its last
 *           block is full, be it with the beginnings of several tracks. After a failure those
 *           that are finished stay files, and no other one is finished; after CORVIN_E_WRITE the
 *           others that have sound already cannot be finished any more
 *  Memory depends neither on the lengths nor, but for some bytes each, on the count. Since 0.1. */
CORVIN_API int corvin_convert_to_dsd_tracks(const corvin_pcm_source* const* sources,
                                            corvin_writer* const* targets, size_t count,
                                            const corvin_convert_settings* settings,
                                            corvin_convert_report* report);

/** Converts a file's sound to DSD of the writer's rate, another one as a rule, and finishes the
 *  writer. On the way it is PCM of a 32nd of the lower one of both rates. Unless pass_hz or stop_hz
 *  ask for edges up to half of that, what is kept ends below the noise of the source's modulator
 *  and where the PCM ends: flat up to, and closed from, in kHz at the rates of the 44.1 kHz family:
 *
 *      from      to DSD64       to DSD128      to DSD256       to DSD512
 *      DSD64     20, 32         20, 32         20, 32          20, 32
 *      DSD128    41.9, 44.1     40, 60         40, 60          40, 60
 *      DSD256    41.9, 44.1     83.8, 88.2     80, 120         80, 120
 *      DSD512    41.9, 44.1     83.8, 88.2     167.6, 176.4    160, 240
 *
 *  `phase` holds for both filters on the way. The number of samples is the target's rate x samples
 *  / the source's rate, rounded up. Of a stretch the source's filter hears what is around; the
 *  encoder begins with it, its first sample at that of the target.
 *  @return  as corvin_convert_to_dsd(), but for a stretch and a map, which are to fit as in
 *           corvin_convert_to_pcm(); and the `readable` of the file's info. Tags are not copied
 *  Since 0.1. */
CORVIN_API int corvin_convert_dsd_rate(corvin_file* source, corvin_writer* target,
                                       const corvin_convert_settings* settings,
                                       corvin_convert_report* report);

/** Copies a file's sound, or a stretch of it, to a writer of the same rate, bit for bit, and finishes
 *  that. A stretch begins and ends anywhere, its bits moved up; DSDIFF and "1bit" know whole bytes,
 *  the last of which is filled up with silence. Tags are not copied: corvin_file_get_tags() and
 *  corvin_writer_set_tags() do that before.
 *  @param target    of as many channels as the source, or the map of channels, has
 *  @param settings  progress, stretch, map and `keep_damaged` count; NULL: none
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT (also when rate or channels differ, stretch or map do not
 *           fit, or the settings tell of neighbours or a place in a whole), CORVIN_E_MEMORY,
 *           CORVIN_E_STATE when the writer has sound already or is to have another number of
 *           samples; the `readable` of the file's info; CORVIN_E_READ, CORVIN_E_WRITE,
 *           CORVIN_E_CANCELLED: the writer is not finished, but
 *           after CORVIN_E_READ with `keep_damaged`
 *  Since 0.1. */
CORVIN_API int corvin_convert_copy(corvin_file* source, corvin_writer* target,
                                   const corvin_convert_settings* settings);

#ifdef __cplusplus
}
#endif

#endif /* CORVIN_STUDIO_FILES_H_ */
