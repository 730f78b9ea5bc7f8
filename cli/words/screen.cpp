// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/words/screen.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace corvin::cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPause{100};

// What cannot be told is no reason to fail.
void write_out(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    text.remove_prefix(static_cast<size_t>(written));
  }
}

bool has_cursor() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) == 1 && terminal && std::string_view(terminal) != "dumb";
}

// A job in the background has no business on the screen that it was started from.
bool is_in_front() {
  const pid_t front = tcgetpgrp(STDERR_FILENO);
  return front < 0 || front == getpgrp();
}

winsize size_of_terminal() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) size.ws_col = 80;
  if (size.ws_row == 0) size.ws_row = 24;
  return size;
}

}  // namespace

class Screen {
 public:
  // Never destroyed: an interrupt may come while the process is on its way out.
  static Screen& get() {
    static auto* screen = new Screen;
    return *screen;
  }

  void print(std::string_view words) {
    const std::lock_guard lock(mutex_);
    std::string text = erasure() + std::string(words);
    drawn_ = 0;
    if (!lines_.empty()) text += drawing();
    write_out(text);
  }

  void add(const ScreenLine* line) {
    if (!has_cursor_) return;
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
  }

  void remove(const ScreenLine* line) {
    if (!has_cursor_) return;
    const std::lock_guard lock(mutex_);
    std::erase(lines_, line);
    // With others at work the next one draws: many short jobs do not flicker.
    if (lines_.empty() ? drawn_ != 0 : Clock::now() - drawn_at_ >= kPause) draw();
  }

  void refresh() {
    if (!has_cursor_) return;
    const std::lock_guard lock(mutex_);
    if (Clock::now() - drawn_at_ >= kPause) draw();
  }

  void leave() {
    // A terminal that has been stopped, or a full pipe, must not keep the process alive. The system's
    // clock, as the thread sanitizer does not see a lock that is waited for by the steady one.
    const std::unique_lock lock(mutex_,
                                std::chrono::system_clock::now() + std::chrono::milliseconds(200));
    pollfd ready{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    if (!lock || poll(&ready, 1, 0) != 1 || !(ready.revents & POLLOUT)) return;
    lines_.clear();
    write_out(erasure() + "corvin: interrupted\n");
    drawn_ = 0;
  }

 private:
  void draw() {
    std::string text = erasure();
    drawn_ = 0;
    text += drawing();
    write_out(text);
  }

  // From the end of the last line, where the cursor is left, up to the first.
  std::string erasure() const {
    std::string text;
    for (size_t i = 0; i < drawn_; ++i) text += i == 0 ? "\r\x1b[K" : "\x1b[1A\x1b[K";
    return text;
  }

  std::string drawing() {
    std::string text;
    drawn_at_ = Clock::now();
    if (!is_in_front()) return text;
    const winsize size = size_of_terminal();
    const size_t most = std::min<size_t>(lines_.size(), std::max(1, size.ws_row - 1));
    // A character in the last cell would leave some terminals' cursor on the next line.
    for (; drawn_ < most; ++drawn_)
      text += (drawn_ == 0 ? "" : "\n") + lines_[drawn_]->text_(size.ws_col - 1u);
    return text;
  }

  std::timed_mutex mutex_;
  const bool has_cursor_ = has_cursor();
  std::vector<const ScreenLine*> lines_;
  size_t drawn_ = 0;
  Clock::time_point drawn_at_{};
};

void print_words(std::string_view lines) { Screen::get().print(lines); }

void leave_screen() { Screen::get().leave(); }

ScreenLine::ScreenLine(std::function<std::string(size_t cells)> text) : text_(std::move(text)) {
  Screen::get().add(this);
}

ScreenLine::~ScreenLine() { Screen::get().remove(this); }

void ScreenLine::refresh() { Screen::get().refresh(); }

}  // namespace corvin::cli
