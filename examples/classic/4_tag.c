/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The Corvin developers
 *
 * A copy of a DSF file with another title and artist; all other tags are kept:
 *   4_tag FILE COPY TITLE ARTIST
 * The header of a DSF file holds the file's size at byte 12 and the place of the tag, behind the
 * sound, at byte 20: 64-bit little-endian numbers. */

#include <corvin.h>
#include <stdio.h>
#include <string.h>

static uint64_t get_number(const unsigned char* at) {
  uint64_t number = 0;
  int i;
  for (i = 7; i >= 0; --i) number = number << 8 | at[i];
  return number;
}

static void put_number(unsigned char* at, uint64_t number) {
  int i;
  for (i = 0; i < 8; ++i) at[i] = (unsigned char)(number >> (8 * i));
}

/* Copies up to `bytes` bytes and returns their number. */
static uint64_t copy(FILE* from, FILE* to, uint64_t bytes) {
  static unsigned char buffer[65536];
  uint64_t copied = 0;
  size_t count = 1;
  while (copied < bytes && count > 0) {
    const uint64_t left = bytes - copied;
    count = fread(buffer, 1, left < sizeof buffer ? (size_t)left : sizeof buffer, from);
    if (fwrite(buffer, 1, count, to) != count) break;
    copied += count;
  }
  return copied;
}

static int write_copy(FILE* from, FILE* to, const DSD_TAG* tag) {
  unsigned char header[28];
  uint64_t sound_end;
  int tag_bytes;
  if (fread(header, 1, sizeof header, from) != sizeof header) return 0;
  if (memcmp(header, "DSD ", 4) != 0) return 0;
  sound_end = get_number(header + 20);
  if (sound_end == 0) sound_end = UINT64_MAX; /* no tag yet: all of the file */
  if (sound_end < sizeof header) return 0;
  if (fwrite(header, 1, sizeof header, to) != sizeof header) return 0;
  sound_end = sizeof header + copy(from, to, sound_end - sizeof header);
  tag_bytes = Write_id3tag_v2(to, tag);
  if (tag_bytes < 0) return 0;
  put_number(header + 12, sound_end + (uint64_t)tag_bytes);
  put_number(header + 20, sound_end);
  return fseek(to, 0, SEEK_SET) == 0 && fwrite(header, 1, sizeof header, to) == sizeof header &&
         !ferror(from) && !ferror(to);
}

int main(int argc, char** argv) {
  static DSD_TAG tag; /* starts as zeros */
  FILE* from;
  FILE* to;
  int written;
  if (argc != 5) {
    fprintf(stderr, "usage: 4_tag FILE COPY TITLE ARTIST\n");
    return 2;
  }
  DSDTag(argv[1], &tag); /* without a tag the record is empty */
  snprintf(tag.title, sizeof tag.title, "%s", argv[3]);
  snprintf(tag.artist, sizeof tag.artist, "%s", argv[4]);

  from = fopen(argv[1], "rb");
  to = from ? fopen(argv[2], "wbx") : NULL; /* a file that is there already stays as it is */
  if (!to) {
    perror(from ? argv[2] : argv[1]);
    return 1;
  }
  written = write_copy(from, to, &tag);
  fclose(from);
  if (fclose(to) != 0 || !written) {
    fprintf(stderr, "%s could not be tagged\n", argv[1]);
    remove(argv[2]);
    return 1;
  }
  if (DSDTag(argv[2], &tag) != 0) return 1;
  printf("%s by %s, %d pictures\n", tag.title, tag.artist, (int)tag.pictureCount);
  DSDTagClear(&tag);
  return 0;
}
