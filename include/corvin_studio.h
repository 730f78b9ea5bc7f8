/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/** @file corvin_studio.h
 *  The studio engine for C99 and C++: streaming conversion of DSD to PCM and of PCM to DSD. What it
 *  does with files stands in corvin_studio_files.h.
 *
 *  Conventions, beyond those of corvin.h
 *  - Handles are opaque and independent; each is used by one thread at a time. Nothing is global.
 *  - Settings begin with their size, are filled by ..._defaults() and changed field by field, so a
 *    program built against an older header goes on working.
 *  - PCM samples are little-endian in memory. Full scale is 1.0 for floating point, the largest
 *    value for integers. A DSD sine of 50 % modulation has a peak of full scale at 0 dB gain.
 *  - Functions return CORVIN_OK (0) or a negative corvin_status. They never throw, print or abort.
 *  - The bytes that come out depend on the settings and the bytes that went in, and on nothing
 *    else: not on the processor, the number of threads or the sizes of the calls. */

#ifndef CORVIN_STUDIO_H_
#define CORVIN_STUDIO_H_

#include <stddef.h>
#include <stdint.h>

#include "corvin_api.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum corvin_status {
  CORVIN_OK = 0,
  CORVIN_E_ARGUMENT = -1,    /**< a null pointer, or a value outside its range */
  CORVIN_E_UNSUPPORTED = -2, /**< a pair of rates or an edge that no plan exists for */
  CORVIN_E_MEMORY = -3,      /**< out of memory */
  CORVIN_E_THREAD = -4,      /**< a thread could not be started */
  CORVIN_E_STATE = -5,       /**< a call out of order, such as a push after finish */
  CORVIN_E_READ = -6,        /**< a file cannot be opened or read */
  CORVIN_E_WRITE = -7,       /**< a file cannot be made or written, or a sink did not go on */
  CORVIN_E_FORMAT = -8,      /**< no DSD file, or one that is damaged beyond reading */
  CORVIN_E_COMPRESSED = -9,  /**< sound in DST compression */
  CORVIN_E_CANCELLED = -10   /**< the caller's progress function did not go on */
} corvin_status;

/** Returns an English sentence for a status, never NULL. Since 0.1. */
CORVIN_API const char* corvin_strerror(int status);

typedef enum corvin_sample_format {
  CORVIN_S16 = 0,
  CORVIN_S24 = 1, /**< three bytes */
  CORVIN_S32 = 2,
  CORVIN_F32 = 3,
  CORVIN_F64 = 4,
  CORVIN_S20 =
      5 /**< 20 bits in three bytes: those of CORVIN_S24 with the low four zero. Read as that,
             whatever these are */
} corvin_sample_format;

typedef enum corvin_bit_order {
  CORVIN_MSB_FIRST = 0, /**< earliest sample in the most significant bit: DSDIFF, "1bit" */
  CORVIN_LSB_FIRST = 1  /**< earliest sample in the least significant bit: DSF */
} corvin_bit_order;

typedef enum corvin_phase {
  CORVIN_LINEAR_PHASE = 0, /**< symmetric kernel, outputs aligned with the stream's samples */
  CORVIN_MINIMUM_PHASE = 1 /**< nothing before an event; the same magnitude response */
} corvin_phase;

typedef enum corvin_dither {
  CORVIN_DITHER_NONE = 0,
  CORVIN_DITHER_TPDF = 1,  /**< triangular, two steps wide; integer formats only, else ignored */
  CORVIN_DITHER_SHAPED = 2 /**< triangular with its noise moved to where the ear hears least; begins
                                anew every 16384 frames of the whole */
} corvin_dither;

/** Sound around a stretch that is pushed along with it, for the filters to hear in place of silence.
 *  It makes no frames. */
typedef enum corvin_context {
  CORVIN_CONTEXT_NONE = 0,
  CORVIN_CONTEXT_BEFORE = 1, /**< what comes before the stretch */
  CORVIN_CONTEXT_BEHIND = 2, /**< what follows behind its `length`, which is set */
  CORVIN_CONTEXT_BOTH = 3
} corvin_context;

