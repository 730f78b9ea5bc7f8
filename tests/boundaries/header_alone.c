/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * corvin.h through a plain C99 and a plain C++11 compiler with every warning an error; linked, so
 * that the library exports what the header declares. Beside it every header is compiled before
 * anything else and twice. */

#include "corvin.h"

#include <string.h>

/* Comes up when a declaration changes: callers in C are not told by their linkers. */
static int (*const info)(const char*, DSD_INFO*) = DSDInfo;
static int (*const to_pcm)(const char*, void*, CorvinProgressCallback, void*, int, int, int, int,
                           bool) = DSDtoPCM;
static int (*const read_tags)(const char*, DSD_TAG*) = DSDTag;
static void (*const buffer_to_pcm)(char*, int, int, char*, int, int) = RTBufDSDtoPCM;

int main(void) {
  DSD_INFO record;
  static DSD_TAG tag;
  record.format = 7;
  WriteLog("nothing comes of it");
  ProgressWaitNS(0);
  if (info("/no/such/file", &record) != -1) return 1;
  if (read_tags("/no/such/file", &tag) != -1 || tag.pictureCount != 0) return 3;
  if (to_pcm("/no/such/file", stdout, NULL, NULL, 0, 0, 88200, 24, false) != -1) return 2;
  if (strlen(corvin_version()) < 5) return 6;
  if (CommentLanguage[0] != 'j' || genre_names[genre_alpha_map[0]][0] != 'A') return 4;
  DSDTagClear(&tag);
  dsd2pcm_destroy(dsd2pcm_init());
  CloseDSDtoPCMBuf(GetCDSDtoPCMBufClass(0, 0, false, 0, false));
  if (DSDDecodeExit(DSDDecodeInit(0)) != 0 || DSDEncodeExit(DSDEncode()) != 0) return 5;
  buffer_to_pcm(NULL, 0, 0, NULL, 0, 0); /* arguments out of range: nothing is touched */
  return GetCPU_GPU_Cores(1) == 0;
}
