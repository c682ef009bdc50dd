// Preloaded into tsplprinter: every other time that its main thread waits, something seems to have
// come that is not there. A system may wake whoever waits for a client that is gone again, or for
// bytes whose checksum turns out wrong. Other threads wait as ever.
//
// Plain C inside: this code runs before anything else in the process.
#include <dlfcn.h>
#include <poll.h>
#include <unistd.h>

#pragma GCC diagnostic ignored "-Wredundant-decls"  // the C library's header may define it as well

extern "C" int poll(pollfd* watched, nfds_t count, int milliseconds) {
  static bool alarm = false;
  const auto real = reinterpret_cast<int (*)(pollfd*, nfds_t, int)>(dlsym(RTLD_NEXT, "poll"));
  if (gettid() != getpid()) return real(watched, count, milliseconds);
  alarm = !alarm;
  const int found = real(watched, count, alarm ? 0 : milliseconds);
  if (!alarm || found != 0) return found;
  watched[count - 1].revents = POLLIN;
  return 1;
}
