// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The ID3v1 genres, by number and in the order in which a host lists them.

#include "corvin.h"

extern "C" {

// clang-format off
const char* const genre_names[CORVIN_GENRE_COUNT] = {
    "Blues", "Classic Rock", "Country", "Dance", "Disco", "Funk", "Grunge", "Hip-Hop", "Jazz",
    "Metal", "New Age", "Oldies", "Other", "Pop", "R&B", "Rap", "Reggae", "Rock", "Techno",
    "Industrial", "Alternative", "Ska", "Death Metal", "Pranks", "Soundtrack", "Euro-Techno",
    "Ambient", "Trip-Hop", "Vocal", "Jazz+Funk", "Fusion", "Trance", "Classical", "Instrumental",
    "Acid", "House", "Game", "Sound Clip", "Gospel", "Noise", "Alt. Rock", "Bass", "Soul", "Punk",
    "Space", "Meditative", "Instrumental Pop", "Instrumental Rock", "Ethnic", "Gothic", "Darkwave",
    "Techno-Industrial", "Electronic", "Pop-Folk", "Eurodance", "Dream", "Southern Rock", "Comedy",
    "Cult", "Gangsta Rap", "Top 40", "Christian Rap", "Pop/Funk", "Jungle", "Native American",
    "Cabaret", "New Wave", "Psychedelic", "Rave", "Showtunes", "Trailer", "Lo-Fi", "Tribal",
    "Acid Punk", "Acid Jazz", "Polka", "Retro", "Musical", "Rock & Roll", "Hard Rock", "Folk",
    "Folk/Rock", "National Folk", "Swing", "Fast-Fusion", "Bebob", "Latin", "Revival", "Celtic",
    "Bluegrass", "Avantgarde", "Gothic Rock", "Progressive Rock", "Psychedelic Rock",
    "Symphonic Rock", "Slow Rock", "Big Band", "Chorus", "Easy Listening", "Acoustic", "Humour",
    "Speech", "Chanson", "Opera", "Chamber Music", "Sonata", "Symphony", "Booty Bass", "Primus",
    "Porn Groove", "Satire", "Slow Jam", "Club", "Tango", "Samba", "Folklore", "Ballad",
    "Power Ballad", "Rhythmic Soul", "Freestyle", "Duet", "Punk Rock", "Drum Solo", "A Cappella",
    "Euro-House", "Dance Hall", "Goa", "Drum & Bass", "Club-House", "Hardcore", "Terror", "Indie",
    "BritPop", "Negerpunk", "Polsk Punk", "Beat", "Christian Gangsta Rap", "Heavy Metal",
    "Black Metal", "Crossover", "Contemporary Christian", "Christian Rock", "Merengue", "Salsa",
    "Thrash Metal", "Anime", "JPop", "Synthpop"
};
// clang-format on

// Alphabetical but for 40, "Alt. Rock", which hosts' pickers show right after "Alternative".
const int genre_alpha_map[CORVIN_GENRE_COUNT] = {
    123, 34, 74,  73,  99,  20,  40,  26,  145, 90,  116, 41,  135, 85,  96,  138, 89,  0,  107,
    132, 65, 88,  104, 102, 97,  136, 61,  141, 32,  1,   112, 128, 57,  140, 2,   139, 58, 3,
    125, 50, 22,  4,   55,  127, 122, 120, 98,  52,  48,  54,  124, 25,  84,  80,  115, 81, 119,
    5,   30, 36,  59,  126, 38,  49,  91,  6,   129, 79,  137, 7,   35,  100, 131, 19,  33, 46,
    47,  8,  29,  146, 63,  86,  71,  45,  142, 9,   77,  82,  64,  133, 10,  66,  39,  11, 103,
    12,  75, 134, 13,  53,  62,  109, 117, 23,  108, 92,  67,  93,  43,  121, 15,  68,  14, 16,
    76,  87, 118, 17,  78,  143, 114, 110, 69,  21,  111, 95,  105, 42,  37,  24,  56,  44, 101,
    83,  94, 106, 147, 113, 18,  51,  130, 144, 60,  70,  31,  72,  27,  28};

void id3tag_genre_list(CorvinGenreCallback callback, void* user) {
  if (callback == nullptr) return;
  for (const int genre : genre_alpha_map) callback(genre, genre_names[genre], user);
}

}  // extern "C"
