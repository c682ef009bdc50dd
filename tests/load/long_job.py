#!/usr/bin/env python3
"""Jobs of 1,000 pages in the memory of jobs of 10.

    long_job.py [--pages N] [--a4] [--halftone NAME]...

Sends jobs of 1, 10 and N equal pages (1,000 labels of 40 x 30 mm, or A4 pages at 300 dpi) through
rastertoaligned, and through rastertotarvo with each halftone. What comes out must be the one page, N
times, and the most memory in use no more for N pages than for 10. Prints a table; exits 1 if not so.
Environment: TARVO_BUILD_DIR, the build folder, build/release by default.
"""
import argparse
import os
import random
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.append(HERE)
import labels  # found by the line above

BUILD = os.environ.get("TARVO_BUILD_DIR",
                       os.path.join(os.path.dirname(os.path.dirname(HERE)), "build/release"))
# What the system maps around what is touched differs a little from run to run. 260 bytes kept of each
# page would show.
MAY_GROW_KIB = 256


class Output(threading.Thread):
    """Reads what a filter writes, and compares it as it comes: `head` bytes, then `body` for ever.
    Keeps all of it, and compares nothing, when body is None."""

    def __init__(self, stream, head, body):
        super().__init__()
        self.stream, self.head, self.body = stream, head, body
        self.kept, self.bodies, self.wrong = bytearray(), 0, False
        self.start()

    def run(self):
        # Read from end to end, whatever it is: the filter must not be held up.
        left = self.head
        rest = b""
        while part := self.stream.read(1 << 20):
            if self.body is None:
                self.kept += part
                continue
            skipped = min(left, len(part))
            left -= skipped
            rest += part[skipped:]
            while len(rest) >= len(self.body):
                self.wrong |= not rest.startswith(self.body)
                self.bodies += 1
                rest = rest[len(self.body):]
        self.wrong |= bool(rest)


class Sweeper(threading.Thread):
    """Removes the dumps of the pages as they come."""

    def __init__(self, folder):
        super().__init__()
        self.folder, self.done, self.removed = folder, False, 0
        self.start()

    def run(self):
        while not self.done:
            self.sweep()
            time.sleep(0.02)
        self.sweep()

    def sweep(self):
        for name in os.listdir(self.folder):
            os.unlink(f"{self.folder}/{name}")
            self.removed += 1


def run(command, page, pages, head, body):
    """One job. Its peak memory in KiB, its CPU seconds, and the Output."""
    with tempfile.TemporaryDirectory(prefix="tarvo-long-job-") as folder:
        os.mkdir(f"{folder}/spool")
        environment = dict(
            os.environ, PPD=f"{BUILD}/ppd/tarvo-label-203dpi.ppd", TARVO_TEST_FOLDER=folder,
            LD_PRELOAD=f"{BUILD}/tests/load/libtarvo_load_exit_report.so "
                       f"{BUILD}/tests/support/libtarvo_test_redirect.so",
            TARVO_LOAD_REPORT=f"{folder}/report")
        with open(f"{folder}/errors", "wb") as errors:
            process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=errors, env=environment)
        output = Output(process.stdout, head, body)
        sweeper = Sweeper(f"{folder}/spool")
        try:
            process.stdin.write(b"3SaR")
            for _ in range(pages):
                process.stdin.write(page)
            process.stdin.close()
        except BrokenPipeError:
            pass  # seen in its status
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        output.join()
        sweeper.done = True
        sweeper.join()
        if process.returncode != 0:
            with open(f"{folder}/errors", encoding="utf-8", errors="replace") as errors:
                sys.exit(f"{command[0]} ends with {process.returncode}:\n{errors.read()[-2000:]}")
        with open(f"{folder}/report", encoding="utf-8") as report:
            memory = int(report.read().split()[1])
    return memory, usage.ru_utime + usage.ru_stime, output


def check(name, command, page, head, pages):
    """One filter: a line of the table. What is wrong with it."""
    _, _, one = run(command, page, 1, head, None)
    body = bytes(one.kept[head:])
    if len(body) < 1000:
        return [f"{name} makes {len(body)} bytes of a page"]
    ten, _, output = run(command, page, 10, head, body)
    wrong = [] if (output.bodies, output.wrong) == (10, False) else [f"{name}: other pages of 10"]
    many, seconds, output = run(command, page, pages, head, body)
    if output.bodies != pages or output.wrong:
        wrong.append(f"{name}: {output.bodies} pages of {pages}, or other ones")
    if many > ten + MAY_GROW_KIB:
        wrong.append(f"{name} takes {many} KiB for {pages} pages, {ten} for 10")
    print(f"| {name} | {ten} | {many} | {seconds:.1f} |", flush=True)
    return wrong


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--pages", type=int, default=1000)
    parser.add_argument("--a4", action="store_true")
    parser.add_argument("--halftone", action="append")
    arguments = parser.parse_args()
    width, height, dpi = (2480, 3508, 300) if arguments.a4 else (320, 240, 203)
    # Rows of noise, over and over: the same page each time, and no two rows the same beside it.
    rows = random.Random(1).randbytes(width * 64)
    page = labels.header(width, height, dpi) + (rows * (height // 64 + 1))[:width * height]

    print(f"{arguments.pages} pages of {width} x {height} dots\n")
    print(f"| filter | peak for 10 pages, KiB | for {arguments.pages} | CPU, s |")
    print("| --- | --- | --- | --- |")
    wrong = check("rastertoaligned", [f"{BUILD}/align/rastertoaligned", "1", "u", "t", "1", ""], page,
                  len(b"3SaR"), arguments.pages)
    for halftone in arguments.halftone or ["None", "Tattoo_X8"]:
        wrong += check(f"rastertotarvo, {halftone}",
                       [f"{BUILD}/filter/rastertotarvo", "1", "u", "t", "1",
                        f"HalftoneType={halftone}"], page, len("\n" * 64), arguments.pages)
    for text in wrong:
        print(f"FAILED: {text}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
