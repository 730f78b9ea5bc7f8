// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers
//
// The loop of a filter worker.

#include "classic/foundation/filter_worker.h"

#include <cstring>

FilterWorker::FilterWorker(int mailbox_bytes) {
  mailbox_.Init(mailbox_bytes, 1);
  std::memset(mailbox_.data, 0, static_cast<std::size_t>(mailbox_.size));
}

void FilterWorker::CopyIn(const void* data, int bytes) {
  if (bytes > 0) std::memcpy(mailbox_.data, data, static_cast<std::size_t>(bytes));
}

void FilterWorker::StartWorker() {
  running_ = true;
  thread_ = std::thread(&FilterWorker::Run, this);
}

void FilterWorker::StopWorker() {
  mailbox_.Write1Lock(0, 0);  // a job that was posted is finished first
  running_ = false;
  mailbox_.Write1Unlock(0, 0);
  thread_.join();
}

void FilterWorker::Run() {
  ready_.Open();
  for (;;) {
    mailbox_.Read1Lock(0);
    if (!running_) return;
    const int length = mailbox_.length;
    {
      const std::lock_guard lock(data_lock_);
      const int bytes = length < 1 ? length : Filter(mailbox_.data, length, *out_);
      out_->Write1Unlock(0, bytes);
    }
    mailbox_.Read1Unlock(0);
    if (length < 1) return;
    BecomeIdle();
  }
}
