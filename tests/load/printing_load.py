#!/usr/bin/env python3
"""Many jobs through a CUPS of its own, over four queues, two of which fail now and then.

    printing_load.py [--jobs N] [--minutes M] [--printed-only]

    steady    labels of 40 x 30 mm to a printer that is always there
    brisk     labels of 4 x 6 inch at 300 dpi, likewise; every fifth is a PDF
    dropping  such labels at 203 dpi, to a printer that is out of paper for 2 s at each 9th job; every
              fifth job is of 20 labels of 4 x 12 inch, and the connection is reset within a page at
              every second of these: jobs that do not fit the system's buffers, for of one that does
              the spooler does not know that it is lost
    failing   a label of 4 x 6 inch through a backend of which each 5th start fails, before the first
              byte and within the page by turns

The jobs are spread over M minutes. Then each page of each job must have been printed once and whole,
on its queue's printer, and nothing may have grown: the memory and descriptors of the spooler and of
the printers, and from job to job the memory of the filters. Prints the figures; exits 1 if not so.
With --printed-only what grows is left alone: under the sanitizers, which keep what was freed.
Environment: TARVO_BUILD_DIR, the build folder, build/release by default.
"""
import argparse
import collections
import glob
import os
import re
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))
os.environ.setdefault("TARVO_SOURCE_DIR", SOURCE)
os.environ.setdefault("TARVO_BUILD_DIR", f"{SOURCE}/build/release")
sys.path += [HERE, os.path.join(os.path.dirname(HERE), "spooler")]
import documents  # found by the line above, as the next five
import labels
import stream
from load_spooler import LoadSpooler
from relay import Relay
from spooler import BUILD, LABEL203, LABEL300, start_guardian
from watch import Sample, running_below

HALFTONES = ("None", "FloydSteinberg", "Ordered", "Burkes", "Stucki", "JarvisJudiceNinke", "Sierra",
             "StevensonArce", "Tattoo", "Tattoo_X8")
# A job of so many pages is 5 MB for the printer; the system's buffers take less.
ROLL, ROLL_PAGES = (812, 2436), 20
# What a process may hold more at the end than when it had done the first fifth of its work.
MAY_GROW_KIB = 1024


class Queue:
    """A queue, its printer, and what stands between them."""

    def __init__(self, load, name, ppd, size, dpi, scheme="socket", **trouble):
        self.name, self._size, self._dpi = name, size, dpi
        self.sent = {}         # by the label's job: its number in the spooler
        self.folder = load.path(f"printed/{name}")
        self._output = load.path(f"{name}.lines")
        with open(self._output, "w", encoding="utf-8") as lines:
            self._process = subprocess.Popen(
                [f"{BUILD}/tools/tsplprinter/tsplprinter", "--port", "0", "--out", self.folder],
                stdout=lines, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL)
        load.own(self._process)
        port = None
        while not port:
            time.sleep(0.02)
            port = re.search(r"listening on 127.0.0.1:(\d+)", self.lines())
        self.relay = Relay(int(port[1]), **trouble)
        load.spooler.add_queue(name, ppd, f"{scheme}://127.0.0.1:{self.relay.port}",
                               "printer-error-policy=retry-job")

    @property
    def process(self):
        return self._process.pid

    def lines(self):
        with open(self._output, encoding="utf-8") as file:
            return file.read()

    def pages(self, job):
        return ROLL_PAGES if self._is_roll(job) else 1

    def page_size(self, job):
        """In dots."""
        return ROLL if self._is_roll(job) else self._size

    def document(self, path, job):
        """What is printed as `job`: its file, and its options."""
        options = [f"HalftoneType={HALFTONES[job // 4 % len(HALFTONES)]}"]
        width, height = self.page_size(job)
        if self.name == "brisk" and job // 4 % 5 == 0:
            bar = width // labels.BARS * 25.4 / self._dpi
            content = "".join(documents.box(n * bar, 0, bar, 152.4)
                              for n, bit in enumerate(labels.bars(job, 1)) if bit)
            return documents.pdf(path, 101.6, 152.4, content), ["PageSize=4x6", *options]
        return labels.raster(path, job, self.pages(job), width, height, self._dpi), options

    def _is_roll(self, job):
        return self.name == "dropping" and job // 4 % 5 == 2


