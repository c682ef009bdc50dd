// The descriptors 0, 1 and 2, which whoever starts a process may leave closed.
#ifndef TARVO_COMMON_STANDARD_STREAMS_H_
#define TARVO_COMMON_STANDARD_STREAMS_H_

/// Takes the place of each that is closed, so that no file that is opened later gets its number,
/// and with it the printer's bytes or the log. Reading and writing them fails as before. Call it
/// before anything is opened.
void tarvoFillStandardStreams();

#endif  // TARVO_COMMON_STANDARD_STREAMS_H_