/** What a decoder is made of. */
typedef struct corvin_decoder_settings {
  size_t size;           /**< sizeof(corvin_decoder_settings), set by ..._defaults() */
  uint32_t dsd_rate;     /**< Hz: 44100 or 48000 x 64, 128, 256 or 512. Default 2822400 */
  uint32_t pcm_rate;     /**< Hz: 44100 or 48000 x 1, 2, 4, 8 or 16. Default 44100 */
  uint32_t channels;     /**< 1..64. Default 2 */
  uint32_t bit_order;    /**< corvin_bit_order. Default CORVIN_MSB_FIRST */
  uint32_t block_bytes;  /**< bytes of one channel before the next channel's follow in
                              corvin_decoder_push(): 1 for byte-interleaved, 4096 for DSF; up to
                              1048576. Default 1 */
  uint32_t format;       /**< corvin_sample_format. Default CORVIN_S24 */
  uint32_t dither;       /**< corvin_dither. Default CORVIN_DITHER_TPDF */
  uint32_t phase;        /**< corvin_phase. Default CORVIN_LINEAR_PHASE */
  uint32_t threads;      /**< worker threads, 0..64; 0: all work on the caller's. Default 0 */
  uint32_t low_latency;  /**< not 0: small pieces, for the times at corvin_decoder_latency(), and
                              up to four times the work, of a single channel up to six. Filters and
                              figures stay; where pieces begin moves, and with it the rounding of
                              samples, below -200 dBFS. Default 0 */
  uint32_t kernel_mask;  /**< which builds of the inner loops may run: 1 SSE2, 2 AVX2, 4 AVX-512;
                              0 the plain ones only. Changes the speed alone. Default all bits */
  uint64_t length;       /**< samples per channel to convert; what follows is taken and dropped.
                              0: all that is pushed, whole bytes. Default 0 */
  uint64_t seed;         /**< of the dither. Default 0 */
  double pass_hz;        /**< the response is flat up to here; 0: 5 % of half the PCM rate below
                              stop_hz. Default 0 */
  double stop_hz;        /**< and closed from here on; at least 3 % of half the PCM rate above
                              pass_hz; 0: half the PCM rate. Default 0. Where both are 0, the band
                              ends below the noise of the source's modulator: flat to 20 kHz and
                              closed from 32 kHz for DSD64 (-0.02 dB at 22 kHz), 40 and 60 kHz for
                              DSD128, as far as half the PCM rate lies above that; above DSD128 and
                              at lower PCM rates it is the full band. The full band of any pair:
                              pass_hz = 0, stop_hz = pcm_rate / 2 */
  double gain_db;        /**< -120..60. Default 0 */
  uint64_t first_sample; /**< where in a whole, such as an album, the first sample of the stretch to
                              convert stands; up to 2^60. Default 0 */
  uint32_t context;      /**< corvin_context. Default CORVIN_CONTEXT_NONE */
  uint32_t reserved0;    /**< 0 */
  uint64_t reserved[6];  /**< 0 */
} corvin_decoder_settings;

/** What came out so far. */
typedef struct corvin_decoder_report {
  size_t size;     /**< sizeof(corvin_decoder_report), set by the caller */
  uint64_t frames; /**< frames pulled */
  uint64_t clips;  /**< samples that met a limit of their integer format */
  double peak;     /**< largest absolute sample after the gain, before limiting; 1.0 = full scale */
} corvin_decoder_report;

/** Converts one DSD stream to PCM.
 *
 *  The stream may be a stretch of a whole, such as a track of an album. Frames are those of the
 *  whole: from its sample `a` to its sample `b` it makes the frames from corvin_decoder_frames(a) to
 *  corvin_decoder_frames(b). With the sound around it they are bit for bit what converting the whole
 *  makes of the stretch, wherever it is cut, so stretches that follow each other make the whole. For
 *  that, set each one's `first_sample`, `length` and `context`, and push what comes before and up to
 *  corvin_decoder_preroll() bytes of what follows.
 *
 *  Bytes hold eight samples each, from `first_sample` on; those before are counted back from there.
 *  Pushing begins corvin_decoder_preroll() bytes before the one that holds the first sample to make
 *  frames, `first_sample` or that of corvin_decoder_seek(), but not before the stretch's first
 *  byte; with CORVIN_CONTEXT_BEFORE, not before the byte that holds the whole's first sample, of
 *  which the bits before that count for nothing. Where a host has less, it pushes silence. The first
 *  byte pushed begins a block of the input's layout. */
