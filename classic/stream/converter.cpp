// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// Ending and waiting for what a converter holds.

#include "classic/stream/converter.h"

namespace {
constexpr float kPollSeconds = 0.5f;
}

StreamConverter::~StreamConverter() {
  for (auto& stage : channel_stages_) stage.reset();
  reader_.reset();
  if (writer_) writer_->Wait();
}

int StreamConverter::PollAndWait(bool (*progress)(void*), void* context) {
  do {
    ProgressWaitNS(kPollSeconds);
  } while (!progress || progress(context));
  return writer_ ? writer_->Wait() : 0;
}

CDSDtoPCM::CDSDtoPCM(CorvinReadCallback, void*, CorvinReadCallback, void*, int, int, int, int) {}
CDSDtoPCM::~CDSDtoPCM() = default;

int CDSDtoPCM::Translate(bool (*progress)(void*), void* context) {
  return PollAndWait(progress, context);
}

CPCMtoDSD2::CPCMtoDSD2(CorvinReadCallback, void*, CorvinReadCallback, void*, int, int, int, int) {}
CPCMtoDSD2::~CPCMtoDSD2() = default;

int CPCMtoDSD2::Translate(bool (*progress)(void*), void* context) {
  return PollAndWait(progress, context);
}
