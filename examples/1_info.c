/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * What is in a DSD file, and what is wrong with it:  1_info FILE */

#include <corvin.h>
#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  static const char* const kinds[] = {"", "DSDIFF", "DSF", "1bit"};
  corvin_file* file;
  corvin_file_info info = {0};
  const char* sentence;
  uint32_t i;
  int status;
  if (argc != 2) {
    fprintf(stderr, "usage: 1_info FILE\n");
    return 2;
  }
  status = corvin_file_open(argv[1], &file);
  if (status != CORVIN_OK) {
    const int system_error = errno; /* for what cannot be opened or read it tells more */
    fprintf(stderr, "%s: %s\n", argv[1],
            status == CORVIN_E_READ && system_error != 0 ? strerror(system_error)
                                                         : corvin_strerror(status));
    return 1;
  }

  info.size = sizeof info; /* tells the library which fields this program knows */
  corvin_file_get_info(file, &info);
  printf("%s\n%" PRIu32 " channels at %" PRIu32 " Hz\n%.3f seconds\n", kinds[info.container],
         info.channels, info.dsd_rate,
         info.dsd_rate != 0 ? (double)info.samples / info.dsd_rate : 0.0);
  for (i = 0; (sentence = corvin_file_warning(file, i)) != NULL; ++i)
    printf("%s: %s\n", argv[1], sentence);
  sentence = corvin_file_problem(file);
  if (sentence != NULL) printf("%s: %s\n", argv[1], sentence);
  corvin_file_close(file);
  return sentence != NULL;
}