typedef struct corvin_decoder corvin_decoder;

/** Fills `settings` with the defaults. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_decoder_settings_defaults(corvin_decoder_settings* settings);

/** Makes a decoder.
 *  @param settings  copied
 *  @param decoder   receives the handle, NULL on failure
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_UNSUPPORTED, CORVIN_E_MEMORY, CORVIN_E_THREAD
 *  Takes a few milliseconds. Since 0.1. */
CORVIN_API int corvin_decoder_create(const corvin_decoder_settings* settings,
                                     corvin_decoder** decoder);

/** Ends a decoder, with work in flight or not. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_decoder_destroy(corvin_decoder* decoder);

/** Feeds DSD bytes of all channels in the layout that `block_bytes` says, from any point to any
 *  point of it: a call may end within a block.
 *  @param data   bytes to take, may be NULL when `bytes` is 0
 *  @param bytes  their number
 *  @param taken  receives how many were taken. Fewer than `bytes` when the decoder is full: pull,
 *                then push the rest
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_STATE after finish
 *  Real time: without worker threads it never allocates, locks or blocks; it converts on the spot
 *  whenever a piece of the stream is complete. Since 0.1. */
CORVIN_API int corvin_decoder_push(corvin_decoder* decoder, const void* data, size_t bytes,
                                   size_t* taken);

/** Feeds DSD bytes of each channel from a place of its own.
 *  @param channels  channels[channels]
 *  @param bytes     bytes of each channel
 *  @param taken     receives how many bytes of each channel were taken
 *  @return  as corvin_decoder_push(); CORVIN_E_STATE also when a block is incomplete
 *  Since 0.1. */
CORVIN_API int corvin_decoder_push_planar(corvin_decoder* decoder, const uint8_t* const* channels,
                                          size_t bytes, size_t* taken);

/** Ends the input: the rest of the output can now be pulled. What comes before the first and after
 *  the last sample counts as silence, the byte 0x69 over and over: a tone at an eighth of the DSD
 *  rate, which only the full band of 768 kHz PCM from 2.8224 MHz DSD has in it. An incomplete last
 *  block counts as far as all its channels reach. Calling it again does nothing.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_decoder_finish(corvin_decoder* decoder);

/** Takes finished frames, interleaved.
 *  @param out     room for `frames` frames
 *  @param frames  the most to take
 *  @param done    receives the number taken. 0 after finish means the end of the stream; before
 *                 that, more input is needed
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Real time: without worker threads it never allocates, locks or blocks. With them it waits only
 *  when nothing is ready and the decoder can take no more input. Since 0.1. */
CORVIN_API int corvin_decoder_pull(corvin_decoder* decoder, void* out, size_t frames, size_t* done);

/** Takes finished frames, each channel to a place of its own: out[channels]. Otherwise as
 *  corvin_decoder_pull(). Since 0.1. */
CORVIN_API int corvin_decoder_pull_planar(corvin_decoder* decoder, void* const* out, size_t frames,
                                          size_t* done);

/** Returns to the state after create, dropping everything on its way. With worker threads it waits
 *  for those at work.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_decoder_reset(corvin_decoder* decoder);

/** As corvin_decoder_reset(), to go on in the middle of the stretch: the first frame handed out is
 *  corvin_decoder_frames(sample), and all are bit for bit those of decoding from the start. The
 *  next byte to push is the one corvin_decoder_preroll() bytes before the one that holds the sample,
 *  or the stretch's first: see corvin_decoder. That much is taken before any frame comes out.
 *  corvin_file_seek_decoder() does it all for a file.
 *  @param sample  of the whole, from `first_sample` to the end of `length`
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT; the decoder goes on as it was then
 *  Real time: without worker threads it never allocates, locks or blocks; pushing what comes before
 *  may take as long as several pieces. Since 0.1. */
