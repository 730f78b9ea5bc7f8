/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * What is in a DSD file:  1_query FILE */

#include <corvin.h>
#include <inttypes.h>
#include <stdio.h>

int main(int argc, char** argv) {
  static const char* const kinds[] = {"no DSD file", "DSDIFF", "DSF", "1bit"};
  DSD_INFO info = {0}; /* `format` stays 0 for a file of no known kind */
  if (argc != 2) {
    fprintf(stderr, "usage: 1_query FILE\n");
    return 2;
  }
  if (DSDInfo(argv[1], &info) != 0) {
    fprintf(stderr, "%s cannot be opened\n", argv[1]);
    return 1;
  }
  printf("%s\n", kinds[info.format]);
  if (info.format == 0) return 1;
  printf("%" PRIu32 " channels at %" PRIu32 " Hz\n", info.channels, info.samplingFrequency);
  if (info.samplingFrequency != 0)
    printf("%.3f seconds\n", (double)info.sampleCount / info.samplingFrequency);
  return 0;
}
