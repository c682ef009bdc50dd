"""What stands between a queue and its printer, and fails now and then."""
import socket
import threading
import time


class Relay:
    """Passes each connection on to a printer, and fails at some of those that bring a job:

    drop         of the jobs with these bytes in their first 200, every second is passed on up to
                 drop_after bytes, and then reset on both sides: the printer was switched off,
    pause_each   of all jobs, each that many-th is not read for pause_seconds: it is out of paper.
    """

    def __init__(self, printer_port, drop=None, drop_after=20000, pause_each=0, pause_seconds=2):
        self.jobs = self.dropped = self.paused = 0
        self._printer_port = printer_port
        self._drop, self._drop_after = drop, drop_after
        self._drop_next = True
        self._pause_each, self._pause_seconds = pause_each, pause_seconds
        self._listener = socket.socket()
        # A small window, so that what is not read has not left the spooler.
        self._listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        self._listener.bind(("127.0.0.1", 0))
        self._listener.listen()
        self.port = self._listener.getsockname()[1]
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            client, _ = self._listener.accept()
            with client, socket.create_connection(("127.0.0.1", self._printer_port)) as printer:
                if not self._pass_on(client, printer):
                    self.dropped += 1
                    for end in (client, printer):
                        # Closing is a reset now.
                        end.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")

    def _pass_on(self, client, printer):
        """False for a job that is dropped, after its first bytes."""
        first = b""
        while len(first) < 200 and (part := client.recv(200 - len(first))):
            first += part
        if not first:
            return True
        self.jobs += 1
        drop = False
        if self._drop and self._drop in first:
            drop, self._drop_next = self._drop_next, not self._drop_next
        if self._pause_each and self.jobs % self._pause_each == 0:
            self.paused += 1
            time.sleep(self._pause_seconds)
        printer.sendall(first)
        passed = len(first)
        while part := client.recv(min(65536, self._drop_after - passed) if drop else 65536):
            printer.sendall(part)
            passed += len(part)
            if drop and passed == self._drop_after:
                time.sleep(0.1)  # the printer takes them first
                return False
        printer.shutdown(socket.SHUT_WR)
        while printer.recv(65536):  # it closes when it has the whole job
            pass
        return True
