#include "files/unfinished.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>

namespace files {
namespace {

// Nothing here is ever freed: a signal or another thread may look at any time.
struct Slot {
  std::atomic<bool> taken;
  std::atomic<bool> marked;
  char path[PATH_MAX];
};

std::array<Slot, 4> slots;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may not wait for a lock");

void OnSignal(int signal) {
  RemoveUnfinished();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

void RemoveUnfinished() {
  for (const Slot& slot : slots) {
    if (slot.marked) unlink(slot.path);
  }
}

void RemoveUnfinishedAtSignals() {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = OnSignal;
    sigaction(signal, &action, nullptr);
  }
}

SignalsHeld::SignalsHeld() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before_);
}

SignalsHeld::~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

void Unfinished::Set(const std::string& path) {
  if (path.size() >= sizeof Slot::path) return;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (slots[i].taken.exchange(true)) continue;
    std::copy_n(path.c_str(), path.size() + 1, slots[i].path);
    slots[i].marked = true;
    slot_ = static_cast<int>(i);
    return;
  }
}

void Unfinished::Clear() {
  if (slot_ < 0) return;
  Slot& slot = slots[static_cast<std::size_t>(slot_)];
  slot.marked = false;
  slot.taken = false;
  slot_ = -1;
}

}  // namespace files
