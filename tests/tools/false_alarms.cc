// Preloaded into tsplprinter: whenever its main thread waits for what is not there yet, it seems to
// have come, and is not there; only the next time it really waits. A system may wake whoever waits
// for a client that is gone again, or for bytes whose checksum turns out wrong. Other threads wait
// as ever.
//
// TARVO_TEST_SIGTERM: SIGTERM comes with the first false alarm of a socket that listens, "1", or of
// one that is connected, "0".
//
// Plain C inside: this code runs before anything else in the process.
#include <dlfcn.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#pragma GCC diagnostic ignored "-Wredundant-decls"  // the C library's header may define it as well

namespace {

bool bringsSigterm(int socket) {
  const char* kind = getenv("TARVO_TEST_SIGTERM");
  int listens = 0;
  socklen_t size = sizeof listens;
  return kind != nullptr && getsockopt(socket, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0 &&
         listens == atoi(kind);
}

}  // namespace

extern "C" int poll(pollfd* watched, nfds_t count, int milliseconds) {
  static bool alarmed = false;
  const auto real = reinterpret_cast<int (*)(pollfd*, nfds_t, int)>(dlsym(RTLD_NEXT, "poll"));
  if (gettid() != getpid()) return real(watched, count, milliseconds);
  const int found = real(watched, count, alarmed ? milliseconds : 0);
  alarmed = !alarmed && found == 0;
  if (!alarmed) return found;
  if (bringsSigterm(watched[count - 1].fd)) kill(getpid(), SIGTERM);
  watched[count - 1].revents = POLLIN;
  return 1;
}
