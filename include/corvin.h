/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin.h
 *  The one header of the Corvin library, for C99 and C++. It includes the studio engine's part,
 *  corvin_studio.h.
 *
 *  Conventions
 *  - A DSD *sample* is one bit of one channel; lengths count samples per channel. A DSD byte holds
 *    eight samples, the earliest in the most significant bit in DSDIFF and "1bit" files and in the
 *    least significant bit in DSF files.
 *  - PCM is bare: signed integers, interleaved, without a header. A *frame* is one sample of every
 *    channel.
 *  - Rates are in Hz. 0 dBFS is the largest PCM value; 50 % modulation of the DSD stream is meant
 *    to reach it.
 *  - Container kinds: 1 = DSDIFF, 2 = DSF, 3 = "1bit".
 *  - Buffers, streams and records belong to the caller unless a function says otherwise.
 *  - Any number of calls may run at once from different threads, on different files, buffers, records
 *    and objects; one of these takes one call at a time.
 *  - Functions allocate and may block, unless they say otherwise: they are not for real-time threads.
 *  - No function throws; none but the header writer of the PCM to DSD direction prints. */

#ifndef CORVIN_H_
#define CORVIN_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __APPLE__
#include <CoreAudio/CoreAudioTypes.h>
#endif

#define CORVIN_VERSION_MAJOR 0
#define CORVIN_VERSION_MINOR 1
#define CORVIN_VERSION_PATCH 0

#ifndef CORVIN_API
#define CORVIN_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Callbacks ---------------------------------------------------------------------------- */

/** Fills at most `size` bytes of `buffer` and returns the count; 0 or less means end of data. */
typedef int (*CorvinReadCallback)(void* buffer, int size, void* data);

/** Is told each new whole percentage, 0..100, on the thread that called the conversion; returning
 *  false cancels it. */
typedef bool (*CorvinProgressCallback)(int percent, void* data);

/* ---- Records ------------------------------------------------------------------------------ */

/** What a DSD file holds, as DSDInfo() finds it. */
typedef struct DSD_INFO {
  uint32_t format;              /**< container kind 1..3; left as it was for any other file */
  uint32_t channels;            /**< channel count */
  uint32_t samplingFrequency;   /**< DSD rate in Hz */
  uint32_t bitsPerSample;       /**< 1; for DSF the file's own value */
  uint64_t sampleCount;         /**< samples per channel */
  char compressionName[256];    /**< DSDIFF compression name, not terminated by the query */
  uint32_t blockSizePerChannel; /**< DSF block size in bytes; 4096 for the other kinds */
} DSD_INFO;

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
 *  A text is a byte string that ends at the first zero byte or with its field. ID3v2 texts are UTF-8,
 *  unless the tag states ISO 8859-1: those bytes, like all texts from DSDIFF files, are kept as they
 *  stand in the file. */
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

#ifndef __APPLE__
/** A PCM stream's format: the record of the platform that has one, here with the same field order and
 *  widths. PCMtoDSD() reads the three fields named below; the PCM is always signed big-endian
 *  integers. */
typedef struct AudioStreamBasicDescription {
  double mSampleRate;         /**< Hz; the fraction is dropped */
  uint32_t mFormatID;         /**< ignored */
  uint32_t mFormatFlags;      /**< ignored */
  uint32_t mBytesPerPacket;   /**< ignored */
  uint32_t mFramesPerPacket;  /**< ignored */
  uint32_t mBytesPerFrame;    /**< ignored */
  uint32_t mChannelsPerFrame; /**< 1..8 */
  uint32_t mBitsPerChannel;   /**< 8, 16, 24 or 32 */
  uint32_t mReserved;         /**< ignored */
} AudioStreamBasicDescription;
#endif

/* ---- DSD files ---------------------------------------------------------------------------- */

/** Reads the format of a DSD file from its headers.
 *  @param path  the file
 *  @param info  the record to fill. All fields but `format` and the tail of `compressionName` are
 *               reset first; `format` keeps the caller's value when the file is of no known kind,
 *               so set it to 0 before the call to tell "unknown" from a kind
 *  @return      -1 when the file cannot be opened, 0 in every other case; what a malformed file
 *               does not tell stays 0
 *  Threads: reentrant. Since 0.1. */
CORVIN_API int DSDInfo(const char* path, DSD_INFO* info);

/* ---- Tags --------------------------------------------------------------------------------- */

