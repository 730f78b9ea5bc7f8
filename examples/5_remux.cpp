// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The sound of a DSD file, bit for bit, and its tags into another container:
//   5_remux FILE OUT dsf|dff

#include <corvin.hpp>
#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  const std::string kind = argc == 4 ? argv[3] : "";
  if (kind != "dsf" && kind != "dff") {
    std::fprintf(stderr, "usage: 5_remux FILE OUT dsf|dff\n");
    return 2;
  }
  const char* at_work = argv[1];  // for messages
  try {
    corvin::File file(argv[1]);
    const corvin_file_info info = file.info();
    if (const std::string problem = file.problem(); !problem.empty()) {
      std::fprintf(stderr, "%s: %s\n", argv[1], problem.c_str());
      return 1;
    }
    const corvin::Tags tags = file.tags();

    at_work = argv[2];
    corvin::WriterSettings settings;
    settings.container = kind == "dsf" ? CORVIN_DSF : CORVIN_DSDIFF;
    settings.dsd_rate = info.dsd_rate;
    settings.channels = info.channels;
    settings.speakers = info.speakers;
    corvin::Writer writer(argv[2], settings);
    writer.set_tags(tags);
    corvin::convert_copy(file, writer);
    for (const std::string& warning : file.warnings())
      std::fprintf(stderr, "%s: %s\n", argv[1], warning.c_str());
    std::printf("\"%s\", %zu pictures\n", corvin::text_of(tags.title).c_str(),
                tags.all_pictures().size());
    return 0;
  } catch (const corvin::Error& error) {
    std::fprintf(stderr, "%s: %s\n", at_work, error.what());
    return 1;
  }
}
