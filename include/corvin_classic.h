/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_classic.h
 *  The classic engine, whose bytes and names are fixed, and the services around it. Its conventions
 *  beyond those of corvin.h:
 *  - PCM is bare: signed integers, interleaved, without a header.
 *  - 50 % modulation of the DSD stream is meant to reach 0 dBFS, the largest PCM value.
 *  - None but the header writer of the PCM to DSD direction prints. */

#ifndef CORVIN_CLASSIC_H_
#define CORVIN_CLASSIC_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __APPLE__
#include <CoreAudio/CoreAudioTypes.h>
#endif

#include "corvin_api.h"
#include "corvin_tags.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Callbacks ----------------------------------------------------------------------------- */

/** Fills at most `size` bytes of `buffer` and returns the count; 0 or less means end of data. */
typedef int (*CorvinReadCallback)(void* buffer, int size, void* data);

/** Is told each new whole percentage, 0..100, on the thread that called the conversion; returning
 *  false cancels it. */
typedef bool (*CorvinProgressCallback)(int percent, void* data);

/* ---- DSD files ----------------------------------------------------------------------------- */

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

/** Reads the format of a DSD file from its headers.
 *  @param path  the file
 *  @param info  the record to fill. All fields but `format` and the tail of `compressionName` are
 *               reset first; `format` keeps the caller's value when the file is of no known kind,
 *               so set it to 0 before the call to tell "unknown" from a kind
 *  @return      -1 when the file cannot be opened or an argument is null, 0 in every other case;
 *               what a malformed file does not tell stays 0
 *  Threads: reentrant. Since 0.1. */
CORVIN_API int DSDInfo(const char* path, DSD_INFO* info);

/* ---- DSD to PCM ---------------------------------------------------------------------------- */

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
 *  The length is pcmRate x samples / DSD rate frames, rounded down; of a file that is cut short the
 *  samples that are there count. The filter's delay is taken out: the first frame belongs to the
 *  first sample.
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

/** Converts one stereo DSD stream to PCM in pieces: the filters of DSDtoPCM(), with memory from
 *  piece to piece and threads that sleep in between. */
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

/** Converts the next piece of the stream. The frames are those that RTBufDSDtoPCM() makes of the
 *  whole stream, whatever the pieces; those of the last DSDtoPCMBuf_Delay() frames of the stream
 *  come only when that much silence, bytes of 0x69, is sent behind it.
 *  @param dsd      2 x `bytes` bytes: the left channel, then the right; may be null for 0 bytes
 *  @param bytes    DSD bytes per channel, 0 or more
 *  @param pcm      receives the frames, interleaved; room for (8 x bytes x pcmRate / dsdRate,
 *                  rounded up) frames is always enough. Must not overlap `dsd`
 *  @param pcmSize  bytes of room in `pcm`; what does not get PCM is left untouched
 *  @return         bytes written to `pcm`. After a stream of N samples per channel so far, N x
 *                  pcmRate / dsdRate, rounded up, less the delay, frames have come out in all. -1,
 *                  and the piece is not taken, for a null pointer, a negative count or too little
 *                  room: the same piece may be sent again
 *  Threads: one call per converter at a time; converters are independent. Real time: never
 *  allocates; waits for its two threads. Since 0.1. */
CORVIN_API int DSDtoPCMBuf_ToPCM(CDSDtoPCMBuf* engine, const unsigned char* dsd, int bytes,
                                 unsigned char* pcm, int pcmSize);

/** Returns by how many frames the output lags behind the input: half the filter's length, or the
 *  longer lead that pairs of rates without a plan have. They are held back, not replaced: the first
 *  frame that comes out is the first of DSDtoPCM(). -1 for null. Since 0.1. */
CORVIN_API int DSDtoPCMBuf_Delay(const CDSDtoPCMBuf* engine);

/** Ends a converter and its threads; null is allowed. No call on it may be running. Since 0.1. */
CORVIN_API void CloseDSDtoPCMBuf(CDSDtoPCMBuf* engine);

/* ---- PCM to DSD ---------------------------------------------------------------------------- */

#ifndef __APPLE__
/** A PCM stream's format: the record of the platform that has one, here with the same field order
 *  and widths. PCMtoDSD() reads the three fields named below; the PCM is always signed big-endian
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

/** Converts a PCM stream to a DSD file. Blocks until the end.
 *  @param mode          1 writes DSDIFF, 2 DSF, 3 "1bit"; any other value returns 0 and does
 *                       nothing
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
 *                       (no file is left), or `progress` cancelled (the file is complete but for
 *                       the sound that is missing)
 *  The file holds (frames x dsdRate / PCM rate + 7) / 8 bytes of sound per channel. Headers of
 *  other than two channels carry stereo sizes, as docs/formats.md tells. 0 dBFS is 50 % modulation
 *  times the plan's level; louder sound clips. When a header field cannot be written, "Write error"
 *  and a yen sign with an n go to the standard error stream. The filter's delay is taken out.
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

/* ---- Streams that hold what is pushed ------------------------------------------------------ */