/** Reads the tags of a DSD file: of a DSF file its ID3v2.3 block, of a DSDIFF file the comments and
 *  the edited master information.
 *  @param path  the file
 *  @param tag   emptied first, also when the file cannot be opened
 *  @return      -1 when the file cannot be opened, when it is a "1bit" file or a DSF file without a
 *               tag; 0 in every other case, including a file of no known kind (`format` is then 0)
 *               and a tag that cannot be read
 *  Threads: reentrant for different records. Since 0.1. */
CORVIN_API int DSDTag(const char* path, DSD_TAG* tag);

/** Empties a record: releases its pictures and zeroes every field.
 *  @param tag  not null. Its pictures are those that the library allocated: a host that has put in
 *              memory of its own takes it out before
 *  Threads: reentrant for different records. Since 0.1. */
CORVIN_API void DSDTagClear(DSD_TAG* tag);

/** Reads an ID3v2.3 block from a stream's current position into a record.
 *  @param stream  left behind the block, when that could be read whole; need not be seekable
 *  @param tag     the fields that the block has are replaced, others are left. Of equal text frames
 *                 the last wins, of comments the first in #CommentLanguage; other comments are
 *                 skipped. Pictures replace those held before the call
 *  @return        0 when the block holds at least one frame, known or not; 1 when there is no
 *                 ID3v2.3 header (2.2 and 2.4 are not read), or no frame; -1 when header or block
 *                 end early or memory runs out. Except when memory runs out, the record is
 *                 untouched unless 0 is returned
 *  Memory: at most a few times what the stream really holds. Threads: reentrant for different
 *  streams and records. Since 0.1. */
CORVIN_API int Read_id3tag_v2(FILE* stream, DSD_TAG* tag);

/** Writes a record as one ID3v2.3 block at a stream's current position. Texts are announced as UTF-8
 *  and written as they stand; empty fields, a year of 0 and pictures without data are left out.
 *  @param stream  left behind the block; need not be seekable
 *  @param tag     is not changed
 *  @return  bytes written: the size of the block, 10 for an empty record, unless the stream's error
 *           flag is set; -1 without writing when memory runs out or the block would exceed the 256
 *           MiB that an ID3v2 header can state
 *  Threads: reentrant for different streams. Since 0.1. */
CORVIN_API int Write_id3tag_v2(FILE* stream, const DSD_TAG* tag);

/** Does the same as Write_id3tag_v2(), under its older name. Since 0.1. */
CORVIN_API int id3tag_write_v2(FILE* stream, const DSD_TAG* tag);

/** Copies a text without its byte-order mark: FF FE, FE FF or EF BB BF.
 *  @param src  src[len]
 *  @param dst  receives what follows the mark; may be `src`
 *  @return     bytes copied; 0, and nothing is copied, when there is no mark or `len` is below 4
 *  Threads: reentrant. Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API int CutUnicodeBOM(const unsigned char* src, int len, unsigned char* dst);

/** Whether the latest Read_id3tag_v2() to make progress has taken a comment. Reads in several threads
 *  share it, so it says something only when one is running at a time; no read depends on it. */
extern CORVIN_API bool bFindCommentTag;

/** ISO 639-2 code of the comments that are read and written: "jpn". */
extern CORVIN_API const char CommentLanguage[4];

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
 *  @param callback  called #CORVIN_GENRE_COUNT times on this thread; nothing happens when it is null
 *  @param user      passed to `callback`
 *  Threads: reentrant. Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API void id3tag_genre_list(CorvinGenreCallback callback, void* user);

/* ---- DSD to PCM --------------------------------------------------------------------------- */

/** Converts a DSD file to PCM. Blocks until the end.
 *  @param path          DSF, DSDIFF (uncompressed) or "1bit" file of 1..8 channels
 *  @param output        FILE* that receives the PCM, left open. One channel for a mono file,
 *                       else two: channels beyond the second are dropped. Write errors are left to
 *                       the stream's own error flag: check ferror(output) after the call
 *  @param progress      told each new whole percentage from this thread, about every half second;
 *                       may be NULL
 *  @param progressData  passed to `progress`
 *  @param reserved1     ignored
 *  @param reserved2     ignored
 *  @param pcmRate       output rate in Hz, 1..DSD rate. Any rate that is 2^-k of the DSD rate,
 *                       k = 0..8, and every pair of a 44100 x 2^n and a 48000 x 2^n rate from
 *                       44100 to 768000 (DSD64 to DSD256) has its own filter plan. Any other
 *                       pair is converted by a fallback without level correction
 *  @param bits          8, 16, 24 or 32 bits per PCM sample, signed
 *  @param bigEndian     most significant byte of each sample first
 *  @return              0 after a conversion or when the file holds no sound that can be converted;
 *                       -1 when the file cannot be opened, its header or an argument is out of
 *                       range (nothing is written), resources run out, or `progress` cancelled
 *                       (`output` then holds the PCM up to there)
 *  The length is pcmRate x samples / DSD rate frames, rounded down. The filter's delay is taken out:
 *  the first frame belongs to the first sample.
 *  Threads: reentrant; starts its own threads and ends them before it returns. Since 0.1. */
