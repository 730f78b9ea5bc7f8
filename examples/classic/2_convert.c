/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * A DSD file to bare PCM of 24 bits, little-endian, telling how far it is:
 *   2_convert FILE OUTPUT RATE */

#include <corvin.h>
#include <stdio.h>
#include <stdlib.h>

/* Called on this thread about every half second; returning false would cancel. */
static bool tell(int percent, void* data) {
  *(int*)data = percent;
  fprintf(stderr, "\r%3d %%", percent);
  return true;
}

int main(int argc, char** argv) {
  DSD_INFO info = {0};
  int last = -1;
  FILE* output;
  int result;
  if (argc != 4) {
    fprintf(stderr, "usage: 2_convert FILE OUTPUT RATE\n");
    return 2;
  }
  if (DSDInfo(argv[1], &info) != 0 || info.format == 0) {
    fprintf(stderr, "%s is no DSD file\n", argv[1]);
    return 1;
  }
  output = fopen(argv[2], "wb");
  if (!output) {
    perror(argv[2]);
    return 1;
  }
  result = DSDtoPCM(argv[1], output, tell, &last, 0, 0, atoi(argv[3]), 24, false);
  if (last >= 0) fputc('\n', stderr);
  /* The conversion leaves failures to write to the stream. */
  if (ferror(output) != 0) result = -1;
  if (fclose(output) != 0) result = -1;
  if (result != 0) {
    fprintf(stderr, "%s could not be converted\n", argv[1]);
    remove(argv[2]);
    return 1;
  }
  printf("%s holds %s at %s Hz\n", argv[2], info.channels == 1 ? "mono" : "stereo", argv[3]);
  return 0;
}
