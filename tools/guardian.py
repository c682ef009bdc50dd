"""Ends a private CUPS when its user is gone, however that went.

    guardian.py FOLDER

Its standard input is a pipe that nobody but its user, a test or tools/queue, holds. The user writes
the ids of processes to it. When the pipe closes, because the user is done or was killed, these and
what a CUPS of that folder started are ended, and the folder is removed.
"""
import os
import shutil
import signal
import sys
import time


def is_alive(process):
    try:
        with open(f"/proc/{process}/stat", encoding="ascii", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def end(process):
    """Ends a process, politely at first: cupsd ends its filters then."""
    for number, seconds in ((signal.SIGTERM, 5), (signal.SIGKILL, 2)):
        try:
            os.kill(process, number)
        except OSError:
            return
        limit = time.monotonic() + seconds
        while is_alive(process) and time.monotonic() < limit:
            time.sleep(0.02)


def started_in(folder):
    """Processes that cupsd started: it gives them its folder in the environment."""
    mark = b"\0CUPS_SERVERROOT=" + os.fsencode(folder) + b"/"
    for name in os.listdir("/proc"):
        if name.isdigit() and int(name) != os.getpid():
            try:
                with open(f"/proc/{name}/environ", "rb") as file:
                    if mark in b"\0" + file.read():
                        yield int(name)
            except OSError:
                pass


def main():
    folder = sys.argv[1]
    os.setsid()
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_IGN)
    processes = [int(line) for line in sys.stdin]
    for process in processes:
        end(process)
    for process in list(started_in(folder)):
        end(process)
    shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    # Away from the user's process tree, which is what a test runner kills.
    if os.fork() == 0:
        main()