CORVIN_API int DSDtoPCM(const char* path, void* output, CorvinProgressCallback progress,
                        void* progressData, int reserved1, int reserved2, int pcmRate, int bits,
                        bool bigEndian);

/** Converts stereo DSD in memory to big-endian PCM in memory. Blocks until the end.
 *  @param dsd      2 x `bytes` bytes: the left channel, then the right, earliest sample in the most
 *                  significant bit
 *  @param bytes    DSD bytes per channel
 *  @param dsdRate  DSD rate in Hz
 *  @param pcm      receives (bits / 8) x 2 x (pcmRate x bytes x 8 / dsdRate) bytes, interleaved
 *  @param pcmRate  as for DSDtoPCM()
 *  @param bits     8, 16, 24 or 32
 *  On an argument out of range `pcm` is left untouched. Delay: none, as DSDtoPCM().
 *  Threads: reentrant; starts its own threads and ends them before it returns. Since 0.1. */
CORVIN_API void RTBufDSDtoPCM(char* dsd, int bytes, int dsdRate, char* pcm, int pcmRate, int bits);

/* ---- DSD to PCM, buffer by buffer ---------------------------------------------------------- */

/** Converts one stereo DSD stream to PCM in pieces: the filters of DSDtoPCM(), with memory from piece
 *  to piece and threads that sleep in between. */
#ifdef __cplusplus
class CDSDtoPCMBuf;
#else
typedef struct CDSDtoPCMBuf CDSDtoPCMBuf;
#endif

/** Creates a converter at the beginning of a stream.
 *  @param dsdRate    DSD rate in Hz, up to 98304000
 *  @param pcmRate    as for DSDtoPCM(); at least dsdRate / 16384
 *  @param lsbFirst   earliest sample of a byte in its least significant bit, as in DSF
 *  @param bits       8, 16, 24 or 32 bits per PCM sample, signed
 *  @param bigEndian  most significant byte of each sample first
 *  @return           to be released by CloseDSDtoPCMBuf(); null when an argument is out of range or
 *                    resources run out
 *  Threads: reentrant. Starts two threads, one per channel. Since 0.1. */
CORVIN_API CDSDtoPCMBuf* GetCDSDtoPCMBufClass(int dsdRate, int pcmRate, bool lsbFirst, int bits,
                                              bool bigEndian);

/** Converts the next piece of the stream. The frames are those that RTBufDSDtoPCM() makes of the whole
 *  stream, whatever the pieces; those of the last DSDtoPCMBuf_Delay() frames of the stream come only
 *  when that much silence, bytes of 0x69, is sent behind it.
 *  @param dsd      2 x `bytes` bytes: the left channel, then the right; may be null for 0 bytes
 *  @param bytes    DSD bytes per channel, 0 or more
 *  @param pcm      receives the frames, interleaved; room for (8 x bytes x pcmRate / dsdRate, rounded
 *                  up) frames is always enough. Must not overlap `dsd`
 *  @param pcmSize  bytes of room in `pcm`; what does not get PCM is left untouched
 *  @return         bytes written to `pcm`. After a stream of N samples per channel so far, N x pcmRate
 *                  / dsdRate, rounded up, less the delay, frames have come out in all. -1, and the
 *                  piece is not taken, for a null pointer, a negative count or too little room: the
 *                  same piece may be sent again
 *  Threads: one call per converter at a time; converters are independent. Real time: never allocates;
 *  waits for its two threads. Since 0.1. */
CORVIN_API int DSDtoPCMBuf_ToPCM(CDSDtoPCMBuf* engine, const unsigned char* dsd, int bytes,
                                 unsigned char* pcm, int pcmSize);

/** Returns by how many frames the output lags behind the input: half the filter's length, or the
 *  longer lead that pairs of rates without a plan have. They are held back, not replaced: the first
 *  frame that comes out is the first of DSDtoPCM(). -1 for null. Since 0.1. */
CORVIN_API int DSDtoPCMBuf_Delay(const CDSDtoPCMBuf* engine);

