/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * DSD64 from standard input, one byte of each of two channels in turn with the earliest sample in
 * the most significant bit, to interleaved floats of 88200 Hz on standard output. As a player would
 * do it, block by block: between create and destroy nothing allocates or blocks. */

#include <corvin.h>
#include <stdbool.h>
#include <stdio.h>

enum { CHANNELS = 2, BLOCK_BYTES = 8192, BLOCK_FRAMES = 1024 };

/* Writes all that is ready. */
static bool drain(corvin_decoder* decoder) {
  float pcm[BLOCK_FRAMES * CHANNELS];
  size_t frames;
  do {
    if (corvin_decoder_pull(decoder, pcm, BLOCK_FRAMES, &frames) != CORVIN_OK) return false;
    if (fwrite(pcm, sizeof *pcm * CHANNELS, frames, stdout) != frames) return false;
  } while (frames > 0);
  return true;
}

int main(void) {
  unsigned char dsd[BLOCK_BYTES];
  corvin_decoder_settings settings;
  corvin_decoder* decoder;
  bool good = true;
  size_t count;
  int status;
  corvin_decoder_settings_defaults(&settings); /* DSD64, two channels, byte by byte */
  settings.pcm_rate = 88200;
  settings.format = CORVIN_F32;
  settings.low_latency = 1; /* at once what can be heard */
  status = corvin_decoder_create(&settings, &decoder);
  if (status != CORVIN_OK) {
    fprintf(stderr, "3_stream: %s\n", corvin_strerror(status));
    return 1;
  }
  while (good && (count = fread(dsd, 1, sizeof dsd, stdin)) > 0) {
    size_t from = 0;
    while (good && from < count) { /* a full decoder takes a part, and more after a pull */
      size_t taken = 0;
      good = corvin_decoder_push(decoder, dsd + from, count - from, &taken) == CORVIN_OK &&
             drain(decoder);
      from += taken;
    }
  }
  good = good && corvin_decoder_finish(decoder) == CORVIN_OK && drain(decoder);
  corvin_decoder_destroy(decoder);
  if (!good || ferror(stdin) || fflush(stdout) != 0) {
    perror("3_stream");
    return 1;
  }
  return 0;
}
