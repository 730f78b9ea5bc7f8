// SPDX-License-Identifier: MIT
// Copyright (c) 2026 The Corvin developers

#include "cli/files/interrupt.h"

#include <signal.h>
#include <unistd.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "cli/words/screen.h"

namespace corvin::cli {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

struct Interrupts {
  std::mutex mutex;
  std::condition_variable released;
  int holders = 0;
  bool is_ending = false;
  std::set<std::string> doomed;
};

// Never destroyed: a signal may come while the process is on its way out.
Interrupts& interrupts() {
  static auto* all = new Interrupts;
  return *all;
}

// An inner one must not wait for an end that waits for the outer one.
thread_local int holds_of_this_thread = 0;

[[noreturn]] void die_of(int signal) {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, signal);
  pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
  raise(signal);
  _exit(128 + signal);  // not reached: nothing keeps the signal from us any more
}

void wait_for_the_end(sigset_t signals) {
  int signal = 0;
  while (sigwait(&signals, &signal) != 0) {
  }
  Interrupts& all = interrupts();
  std::unique_lock lock(all.mutex);
  all.is_ending = true;
  all.released.wait(lock, [&] { return all.holders == 0; });
  for (const std::string& path : all.doomed) unlink(path.c_str());
  leave_screen();
  die_of(signal);
}

}  // namespace

void end_on_interrupts() {
  sigset_t signals;
  sigemptyset(&signals);
  bool are_all_ignored = true;
  for (const int number : kSignals) {
    struct sigaction action;
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    sigaddset(&signals, number);
    are_all_ignored = false;
  }
  if (are_all_ignored) return;
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread(wait_for_the_end, signals).detach();
  } catch (const std::system_error&) {
    // Without a thread the signals do what they do to any program.
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

InterruptsHeld::InterruptsHeld() {
  if (holds_of_this_thread++ != 0) return;
  Interrupts& all = interrupts();
  std::unique_lock lock(all.mutex);
  all.released.wait(lock, [&] { return !all.is_ending; });  // for ever, once the end has begun
  ++all.holders;
}

InterruptsHeld::~InterruptsHeld() {
  if (--holds_of_this_thread != 0) return;
  Interrupts& all = interrupts();
  const std::lock_guard lock(all.mutex);
  --all.holders;
  all.released.notify_all();
}

void remove_on_interrupt(const std::string& path) {
  Interrupts& all = interrupts();
  const std::lock_guard lock(all.mutex);
  all.doomed.insert(path);
}

void keep_on_interrupt(const std::string& path) {
  Interrupts& all = interrupts();
  const std::lock_guard lock(all.mutex);
  all.doomed.erase(path);
}

}  // namespace corvin::cli