CORVIN_API int corvin_decoder_seek(corvin_decoder* decoder, uint64_t sample);

/** Returns how many bytes of each channel before the one that holds a sample its frames depend on,
 *  at most; no more are of use behind a stretch. The same for every sample: DSD64 to 44.1 kHz takes
 *  about 0.1 s, with shaped dither 0.5 s. 0 for NULL. Since 0.1. */
CORVIN_API uint64_t corvin_decoder_preroll(const corvin_decoder* decoder);

/** Returns the most frames by which what can be pulled lags behind what was pushed, without worker
 *  threads; 0 for NULL. The frames themselves are not delayed: the first one belongs to the first
 *  sample.
 *
 *  With `low_latency`, `block_bytes` = 1 and the default edges or the full band, at most, from any DSD
 *  rate, in milliseconds:
 *
 *      PCM rate        44.1k   48k  88.2k   96k 176.4k  192k 352.8k  384k 705.6k  768k
 *      linear phase     19.6  18.2    9.8   9.1    4.9   4.6    2.5   2.3    1.8   1.7
 *      minimum phase    15.2  17.0    7.6   8.5    3.8   4.3    1.9   2.2    1.5   1.6
 *
 *  The work comes in pieces, all alike, of less time than the latency: that of a call is no more
 *  than the pieces that it completes. 44.1 kHz PCM comes in pieces of 14 ms in linear phase.
 *  Since 0.1. */
CORVIN_API uint64_t corvin_decoder_latency(const corvin_decoder* decoder);

/** Returns the frames that a stream of `samples` samples per channel makes: pcm_rate x samples /
 *  dsd_rate, rounded down; of a stretch from `a` to `b`, the frames of `b` less those of `a`. 0 for
 *  NULL. Since 0.1. */
CORVIN_API uint64_t corvin_decoder_frames(const corvin_decoder* decoder, uint64_t samples);

/** Reports on the frames pulled since create, reset or seek. Peak and clips run ahead of the frames by
 *  the rest of a piece at most, and are those of all frames once all are pulled.
 *  @param report  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_decoder_get_report(const corvin_decoder* decoder,
                                         corvin_decoder_report* report);

/** Describes the stages of the conversion in a line each.
 *  @param text  receives at most `size` bytes, always terminated; may be NULL when `size` is 0
 *  @return  the length of the whole description, CORVIN_E_ARGUMENT or CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_decoder_describe(const corvin_decoder* decoder, char* text, size_t size);

/** What a quantizer is made of. */
typedef struct corvin_quantizer_settings {
  size_t size;          /**< sizeof(corvin_quantizer_settings), set by ..._defaults() */
  uint32_t pcm_rate;    /**< Hz, 8000..768000; nothing but CORVIN_DITHER_SHAPED depends on it.
                             Default 44100 */
  uint32_t channels;    /**< 1..64. Default 2 */
  uint32_t format;      /**< corvin_sample_format to make. Default CORVIN_S24 */
  uint32_t dither;      /**< corvin_dither. Default CORVIN_DITHER_TPDF */
  uint32_t kernel_mask; /**< as in corvin_decoder_settings. Default all bits */
  uint32_t reserved0;   /**< 0 */
  uint64_t seed;        /**< of the dither. Default 0 */
  uint64_t
      first_frame; /**< where in a whole the first frame stands, on which the dither hangs; up to
                        2^60. Default 0 */
  double gain_db;  /**< -120..60. Default 0 */
  uint64_t reserved[6]; /**< 0 */
} corvin_quantizer_settings;

/** What came out so far. */
typedef struct corvin_quantizer_report {
  size_t size;     /**< sizeof(corvin_quantizer_report), set by the caller */
  uint64_t frames; /**< written */
  uint64_t clips;  /**< samples that met a limit of their integer format */
  double peak;     /**< largest absolute sample after the gain, before limiting; 1.0 = full scale */
} corvin_quantizer_report;

/** Brings floating-point frames into another format: the last step of a decoder alone, for what was
 *  measured or worked on in between. Of a decoder's CORVIN_F64 it makes, with the same dither, seed
 *  and rate, bit for bit what that decoder makes in the format; the gain may be either's. Where the
 *  calls are cut changes nothing. */
