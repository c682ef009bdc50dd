// The printer's network port.
#ifndef TARVO_TSPLPRINTER_LISTENER_H_
#define TARVO_TSPLPRINTER_LISTENER_H_

#include <string>

#include "files/descriptor.h"

namespace tsplprinter {

class Listener {
 public:
  /// Takes the port of 127.0.0.1, or any that is free for 0. Connections are refused until
  /// Listen(). Throws std::system_error, as all of these do.
  explicit Listener(int port);

  /// "127.0.0.1:9100"
  const std::string& address() const { return address_; }

  /// Lets clients connect: they wait until they are accepted. With `small_buffer` the system takes
  /// little of a job before it is read, as a printer's own memory does.
  void Listen(bool small_buffer);

  /// What becomes readable when a client waits.
  const files::Descriptor& socket() const { return socket_; }

  /// The client that waits longest; none when it has gone already. Never blocks.
  files::Descriptor Accept();

 private:
  files::Descriptor socket_;
  std::string address_;
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_LISTENER_H_