class Load:
    def __init__(self, jobs, minutes, printed_only):
        self.jobs, self.seconds, self.printed_only = jobs, minutes * 60, printed_only
        self.problems = []
        self.samples = []      # {name: Sample}
        self._sampled_at = 0
        self.finished = {}     # by number in the spooler: how often it was said to be completed
        self._log_at = 0
        self.folder = tempfile.mkdtemp(prefix="tarvo-load-")
        self._guardian = start_guardian(self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def own(self, process):
        """The process ends with this one, however that ends."""
        self._guardian.write(f"{process.pid}\n".encode())
        self._guardian.flush()

    def problem(self, text):
        self.problems.append(text)
        print(f"FAILED: {text}", flush=True)

    # Printing

    def run(self):
        try:
            os.makedirs(self.path("printed"))
            self.spooler = LoadSpooler(error_policy="retry-job")
            try:
                self.print_all()
                self.check_printed()
                if not self.printed_only:
                    self.check_growth()
                self.check_left()
            finally:
                self.spooler.stop()
        finally:
            self._guardian.close()
        return 1 if self.problems else 0

    def print_all(self):
        self.queues = [
            Queue(self, "steady", LABEL203, (320, 240), 203),
            Queue(self, "brisk", LABEL300, (1200, 1800), 300),
            Queue(self, "dropping", LABEL203, (812, 1218), 203, drop=b"304.8 mm", pause_each=9),
            Queue(self, "failing", LABEL203, (812, 1218), 203, scheme="failing")]
        # What a process holds at first is what it holds when it has nothing to do, after a job.
        self.began = time.monotonic()
        for job in range(1, 5):
            self.send(job)
        self.wait_for_all(4)
        self.sample()
        self.began = time.monotonic()
        for job in range(5, self.jobs + 1):
            self.send(job)
            # Until it is time for the next one, what is due now and then.
            next_at = self.began + job * self.seconds / self.jobs
            self.look()
            while (left := next_at - time.monotonic()) > 0:
                time.sleep(min(left, 1))
                self.look()
        self.wait_for_all(self.jobs)
        self.took = time.monotonic() - self.began
        self.sample()

    def send(self, job):
        queue = self.queues[job % 4]
        path, options = queue.document(self.path("document"), job)
        queue.sent[job] = self.spooler.print(queue.name, path, *options)

    def wait_for_all(self, jobs):
        """Until as many jobs are completed, or nothing has been for 2 minutes."""
        done, limit = -1, 0
        while len(self.finished) < jobs and (len(self.finished) > done or time.monotonic() < limit):
            if len(self.finished) > done:
                done, limit = len(self.finished), time.monotonic() + 120
            time.sleep(0.5)
            self.look()
        time.sleep(3)  # for the connections of the last ones

    def look(self):
        """Reads what the spooler has logged, clears away the dumps, takes a sample every 2 s."""
        with open(self.spooler.path("log/error_log"), "rb") as log:
            log.seek(self._log_at)
            new = log.read()
        new = new[:new.rfind(b"\n") + 1]
        self._log_at += len(new)
        for number in re.findall(rb"\[Job (\d+)\] Job completed\.", new):
            self.finished[int(number)] = self.finished.get(int(number), 0) + 1
        if self.samples and time.monotonic() > self._sampled_at + 2:
            self.sample()
            for path in glob.glob(self.spooler.path("dumps/spool/*")):
                if time.time() - os.stat(path).st_mtime > 10:
                    os.unlink(path)

    def sample(self):
        held = {"cupsd": Sample(self.spooler.process)}
        held.update((queue.name, Sample(queue.process)) for queue in self.queues)
        self.samples.append(held)
        self._sampled_at = time.monotonic()

    # Judging

    def check_printed(self):
        print(f"{self.jobs} jobs in {self.took:.0f} s\n")
        print("| queue | jobs | pages | connections | broken off | out of paper | starts that failed |")
        print("| --- | --- | --- | --- | --- | --- | --- |")
        for number in (n for queue in self.queues for n in queue.sent.values()):
            if self.finished.get(number) != 1:
                self.problem(f"job {number} was completed {self.finished.get(number, 0)} times\n" +
                             self.spooler.job_log(number)[-3000:])
        for queue in self.queues:
            failed = self.spooler.failed_starts() if queue.name == "failing" else 0
            pages = self.check_queue(queue)
            print(f"| {queue.name} | {len(queue.sent)} | {pages} | {queue.relay.jobs} | "
                  f"{queue.relay.dropped} | {queue.relay.paused} | {failed} |")
        if not all((self.queues[2].relay.dropped, self.queues[2].relay.paused,
                    self.spooler.failed_starts())):
            self.problem("nothing failed: that is not what was to be seen")

    def check_queue(self, queue):
        """Every page that was printed there is of this queue, whole, and printed once. How many."""
        printed = collections.Counter()
        for path in sorted(glob.glob(f"{queue.folder}/*.tspl")):
            for page in whole_pages(path):
                try:
                    job, number = labels.read(page)
                except ValueError as error:
                    self.problem(f"{path}: {error}")
                    continue
                printed[job, number] += 1
                width, height = queue.page_size(job)
                if (page.width, page.height, page.copies) != (-(-width // 8) * 8, height, 1):
                    self.problem(f"{path}: {page.width} x {page.height}, {page.copies} copies")
        expected = {(job, page): 1 for job in queue.sent for page in range(1, queue.pages(job) + 1)}
        if printed != expected:
            self.problem(f"{queue.name}: {show(expected, printed)}")
        return printed.total()

    def check_growth(self):
        print("\n| process | memory at first, KiB | after a fifth | at the end | most | "
              "descriptors at first | at the end | most |")
        print("| --- | --- | --- | --- | --- | --- | --- | --- |")
        for name in self.samples[0]:
            held = [sample[name] for sample in self.samples]
            first, last = held[0], held[-1]
            early = held[len(held) // 5]
            memory, descriptors = (max(getattr(s, what) for s in held)
                                   for what in ("memory", "descriptors"))
            print(f"| {name} | {first.memory} | {early.memory} | {last.memory} | {memory} | "
                  f"{first.descriptors} | {last.descriptors} | {descriptors} |")
            if last.descriptors > first.descriptors:
                self.problem(f"{name} has {last.descriptors} descriptors, had {first.descriptors}")
            if last.memory > early.memory + MAY_GROW_KIB:
                self.problem(f"{name} has grown from {early.memory} to {last.memory} KiB")
        self.check_filters()

    def check_filters(self):
        """From its report of each filter that ended by itself."""
        print("\n| filter | ended | peak of the first fifth, KiB | of the last fifth | "
              "descriptors at its end, first fifth | last fifth |")
        print("| --- | --- | --- | --- | --- | --- |")
        ended = collections.defaultdict(list)
        for line in self.spooler.read("counts/filters").splitlines():
            name, memory, descriptors = line.split()
            ended[name].append((int(memory), int(descriptors)))
        for name in ("rastertoaligned", "rastertotarvo"):
            fifth = max(1, len(ended[name]) // 5)
            parts = ended[name][:fifth], ended[name][-fifth:]
            first, last = (max(memory for memory, _ in part) for part in parts)
            first_open, last_open = (max(count for _, count in part) for part in parts)
            print(f"| {name} | {len(ended[name])} | {first} | {last} | {first_open} | {last_open} |")
            # A fifth of fewer does not have every queue's job with every halftone.
            if self.jobs >= 5 * len(self.queues) * len(HALFTONES) and last > first + MAY_GROW_KIB:
                self.problem(f"{name} has grown from {first} to {last} KiB")
            if last_open > first_open:
                self.problem(f"{name} leaves {last_open} descriptors open, first {first_open}")

    def check_left(self):
        left = list(running_below(self.spooler.folder))
        if left:
            self.problem(f"still running: {left}")
        listed = self.spooler.run("lpstat", "-o")
        if listed:
            self.problem(f"still in the queues:\n{listed}")
        spooled = glob.glob(self.spooler.path("spool/d*")) + glob.glob(self.spooler.path("spool/tmp/*"))
        if spooled:
            self.problem(f"still in the spool: {spooled}")


def whole_pages(path):
    """The pages of a stream that a printer prints; it may end within a further one."""
    with open(path, "rb") as file:
        sent = file.read()
    answer = subprocess.run([f"{BUILD}/tools/tsplview/tsplview", "--list", path], text=True,
                            capture_output=True)
    # What was cut off is said to be so; it is never anything else that is wrong.
    if answer.returncode != 0 and "found the end of the stream" not in answer.stderr:
        raise ValueError(f"{path}: {answer.stderr}")
    prints = [line for line in answer.stdout.splitlines() if re.match(r" *\d+ +PRINT ", line)]
    if not prints:
        return []
    end = int(prints[-1].split()[0])
    return stream.pages(sent[:sent.index(b"\r\n", end) + 2])


def show(expected, printed):
    lost = sorted(expected.keys() - printed.keys())
    foreign = sorted(printed.keys() - expected.keys())
    twice = sorted(label for label, count in printed.items() if count > 1)
    return f"lost {lost[:20]}, foreign {foreign[:20]}, more than once {twice[:20]} (job, page)"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--jobs", type=int, default=40)
    parser.add_argument("--minutes", type=float, default=0.5)
    parser.add_argument("--printed-only", action="store_true")
    arguments = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    return Load(arguments.jobs, arguments.minutes, arguments.printed_only).run()


if __name__ == "__main__":
    sys.exit(main())
