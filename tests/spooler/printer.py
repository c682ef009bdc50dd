"""A printer that is not there: takes what the spooler sends to a raw socket."""
import socket
import threading
import time


def free_port():
    """A loopback port that nobody listens on."""
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Printer:
    """Listens on a loopback port; each connection is a job. Use it in a with statement.

    bytes_per_second: reads no faster.
    drop_after: closes the connection, unread bytes and all, after as many bytes, once.
    """

    def __init__(self, port=0, bytes_per_second=None, drop_after=None):
        self.jobs = []          # the bytes of each connection that ended by itself
        self.dropped = []       # the bytes of those that this printer dropped
        self.receiving = b""    # of the connection that is open
        self.bytes_per_second = bytes_per_second
        self.drop_after = drop_after
        self._changed = threading.Condition()
        self._stopped = False
        self._connection = None
        self._listener = socket.socket()
        self._listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        # A small window, so that a slow printer holds the filter back as a real one does.
        self._listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        self._listener.bind(("127.0.0.1", port))
        self._listener.listen()
        self.port = self._listener.getsockname()[1]
        self._thread = threading.Thread(target=self._serve, daemon=True)
        self._thread.start()

    @property
    def uri(self):
        return f"socket://127.0.0.1:{self.port}"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def finish(self):
        """Ends the job that it is at, if any, and is gone."""
        self._listener.shutdown(socket.SHUT_RDWR)
        self._thread.join(60)
        self._listener.close()

    def stop(self):
        """Gone, in the middle of a job too."""
        self._stopped = True
        for end in (self._listener, self._connection):
            if end is not None:
                try:
                    end.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass
        self._thread.join(5)
        self._listener.close()

    def wait(self, condition, seconds=20):
        """Waits until condition(self) holds. False when it does not in time."""
        with self._changed:
            return self._changed.wait_for(lambda: condition(self), seconds)

    def _note(self, change):
        with self._changed:
            change()
            self._changed.notify_all()

    def _serve(self):
        while not self._stopped:
            try:
                self._connection, _ = self._listener.accept()
            except OSError:
                return
            with self._connection as connection:
                self._take(connection)

    def _take(self, connection):
        received = b""
        while True:
            size = 65536 if self.bytes_per_second is None else max(1, self.bytes_per_second // 50)
            try:
                part = connection.recv(size)
            except OSError:
                part = None
            if not part:
                break
            received += part
            self._note(lambda: setattr(self, "receiving", received))
            if self.drop_after is not None and len(received) >= self.drop_after:
                self.drop_after = None
                # A reset, as of a printer that is switched off.
                connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")
                part = None
                break
            if self.bytes_per_second is not None:
                time.sleep(len(part) / self.bytes_per_second)
        ended = part == b"" and not self._stopped
        self._note(lambda: (self.jobs if ended else self.dropped).append(received))
        self._note(lambda: setattr(self, "receiving", b""))
