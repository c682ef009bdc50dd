// What is left to do where there is no memory even to say so.
#ifndef TARVO_COMMON_NO_MEMORY_H_
#define TARVO_COMMON_NO_MEMORY_H_

/// From here on an exception that can't be thrown, because there is no memory for it either, ends
/// the process as one that was caught would: what the streams hold is written, `lastWords` go to
/// standard error, and the exit status is 1. `lastWords` is a whole line and lives as long as the
/// process.
void tarvoEndWithoutMemory(const char* lastWords);

#endif  // TARVO_COMMON_NO_MEMORY_H_
