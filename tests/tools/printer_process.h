// A tsplprinter that runs beside the test, and clients for it.
#ifndef TARVO_TESTS_TOOLS_PRINTER_PROCESS_H_
#define TARVO_TESTS_TOOLS_PRINTER_PROCESS_H_

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "temporary_folder.h"

namespace test {

/// Nothing here waits longer than this for the printer.
constexpr int kPatienceSeconds = 10;

class PrinterProcess {
 public:
  /// Starts it in `folder`, which must outlive it and gets its standard error as the file "err".
  /// `preloaded` is a library that stands in for parts of the system's.
  PrinterProcess(const TemporaryFolder& folder, std::vector<std::string> arguments,
                 const char* preloaded = nullptr);
  /// Kills it if it still runs.
  ~PrinterProcess();
  PrinterProcess(const PrinterProcess&) = delete;
  PrinterProcess& operator=(const PrinterProcess&) = delete;

  /// The next line of its standard output without the line end; what there is of one at the end of
  /// the output, or when patience ends.
  std::string Line();

  /// Lines up to the one that says where it listens; its port, 0 when it does not listen.
  int ListeningPort();

  /// Waits for so many bytes of its standard output to be unread. False when patience ends.
  bool WaitForUnread(int bytes) const;

  /// Closes the test's end of its standard output.
  void CloseOutput();

  void Signal(int signal) const;

  /// From now on it can write no file of more than so many bytes, as if the disk were full.
  void LimitFiles(std::uint64_t bytes) const;

  /// What its descriptors are of, as /proc tells it: those that a program started by it would get,
  /// or those that it would not. Without what this process left to it.
  std::vector<std::string> Descriptors(bool inheritable) const;

  /// Waits for its end. Returns its exit status; -1 when it was killed or had to be.
  int Wait();

  /// What is left of its standard output.
  std::string Rest();

 private:
  pid_t process_ = -1;
  int output_ = -1;
  std::string unread_;
};

class Client {
 public:
  /// Connects to the port of `address`.
  explicit Client(int port, const char* address = "127.0.0.1");
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  /// 0, or why it is not connected, as errno says it.
  int error() const { return error_; }

  /// False when the connection broke.
  bool Send(std::string_view bytes) const;

  /// Says that nothing more will be sent.
  void Finish() const;

  /// Breaks the connection off.
  void Reset();

  /// How the printer ends the connection: "closed", "reset", or what else came of waiting for it.
  std::string Ending() const;

  /// Sends all of a job and returns its ending.
  std::string Print(std::string_view job) const;

 private:
  int socket_;
  int error_ = 0;
};

}  // namespace test

#endif  // TARVO_TESTS_TOOLS_PRINTER_PROCESS_H_