/* These eight functions are kept for hosts that are linked against them. A stream here is a pair of
 * rings of four blocks: it holds what is pushed and converts nothing. A decoding stream therefore
 * never gives PCM, and an encoding one never gives DSD. To convert a stream of DSD, use
 * corvin_decoder_create() and its companions, or GetCDSDtoPCMBufClass().
 *
 * Rates and formats are fixed: two channels, DSD at 2822400 Hz, PCM at 44100 Hz in 24 bits.
 * Threads: one thread per function and stream at a time; pushing and pulling may overlap. Streams
 * are independent. Ending a stream is allowed while other threads wait in it: their calls return
 * what they have moved; no new call may begin then. Nothing allocates between creation and end. */

/** Creates a decoding stream.
 *  @param reserved  ignored
 *  @return          to be released by DSDDecodeExit(); null when memory runs out
 *  Since 0.1. */
CORVIN_API void* DSDDecodeInit(int reserved);

/** Stores DSD bytes. Waits once 4 x 8192 bytes are stored, for nothing takes them: until the stream
 *  ends.
 *  @param data  data[size]
 *  @return      bytes stored: `size`, or less when the stream ended meanwhile; 0 for a null pointer
 *               or a size that is not positive
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

/* ---- Compact DSD to PCM -------------------------------------------------------------------- */

/** One channel of the compact converter: a filter of 96 taps that makes one float of eight samples,
 *  DSD64 to 352.8 kHz. Full modulation is +-1.0. Delay: 5.5 floats, from the middle of a byte to
 *  its float. */
typedef struct dsd2pcm_state dsd2pcm_state;

/** Creates a converter whose past is idle, the byte 0x69 over and over. The first eleven floats
 *  still show that beginning.
 *  @return  to be released by dsd2pcm_destroy(); null when memory runs out
 *  Threads: any number at once, the first call too. Since 0.1. */
CORVIN_API dsd2pcm_state* dsd2pcm_init(void);

/** Brings a converter back to how dsd2pcm_init() made it; null is allowed.
 *  Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API void dsd2pcm_reset(dsd2pcm_state* state);

/** Creates a converter that goes on exactly as `state` would.
 *  @param state  is not changed
 *  @return  to be released by dsd2pcm_destroy(); null for null or when memory runs out
 *  Since 0.1. */
CORVIN_API dsd2pcm_state* dsd2pcm_clone(const dsd2pcm_state* state);

/** Converts bytes of one channel. Any division of a stream into calls gives the same floats. With a
 *  null pointer nothing is read, written or changed.
 *  @param state       the channel's converter
 *  @param samples     bytes to read and floats to write, 0 or more
 *  @param src         src[0], src[src_stride]...: eight samples each
 *  @param src_stride  bytes from one to the next, the channel count for interleaved data
 *  @param lsbfirst    not 0 when the earliest sample is in the least significant bit, as in DSF
 *  @param dst         dst[0], dst[dst_stride]... are written, others left
 *  @param dst_stride  floats from one to the next
 *  Threads: converters are independent, each takes one call at a time. Real time: never allocates,
 *  locks or blocks. Since 0.1. */
CORVIN_API void dsd2pcm_translate(dsd2pcm_state* state, size_t samples, const unsigned char* src,
                                  ptrdiff_t src_stride, int lsbfirst, float* dst,
                                  ptrdiff_t dst_stride);

/** Releases a converter; null is allowed. Since 0.1. */
CORVIN_API void dsd2pcm_destroy(dsd2pcm_state* state);

/* ---- Platform services --------------------------------------------------------------------- */

/** Returns how many worker threads a job runs when each wants `perThread` processors:
 *  max(processors, perThread) / perThread; 1 when `perThread` is not positive. Processors are those
 *  that the process may use. Threads: reentrant. Since 0.1. */
CORVIN_API unsigned GetCPU_GPU_Cores(int perThread);

/** Waits `seconds` while the host's event loop (on macOS the thread's run loop) goes on. Values
 *  that are not positive return at once. Threads: reentrant; blocks. Since 0.1. */
CORVIN_API void ProgressWaitNS(float seconds);

/** Accepts a message, null too, and does nothing with it. Real time: never allocates, locks or
 *  blocks. Since 0.1. */
CORVIN_API void WriteLog(const char* text);

#ifdef __cplusplus
}
#endif

#endif /* CORVIN_CLASSIC_H_ */