typedef struct corvin_quantizer corvin_quantizer;

/** Fills `settings` with the defaults. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_quantizer_settings_defaults(corvin_quantizer_settings* settings);

/** Makes a quantizer.
 *  @param settings   copied
 *  @param quantizer  receives the handle, NULL on failure
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_quantizer_create(const corvin_quantizer_settings* settings,
                                       corvin_quantizer** quantizer);

/** Ends a quantizer. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_quantizer_destroy(corvin_quantizer* quantizer);

/** Makes frames, interleaved, as many as there are: nothing is kept back.
 *  @param in      in[frames*channels], interleaved. What is no number counts as 0, what is beyond
 *                 65536 as that; may be NULL when `frames` is 0
 *  @param frames  their number
 *  @param out     room for `frames` frames, may be the place of `in`. NULL: the frames shape those
 *                 behind them, as CORVIN_DITHER_SHAPED does within every 16384 frames of the whole,
 *                 and count for nothing in the report. So a stretch of a whole is made of its frames
 *                 and those since the last multiple of 16384, with which it begins
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Real time: never allocates, locks or blocks. Since 0.1. */
CORVIN_API int corvin_quantizer_run(corvin_quantizer* quantizer, const double* in, size_t frames,
                                    void* out);

/** The same with each channel at a place of its own: in[channels], out[channels], of which out[c]
 *  may be in[c]. Since 0.1. */
CORVIN_API int corvin_quantizer_run_planar(corvin_quantizer* quantizer, const double* const* in,
                                           size_t frames, void* const* out);

/** Returns to the state after create.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_quantizer_reset(corvin_quantizer* quantizer);

/** Reports on the frames written since create or reset.
 *  @param report  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_quantizer_get_report(const corvin_quantizer* quantizer,
                                           corvin_quantizer_report* report);

/** How hard an encoder works for a low noise. Noise from 20 Hz to 20 kHz at DSD64 under a sine of 0
 *  dBFS, re a sine of full modulation; docs/quality tells it for bands up to 200 kHz. At DSD256 and
 *  DSD512 all are the same. */
typedef enum corvin_modulator {
  CORVIN_MODULATOR_STANDARD = 0, /**< -144 dB, a fifth of the work; at DSD64 1.5 dB less headroom */
  CORVIN_MODULATOR_HIGH = 1,     /**< -145 dB, a search over four paths */
  CORVIN_MODULATOR_BEST = 2      /**< -148 dB, a search over eight paths: about twice the work */
} corvin_modulator;

/** What an encoder is made of. */
typedef struct corvin_encoder_settings {
  size_t size;          /**< sizeof(corvin_encoder_settings), set by ..._defaults() */
  uint32_t pcm_rate;    /**< Hz: 44100 or 48000 x 1, 2, 4, 8 or 16. Default 44100 */
  uint32_t dsd_rate;    /**< Hz: 44100 or 48000 x 64, 128, 256 or 512. Default 2822400 */
  uint32_t channels;    /**< 1..64. Default 2 */
  uint32_t format;      /**< corvin_sample_format of the input. Default CORVIN_S24 */
  uint32_t modulator;   /**< corvin_modulator. Default CORVIN_MODULATOR_HIGH */
  uint32_t bit_order;   /**< corvin_bit_order. Default CORVIN_MSB_FIRST */
  uint32_t block_bytes; /**< bytes of one channel before the next channel's follow in
                             corvin_encoder_pull(): 1 for byte-interleaved, 4096 for DSF; up to
                             1048576. Default 1 */
  uint32_t threads;     /**< worker threads, 0..64; 0: all work on the caller's. One modulates a
                             pair of channels, with the best modulator a single one, and others
                             up-sample for them; more are not started. Default 0 */
  uint32_t low_latency; /**< not 0: small pieces, for the times at corvin_encoder_latency(), and
                             without worker threads the same work in every call; two to four times
                             the up-sampling's work, which is small beside the modulators'. Figures
                             and levels stay, the bits are others. Sound that has faded ends below
                             -75 dBFS instead of -90: see corvin_encoder_finish(). Default 0 */
  uint32_t kernel_mask; /**< which builds of the inner loops may run: 1 SSE2, 2 AVX2, 4 AVX-512;
                             0 the plain ones only. Changes the speed alone. Default all bits */
  uint64_t length;      /**< frames to convert; what follows is taken and dropped. 0: all that is
                             pushed. Default 0 */
  double gain_db;       /**< -120..60; at 0 full scale becomes 50 % modulation. Sines are clean up
                             to 3 dB above that, with the standard modulator at DSD64 up to 1.5
                             dB; what is louder meets a limiter. Default 0 */
  double pass_hz;       /**< the response is flat up to here; 0: 5 % of the highest stop_hz below
                             stop_hz. Default 0 */
  double stop_hz;       /**< and closed from here on; at least 3 % of the highest stop_hz above
                             pass_hz; 0: the highest, which is half the lower one of the PCM rate
                             and an eighth of the DSD rate. Default 0 */
  uint32_t phase;       /**< corvin_phase. Default CORVIN_LINEAR_PHASE */
  uint32_t reserved0;   /**< 0 */
  uint64_t reserved[5]; /**< 0 */
} corvin_encoder_settings;