/** Ends a converter and its threads; null is allowed. No call on it may be running. Since 0.1. */
CORVIN_API void CloseDSDtoPCMBuf(CDSDtoPCMBuf* engine);

/* ---- PCM to DSD --------------------------------------------------------------------------- */

/** Converts a PCM stream to a DSD file. Blocks until the end.
 *  @param mode          1 writes DSDIFF, 2 DSF, 3 "1bit"; any other value returns 0 and does nothing
 *  @param pcmBytes      bytes of PCM in `pcmSource`, at least 0; a last partial frame is dropped
 *  @param pcmSource     stream at the first PCM byte: signed big-endian integers, interleaved
 *  @param dsdPath       file to create; an existing one is replaced
 *  @param dsdRate       DSD rate in Hz, pcmRate..98304000 and at most 4096 x the PCM rate. DSD64 to
 *                       DSD256 from 44100 to 768000 Hz of both families have plans of their own
 *  @param progress      told each new whole percentage from this thread, about every half second;
 *                       may be NULL
 *  @param pcmFormat     rate, channels and bits of the PCM
 *  @param progressData  passed to `progress`
 *  @param tag           for DSF, written behind the sound; else ignored; may be NULL
 *  @return              0 after a conversion; -1 when an argument is out of range (nothing is
 *                       touched), the file cannot be created, resources run out or writing fails
 *                       (no file is left), or `progress` cancelled (the file is complete but for the
 *                       sound that is missing)
 *  The file holds (frames x dsdRate / PCM rate + 7) / 8 bytes of sound per channel. Headers of other
 *  than two channels carry stereo sizes, as docs/formats.md tells. 0 dBFS is 50 % modulation times
 *  the plan's level; louder sound clips. When a header field cannot be written, "Write error" and a
 *  yen sign with an n go to the standard error stream. The filter's delay is taken out.
 *  Threads: reentrant; starts its own threads and ends them before it returns. Since 0.1. */
CORVIN_API int PCMtoDSD(int mode, long long pcmBytes, FILE* pcmSource, const char* dsdPath,
                        int dsdRate, CorvinProgressCallback progress,
                        AudioStreamBasicDescription pcmFormat, void* progressData, DSD_TAG* tag);

/** Converts stereo PCM in memory to DSD in memory. Blocks until the end.
 *  @param pcm       `pcmBytes` bytes of signed big-endian interleaved stereo
 *  @param pcmRate   Hz
 *  @param bits      8, 16, 24 or 32
 *  @param dsdOut    receives 2 x (frames x dsdRate / pcmRate + 7) / 8 bytes: the left channel, then
 *                   the right, earliest sample in the most significant bit
 *  @param dsdRate   as for PCMtoDSD()
 *  @param frames    PCM frames in `pcm`
 *  On an argument out of range `dsdOut` is left untouched. Delay: none, as PCMtoDSD().
 *  Threads: reentrant; starts its own threads and ends them before it returns. Since 0.1. */
CORVIN_API void RTBufPCMtoDSD(char* pcm, int pcmBytes, int pcmRate, int bits, void* dsdOut,
                              unsigned int dsdRate, int frames);

/* ---- Streams that hold what is pushed ------------------------------------------------------- */

/* These eight functions are kept for hosts that are linked against them. A stream here is a pair of
 * rings of four blocks: it holds what is pushed and converts nothing. A decoding stream therefore
 * never gives PCM, and an encoding one never gives DSD. To convert a stream of DSD, use
 * corvin_decoder_create() and its companions, or GetCDSDtoPCMBufClass().
 *
 * Rates and formats are fixed: two channels, DSD at 2822400 Hz, PCM at 44100 Hz in 24 bits. Threads:
 * one thread per function and stream at a time; pushing and pulling may overlap. Streams are
 * independent. Ending a stream is allowed while other threads wait in it: their calls return what
 * they have moved; no new call may begin then. Nothing allocates between creation and end. */

/** Creates a decoding stream.
 *  @param reserved  ignored
 *  @return          to be released by DSDDecodeExit(); null when memory runs out
 *  Since 0.1. */
CORVIN_API void* DSDDecodeInit(int reserved);

/** Stores DSD bytes. Waits once 4 x 8192 bytes are stored, for nothing takes them: until the stream
 *  ends.
 *  @param data  data[size]
 *  @return      bytes stored: `size`, or less when the stream ended meanwhile; 0 for a null pointer or
 *               a size that is not positive
 *  Since 0.1. */
CORVIN_API int DSDDecodeSetDSDData(void* stream, const unsigned char* data, int size);

