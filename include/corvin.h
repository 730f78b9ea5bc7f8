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
 *  - Any number of calls may run at once from different threads, on different files and buffers.
 *  - No function throws; none but the header writer of the PCM to DSD direction prints. */

#ifndef CORVIN_H_
#define CORVIN_H_

#include <stdbool.h>
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

struct DSD_TAG;

/* ---- Records ------------------------------------------------------------------------------ */

/** What a DSD file holds, as DSDInfo() finds it. */
typedef struct DSD_INFO {
  uint32_t format;               /**< container kind 1..3; left as it was for any other file */
  uint32_t channels;             /**< channel count */
  uint32_t samplingFrequency;    /**< DSD rate in Hz */
  uint32_t bitsPerSample;        /**< 1; for DSF the file's own value */
  uint64_t sampleCount;          /**< samples per channel */
  char compressionName[256];     /**< DSDIFF compression name, not terminated by the query */
  uint32_t blockSizePerChannel;  /**< DSF block size in bytes; 4096 for the other kinds */
} DSD_INFO;

#ifndef __APPLE__
/** A PCM stream's format: the record of the platform that has one, here with the same field order and
 *  widths. PCMtoDSD() reads the three fields named below; the PCM is always signed big-endian
 *  integers. */
typedef struct AudioStreamBasicDescription {
  double mSampleRate;          /**< Hz; the fraction is dropped */
  uint32_t mFormatID;          /**< ignored */
  uint32_t mFormatFlags;       /**< ignored */
  uint32_t mBytesPerPacket;    /**< ignored */
  uint32_t mFramesPerPacket;   /**< ignored */
  uint32_t mBytesPerFrame;     /**< ignored */
  uint32_t mChannelsPerFrame;  /**< 1..8 */
  uint32_t mBitsPerChannel;    /**< 8, 16, 24 or 32 */
  uint32_t mReserved;          /**< ignored */
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
 *  The length is pcmRate x samples / DSD rate frames, rounded down.
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
 *  On an argument out of range `pcm` is left untouched.
 *  Threads: reentrant. Since 0.1. */
CORVIN_API void RTBufDSDtoPCM(char* dsd, int bytes, int dsdRate, char* pcm, int pcmRate, int bits);

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
 *  yen sign with an n go to the standard error stream.
 *  Threads: reentrant; starts its own threads and ends them before it returns. Since 0.1. */
CORVIN_API int PCMtoDSD(int mode, long long pcmBytes, FILE* pcmSource, const char* dsdPath,
                        int dsdRate, CorvinProgressCallback progress,
                        AudioStreamBasicDescription pcmFormat, void* progressData,
                        struct DSD_TAG* tag);

/** Converts stereo PCM in memory to DSD in memory. Blocks until the end.
 *  @param pcm       `pcmBytes` bytes of signed big-endian interleaved stereo
 *  @param pcmRate   Hz
 *  @param bits      8, 16, 24 or 32
 *  @param dsdOut    receives 2 x (frames x dsdRate / pcmRate + 7) / 8 bytes: the left channel, then
 *                   the right, earliest sample in the most significant bit
 *  @param dsdRate   as for PCMtoDSD()
 *  @param frames    PCM frames in `pcm`
 *  On an argument out of range `dsdOut` is left untouched.
 *  Threads: reentrant. Since 0.1. */
CORVIN_API void RTBufPCMtoDSD(char* pcm, int pcmBytes, int pcmRate, int bits, void* dsdOut,
                              unsigned int dsdRate, int frames);

/* ---- Platform services -------------------------------------------------------------------- */

/** Returns how many worker threads a job runs when each wants `perThread` processors:
 *  max(processors, perThread) / perThread; 1 when `perThread` is not positive. Since 0.1. */
CORVIN_API unsigned GetCPU_GPU_Cores(int perThread);

/** Waits `seconds` while the host's event loop (on macOS the thread's run loop) goes on. Values that
 *  are not positive return at once. Since 0.1. */
CORVIN_API void ProgressWaitNS(float seconds);

/** Accepts a message and does nothing with it. Since 0.1. */
CORVIN_API void WriteLog(const char* text);

#ifdef __cplusplus
}
#endif

#include "corvin_studio.h"

#endif /* CORVIN_H_ */
