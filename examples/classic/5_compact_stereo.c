/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * Interleaved stereo DSD from standard input, one byte per channel in turn with the earliest sample
 * in the most significant bit, to interleaved floats on standard output: DSD64 comes out at 352800
 * Hz. As a player would do it, block by block. */

#include <corvin.h>
#include <stdio.h>

enum { BLOCK_FRAMES = 4096, CHANNELS = 2 };

int main(void) {
  static unsigned char dsd[BLOCK_FRAMES * CHANNELS];
  static float pcm[BLOCK_FRAMES * CHANNELS];
  dsd2pcm_state* state[CHANNELS]; /* a converter knows one channel */
  size_t frames;
  int channel;
  for (channel = 0; channel < CHANNELS; ++channel) {
    state[channel] = dsd2pcm_init();
    if (!state[channel]) return 1;
  }
  while ((frames = fread(dsd, CHANNELS, BLOCK_FRAMES, stdin)) > 0) {
    for (channel = 0; channel < CHANNELS; ++channel)
      dsd2pcm_translate(state[channel], frames, dsd + channel, CHANNELS, 0, pcm + channel,
                        CHANNELS);
    if (fwrite(pcm, sizeof *pcm * CHANNELS, frames, stdout) != frames) break;
  }
  for (channel = 0; channel < CHANNELS; ++channel) dsd2pcm_destroy(state[channel]);
  if (ferror(stdin) || fflush(stdout) != 0 || ferror(stdout)) {
    perror("5_compact_stereo");
    return 1;
  }
  return 0;
}