/** Waits for PCM, of which there is never any: until the stream ends.
 *  @param buffer  buffer[size]; left untouched
 *  @return        bytes delivered, 0; at once for a null pointer or a size that is not positive
 *  Since 0.1. */
CORVIN_API int DSDDecodeGetPCMData(void* stream, unsigned char* buffer, int size);

/** Ends a decoding stream and drops what it holds; null is allowed. Returns 0. Since 0.1. */
CORVIN_API int DSDDecodeExit(void* stream);

/** Creates an encoding stream.
 *  @return  to be released by DSDEncodeExit(); null when memory runs out
 *  Since 0.1. */
CORVIN_API void* DSDEncode(void);

/** Stores PCM bytes. Waits once 4 x 384 bytes are stored, for nothing takes them: until the stream
 *  ends.
 *  @param data  data[size]
 *  @return      as DSDDecodeSetDSDData()
 *  Since 0.1. */
CORVIN_API int DSDEncodeSetPCMData(void* stream, const unsigned char* data, int size);

/** Takes DSD, of which there is never any; does not wait.
 *  @param buffer  buffer[size]; left untouched
 *  @return        bytes delivered: 0
 *  Since 0.1. */
CORVIN_API int DSDEncodeGetDSDData(void* stream, unsigned char* buffer, int size);

/** Ends an encoding stream and drops what it holds; null is allowed. Returns 0. Since 0.1. */
CORVIN_API int DSDEncodeExit(void* stream);

/* ---- Compact DSD to PCM ------------------------------------------------------------------- */

/** One channel of the compact converter: a filter of 96 taps that makes one float of eight samples,
 *  DSD64 to 352.8 kHz. Full modulation is +-1.0. Delay: 5.5 floats, from the middle of a byte to its
 *  float. */
typedef struct dsd2pcm_state dsd2pcm_state;

/** Creates a converter whose past is idle, the byte 0x69 over and over. The first eleven floats still
 *  show that beginning.
 *  @return  to be released by dsd2pcm_destroy(); null when memory runs out
 *  Threads: any number at once, the first call too. Since 0.1. */
CORVIN_API dsd2pcm_state* dsd2pcm_init(void);

/** Brings a converter back to how dsd2pcm_init() made it.
 *  @param state  not null
 *  Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API void dsd2pcm_reset(dsd2pcm_state* state);

/** Creates a converter that goes on exactly as `state` would.
 *  @param state  not null; is not changed
 *  @return  to be released by dsd2pcm_destroy(); null when memory runs out. Since 0.1. */
CORVIN_API dsd2pcm_state* dsd2pcm_clone(const dsd2pcm_state* state);

/** Converts bytes of one channel. Any division of a stream into calls gives the same floats.
 *  @param state       the channel's converter
 *  @param samples     bytes to read and floats to write, 0 or more
 *  @param src         src[0], src[src_stride]...: eight samples each; may be null for 0 samples
 *  @param src_stride  bytes from one to the next, the channel count for interleaved data
 *  @param lsbfirst    not 0 when the earliest sample is in the least significant bit, as in DSF
 *  @param dst         dst[0], dst[dst_stride]... are written, others left; may be null for 0 samples
 *  @param dst_stride  floats from one to the next
 *  Threads: converters are independent, each takes one call at a time. Real time: never allocates,
 *  locks or blocks. Since 0.1. */
CORVIN_API void dsd2pcm_translate(dsd2pcm_state* state, size_t samples, const unsigned char* src,
                                  ptrdiff_t src_stride, int lsbfirst, float* dst,
                                  ptrdiff_t dst_stride);

/** Releases a converter; null is allowed. Since 0.1. */
CORVIN_API void dsd2pcm_destroy(dsd2pcm_state* state);

/* ---- Platform services -------------------------------------------------------------------- */

/** Returns how many worker threads a job runs when each wants `perThread` processors:
 *  max(processors, perThread) / perThread; 1 when `perThread` is not positive. Processors are those
 *  that the process may use. Threads: reentrant. Since 0.1. */
CORVIN_API unsigned GetCPU_GPU_Cores(int perThread);

/** Waits `seconds` while the host's event loop (on macOS the thread's run loop) goes on. Values that
 *  are not positive return at once. Threads: reentrant; blocks. Since 0.1. */
CORVIN_API void ProgressWaitNS(float seconds);

/** Accepts a message, null too, and does nothing with it. Real time: never allocates, locks or blocks.
 *  Since 0.1. */
CORVIN_API void WriteLog(const char* text);

#ifdef __cplusplus
}
#endif

#include "corvin_studio.h"

#endif /* CORVIN_H_ */
