// The descriptors 0, 1 and 2, as whoever starts a process may leave them.
#ifndef TARVO_COMMON_STANDARD_STREAMS_H_
#define TARVO_COMMON_STANDARD_STREAMS_H_

/// Takes the place of each that is closed, so that no file that is opened later gets its number,
/// and with it the printer's bytes or the log. Reading and writing them fails as before. Call it
/// before anything is opened.
void tarvoFillStandardStreams();

/// Lets writes to standard output wait for its reader, as long as it lives. A stream that does not
/// wait would lose what its reader is not ready for. Others may share the stream: it is put back as
/// it was.
class WaitingOutput {
 public:
  WaitingOutput();
  ~WaitingOutput();

  WaitingOutput(const WaitingOutput&) = delete;
  WaitingOutput& operator=(const WaitingOutput&) = delete;

 private:
  int flags_;  ///< those of before, or -1 where nothing has to be put back
};

#endif  // TARVO_COMMON_STANDARD_STREAMS_H_
