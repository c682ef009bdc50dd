// SIGTERM as a request that a filter looks at when it can stop, and waiting that ends with it.
//
// The spooler cancels a job with SIGTERM. A printer that was promised the dots of a bitmap must get
// them, so the signal may not end the process just anywhere; but a filter that waits for input
// must not wait on. No moment is left in which the signal could be missed:
//   - It is blocked all the time but inside the one call that waits (ppoll, which lifts the block
//     and waits in one step). Nothing else is ever interrupted, no write is cut short, and output
//     needs no care.
//   - Before each wait the pending signals are looked at. One that comes after that look is still
//     pending when the wait begins, and ends it.
//   - A wait that need not wait, because there is input, may leave the signal pending; the look
//     before the next one finds it.
#ifndef TARVO_COMMON_TERMINATION_H_
#define TARVO_COMMON_TERMINATION_H_

#include <sys/types.h>

#include <cstddef>

/// From here on SIGTERM is a request that tarvoIsTerminated reports. SIGPIPE ends the process when
/// nobody reads standard output any more, also when whoever started it had it ignored: nobody is
/// left to print for. A log that nobody reads, or a file that may not grow, does not end it, least
/// of all inside a bitmap. Call it early in main.
void tarvoCatchTermination();

/// Whether SIGTERM has come since tarvoCatchTermination.
bool tarvoIsTerminated();

/// As read(2), interrupted by nothing but SIGTERM: then, or when it had come before, -1 with errno
/// EINTR.
ssize_t tarvoReadUnlessTerminated(int descriptor, void* bytes, std::size_t size);

/// As write(2) of all `size` bytes, however long the reader takes: returns `size`, or -1 with errno
/// set, EINTR for SIGTERM. Some of the bytes may have been written then.
ssize_t tarvoWriteUnlessTerminated(int descriptor, const void* bytes, std::size_t size);

#endif  // TARVO_COMMON_TERMINATION_H_
