/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * PCM to DSD and back, all in memory: a tenth of a second of a 1 kHz tone at half scale on the
 * left, silence on the right. */

#include <corvin.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

enum { PCM_RATE = 44100, DSD_RATE = 2822400, FRAMES = PCM_RATE / 10, BITS = 24 };
enum { FRAME_BYTES = 2 * BITS / 8, DSD_BYTES = FRAMES / 8 * (DSD_RATE / PCM_RATE) };

/* Both directions take and give big-endian samples. */
static void put(char* at, double value) {
  const long sample = lround(value * 8388607.0);
  int i;
  for (i = 0; i < 3; ++i) at[i] = (char)(((unsigned long)sample >> (16 - 8 * i)) & 0xff);
}

static double get(const char* at) {
  const int top = (signed char)at[0];
  return (top * 65536.0 + (unsigned char)at[1] * 256.0 + (unsigned char)at[2]) / 8388607.0;
}

static double peak(const char* pcm, int channel) {
  double largest = 0;
  int i;
  for (i = 0; i < FRAMES / 8 * 8; ++i)
    largest = fmax(largest, fabs(get(pcm + i * FRAME_BYTES + 3 * channel)));
  return largest;
}

int main(void) {
  const double turn = 2 * 3.14159265358979323846 * 1000 / PCM_RATE;
  char* const pcm = calloc(FRAMES, FRAME_BYTES);
  char* const back = calloc(FRAMES, FRAME_BYTES);
  char* const dsd = calloc(2, DSD_BYTES); /* the left channel, then the right */
  int i;
  if (!pcm || !back || !dsd) return 1;
  for (i = 0; i < FRAMES; ++i) put(pcm + i * FRAME_BYTES, 0.5 * sin(turn * i));

  /* Whole bytes of DSD: eight frames make 64. */
  RTBufPCMtoDSD(pcm, FRAMES / 8 * 8 * FRAME_BYTES, PCM_RATE, BITS, dsd, DSD_RATE, FRAMES / 8 * 8);
  RTBufDSDtoPCM(dsd, DSD_BYTES, DSD_RATE, back, PCM_RATE, BITS);

  printf("sent %.2f and %.2f\n", peak(pcm, 0), peak(pcm, 1));
  printf("got  %.2f and %.2f\n", peak(back, 0), peak(back, 1));
  free(pcm);
  free(back);
  free(dsd);
  return 0;
}
