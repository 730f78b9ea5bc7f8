/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers */

/* A host in C99: half a second of DSD silence through both engines. */

#include <corvin.h>
#include <stdio.h>
#include <string.h>

static int decode_silence(void) {
  corvin_decoder_settings settings;
  corvin_decoder* decoder;
  unsigned char silence[2 * 176400];
  size_t taken = 0;
  int status;
  memset(silence, 0x69, sizeof silence);
  corvin_decoder_settings_defaults(&settings);
  settings.format = CORVIN_F64;
  status = corvin_decoder_create(&settings, &decoder);
  if (status != CORVIN_OK) return -1;
  status = corvin_decoder_push(decoder, silence, sizeof silence, &taken);
  if (status == CORVIN_OK) status = corvin_decoder_finish(decoder);
  printf("%llu frames\n",
         (unsigned long long)corvin_decoder_frames(decoder, 8 * (sizeof silence) / 2));
  corvin_decoder_destroy(decoder);
  return status == CORVIN_OK && taken > 0 ? 0 : -1;
}

int main(void) {
  DSD_INFO info;
  dsd2pcm_state* compact = dsd2pcm_init();
  memset(&info, 0, sizeof info);
  if (!compact) return 1;
  dsd2pcm_destroy(compact);
  printf("missing file: %d\n", DSDInfo("/nonexistent/file.dsf", &info));
  return decode_silence() == 0 ? 0 : 1;
}