/** What came out so far, to the end of the piece of the stream that the last pull ended in; with
 *  `low_latency` to that of the next piece at most. */
typedef struct corvin_encoder_report {
  size_t size;        /**< sizeof(corvin_encoder_report), set by the caller */
  uint64_t samples;   /**< one-bit samples of each channel pulled, without those that fill up a
                           block */
  uint64_t limited;   /**< inputs of the modulators, at an eighth of the DSD rate, beyond the
                           limiter's knee; of all channels */
  uint64_t overloads; /**< times that a modulator lost lock and was caught; of all channels */
  double peak;        /**< largest absolute input of a modulator, after the gain and before the
                           limiter; 1.0 = full scale */
} corvin_encoder_report;

/** Converts one PCM stream to DSD. The band that it passes unless another is asked for is flat to
 *  95 % of half the lower one of the PCM rate and an eighth of the DSD rate, and closed from that
 *  half on. */
typedef struct corvin_encoder corvin_encoder;

/** Fills `settings` with the defaults. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_encoder_settings_defaults(corvin_encoder_settings* settings);

/** Makes an encoder.
 *  @param settings  copied
 *  @param encoder   receives the handle, NULL on failure
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_UNSUPPORTED, CORVIN_E_MEMORY, CORVIN_E_THREAD
 *  Takes some 20 milliseconds. Since 0.1. */
CORVIN_API int corvin_encoder_create(const corvin_encoder_settings* settings,
                                     corvin_encoder** encoder);

/** Ends an encoder, with work in flight or not. NULL is ignored. Since 0.1. */
CORVIN_API void corvin_encoder_destroy(corvin_encoder* encoder);

/** Feeds frames, interleaved.
 *  @param data    frames to take, may be NULL when `frames` is 0. Floating-point samples beyond
 *                 full scale pass as they are up to 24 dB after the gain, louder ones count as
 *                 that; what is no number counts as 0
 *  @param frames  their number
 *  @param taken   receives how many were taken. Fewer than `frames` when the encoder is full: pull,
 *                 then push the rest
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT, CORVIN_E_STATE after finish
 *  Real time: without worker threads it never allocates, locks or blocks; it converts on the spot
 *  whenever a piece of the stream is complete. Since 0.1. */
CORVIN_API int corvin_encoder_push(corvin_encoder* encoder, const void* data, size_t frames,
                                   size_t* taken);

/** Feeds the samples of each channel from a place of its own: channels[channels]. Otherwise as
 *  corvin_encoder_push(). Since 0.1. */
CORVIN_API int corvin_encoder_push_planar(corvin_encoder* encoder, const void* const* channels,
                                          size_t frames, size_t* taken);

/** Ends the input: the rest of the output can now be pulled. What comes before the first and after
 *  the last frame counts as digital zero. The stream ends with the one-bit sample before the time
 *  that a further frame would have had; the rest of the last byte, and in corvin_encoder_pull() of
 *  the last block, is filled with the silence pattern 0x69. Calling it again does nothing.
 *  The stream comes to rest: if the sound has faded, what its last bits decode to up to 20 kHz, and
 *  what the silence pattern behind them does, stays below -90 dBFS; with `low_latency`, which sees
 *  the end later, below -75 dBFS.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Real time: without worker threads this call and the pulls after it never allocate, lock or
 *  block, but do all that is left to do, and search the end for some 10 ms a channel.
 *  Since 0.1. */
CORVIN_API int corvin_encoder_finish(corvin_encoder* encoder);

/** Takes finished DSD bytes of all channels in the layout that `block_bytes` says, from any point
 *  to any point of it.
 *  @param out    room for `bytes` bytes
 *  @param bytes  the most to take
 *  @param done   receives the number taken. 0 after finish means the end of the stream; before
 *                that, more input is needed
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Real time: without worker threads it never allocates, locks or blocks. With them it waits only
 *  when nothing is ready and the encoder can take no more input. Since 0.1. */
CORVIN_API int corvin_encoder_pull(corvin_encoder* encoder, void* out, size_t bytes, size_t* done);

/** Takes finished DSD bytes of each channel to a place of its own.
 *  @param out    out[channels]
 *  @param bytes  the most to take of each channel
 *  @param done   receives the bytes taken of each channel
 *  @return  as corvin_encoder_pull(); CORVIN_E_STATE also when that one has begun a block or a
 *           frame of bytes and not ended it
 *  Since 0.1. */
CORVIN_API int corvin_encoder_pull_planar(corvin_encoder* encoder, uint8_t* const* out,
                                          size_t bytes, size_t* done);

/** Returns to the state after create, dropping everything on its way. With worker threads it waits
 *  for those at work.
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_encoder_reset(corvin_encoder* encoder);

/** Returns the most one-bit samples by which what can be pulled lags behind what was pushed,
 *  without worker threads; 0 for NULL. The samples themselves are not delayed: frame m is centred
 *  on the sample m x dsd_rate / pcm_rate.
 *
 *  With `low_latency`, `block_bytes` = 1 and the default edges, at most, in milliseconds:
 *
 *      PCM rate        44.1k   48k  88.2k   96k 176.4k  192k 352.8k  384k 705.6k  768k
 *      linear phase     18.6  15.9   12.5  11.1    9.5   9.0    8.2   9.2    8.1   9.2
 *      minimum phase    15.3  14.0   11.1  10.4    9.0   8.3    7.9   8.6    7.7   8.5
 *
 *  to any DSD rate; to DSD128, 256 and 512 it is some 3, 5 and 6 ms less. Without worker threads each
 *  call then modulates as much as it pushes, and up-samples a piece, at 44.1 kHz of 4 to 7 ms, when it
 *  is complete: to DSD64 no call of 64 frames takes half more than their average with the search of
 *  the high and the best modulator, no call of 192 with the standard one.
 *  Since 0.1. */
CORVIN_API uint64_t corvin_encoder_latency(const corvin_encoder* encoder);

/** Returns the one-bit samples per channel that a stream of `frames` frames makes: dsd_rate x
 *  frames / pcm_rate, rounded up; 0 for NULL. Since 0.1. */
CORVIN_API uint64_t corvin_encoder_samples(const corvin_encoder* encoder, uint64_t frames);

/** Reports on what was pulled since create or reset.
 *  @param report  its `size` set; fields beyond that are left untouched
 *  @return  CORVIN_OK, CORVIN_E_ARGUMENT
 *  Since 0.1. */
CORVIN_API int corvin_encoder_get_report(const corvin_encoder* encoder,
                                         corvin_encoder_report* report);

/** Describes the stages of the conversion in a line each.
 *  @param text  receives at most `size` bytes, always terminated; may be NULL when `size` is 0
 *  @return  the length of the whole description, CORVIN_E_ARGUMENT or CORVIN_E_MEMORY
 *  Since 0.1. */
CORVIN_API int corvin_encoder_describe(const corvin_encoder* encoder, char* text, size_t size);

#ifdef __cplusplus
}
#endif

#endif /* CORVIN_STUDIO_H_ */
