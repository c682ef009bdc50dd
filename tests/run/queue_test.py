"""./run --queue: documents through a CUPS of its own, and nothing of it left behind."""
import os
import re
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.environ["TARVO_ROOT"]
RUN = os.path.join(ROOT, "run")
sys.path.append(os.path.join(ROOT, "tests/spooler"))
from intruder import (as_another, can_become_another, listening_paths_of, open_to_others,
                      ports_of)  # found by the line above

PAGE = ("%!PS\n<</PageSize[288 432]>>setpagedevice "
        "1 1 {} {{ 72 mul 0 exch 288 10 rectfill showpage }} for\n")


class QueueTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarvo-queue-test.")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        os.chmod(self.folder, 0o755)  # the filters of a root CUPS run as another user
        self.out = os.path.join(self.folder, "out")
        self.temporary = os.path.join(self.folder, "temporary")
        os.mkdir(self.temporary)
        # All that it starts is known by this, in its command line or its environment.
        self.environment = dict(os.environ, TMPDIR=self.temporary)

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def pdf(self, name, pages):
        path = os.path.join(self.folder, name)
        subprocess.run(["gs", "-q", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", f"-o{path}",
                        self.write("program.ps", PAGE.format(pages))], check=True)
        return path

    def print(self, *arguments, queue=True):
        return subprocess.run([RUN, *["--queue"] * queue, "--out", self.out, *arguments],
                              env=self.environment, text=True, capture_output=True, timeout=120,
                              umask=0o022)

    def started(self):
        """The processes that were started and still run: their command lines by their ids."""
        mark = os.fsencode(self.temporary)
        found = {}
        for name in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{name}/cmdline", "rb") as command, \
                        open(f"/proc/{name}/environ", "rb") as environment:
                    words = command.read()
                    if mark in words or mark in environment.read():
                        found[int(name)] = words.replace(b"\0", b" ").decode(errors="replace")
            except OSError:
                pass  # it has ended meanwhile
        return found

    def left(self):
        return list(self.started().values())

    def assert_nothing_is_left(self):
        limit = time.monotonic() + 10
        while (self.left() or os.listdir(self.temporary)) and time.monotonic() < limit:
            time.sleep(0.05)
        self.assertEqual(self.left(), [])
        self.assertEqual(os.listdir(self.temporary), [])

    def read(self, name):
        with open(os.path.join(self.out, name), "rb") as file:
            return file.read()

    def test_prints_what_the_filter_prints_without_a_server(self):
        documents = [self.pdf("two.pdf", 2), self.write("note.txt", "A note\n")]
        options = ["-o", "PrintSpeed=4", "-o", "PageSize=Custom.100x150mm"]
        result = self.print(*options, *documents)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertIn("-o PrintSpeed=4", result.stdout)
        self.assertRegex(result.stdout, r"(?m)^  request id is label-203dpi-1 ")
        self.assertRegex(result.stdout, r"(?m)^  page 2: 100.1 x 150.0 mm, 800 x 1199 dots")
        self.assertRegex(result.stdout, r"(?ms)^lpstat -W completed -o$.*^  label-203dpi-2 ")
        self.assertEqual(sorted(os.listdir(self.out)),
                         ["note-1.png", "note.log", "note.tspl",
                          "two-1.png", "two-2.png", "two.log", "two.tspl"])
        self.assert_nothing_is_left()

        kept = {name: self.read(name) for name in os.listdir(self.out)}
        self.assertEqual(self.print(*options, *documents, queue=False).returncode, 0)
        for name in kept:
            if not name.endswith(".log"):
                self.assertTrue(kept[name] == self.read(name), f"{name} differs")

    def test_a_queue_for_each_model_of_the_samples(self):
        result = self.print()
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(re.findall(r"(?m)^Queue (\S+),", result.stdout),
                         ["label-203dpi", "label-300dpi", "stencil-a4-300dpi"])
        self.assertEqual([name for name in sorted(os.listdir(self.out)) if name.endswith(".png")],
                         ["moth-1.png", "shipping-label-1.png", "still-life-1.png"])
        self.assert_nothing_is_left()

    def test_a_job_that_fails_is_told_and_the_others_print(self):
        broken = self.write("broken.pdf", "%PDF-1.4\nnothing follows\n")
        good = self.write("good.txt", "good\n")
        result = self.print("missing.pdf", broken, good)
        self.assertEqual(result.returncode, 1)
        self.assertIn("failed: no such file\n", result.stderr)
        self.assertRegex(result.stderr, r"failed: label-203dpi-1: (stopped|aborted)\n"
                                        r"  The last lines .*broken.log")
        self.assertRegex(result.stderr, r"\[Job 1\] Job stopped due to filter errors")
        self.assertIn("2 of 3 documents failed.", result.stdout)
        self.assertTrue(self.read("good-1.png").startswith(b"\x89PNG"))
        self.assertFalse(os.path.exists(os.path.join(self.out, "broken-1.png")))
        self.assert_nothing_is_left()

    def test_nobody_else_reaches_it(self):
        os.mkdir(self.out)
        # Without ./run before it, whose mask it has otherwise.
        process = subprocess.Popen(
            [os.path.join(ROOT, "tools/queue"), os.environ["TARVO_BUILD"], self.out, "two",
             "label-203dpi", self.pdf("two.pdf", 2), ""], env=self.environment, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, umask=0o022)
        with self.subTest("its process waits, the CUPS does not"):
            self.assertTrue(any(said.startswith("Queue") for said in process.stdout))
            process.send_signal(signal.SIGSTOP)
            (cupsd, command), = ((number, words) for number, words in self.started().items()
                                 if words.startswith("cupsd "))
            folder = re.search(r" -c (\S+)/etc/cupsd.conf ", command)[1]
            socket = f"{folder}/socket/cups.sock"
            self.assertEqual(ports_of(cupsd), [])
            self.assertEqual(listening_paths_of(cupsd), [socket])
            self.assertEqual(open_to_others(folder, 0o002), [])
            readable = {path.partition("/")[0] for path in open_to_others(folder, 0o004)}
            self.assertEqual(readable - {"bin", "data", "etc", "cache", "run"}, set())
            target = self.write("target", "the owner's\n")
            if can_become_another():
                for attempt in (["lpstat", "-v"], ["lpadmin", "-p", "thief", "-E", "-m", "raw", "-v",
                                                   f"file://{target}"]):
                    done = as_another(*attempt, environment=dict(os.environ, CUPS_SERVER=socket))
                    self.assertNotEqual(done.returncode, 0, done.stdout)
                    self.assertNotIn("label-203dpi", done.stdout)
        process.send_signal(signal.SIGCONT)
        said, error = process.communicate(timeout=120)
        self.assertEqual(process.returncode, 0, said + error)

    def test_what_is_printed_is_for_its_owner_alone(self):
        document = self.pdf("two.pdf", 2)
        for queue in (True, False):
            for old in (False, True):
                with self.subTest(queue=queue, old=old):
                    if old:  # readable by all, as somebody made them
                        for name in os.listdir(self.out):
                            os.chmod(os.path.join(self.out, name), 0o666)
                    result = self.print(document, queue=queue)
                    self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
                    names = os.listdir(self.out)
                    self.assertEqual(sorted(names), ["two-1.png", "two-2.png", "two.log", "two.tspl"])
                    for path in [self.out] + [os.path.join(self.out, name) for name in names]:
                        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode) & 0o077, 0, path)
            shutil.rmtree(self.out)

    def test_nothing_is_left_when_it_is_ended(self):
        document = self.pdf("many.pdf", 30)
        for number, status, line in (
                (signal.SIGINT, 130, "A CUPS of its own"), (signal.SIGINT, 130, "Queue"),
                (signal.SIGINT, 130, "  request id"), (signal.SIGTERM, 143, "  request id"),
                (signal.SIGHUP, 129, "  request id"),
                # Nobody can catch this one: those that it started see to it themselves.
                (signal.SIGKILL, -9, "  request id")):
            with self.subTest(signal=number.name, after=line):
                process = subprocess.Popen(
                    [RUN, "--queue", "--out", self.out, document], env=self.environment, text=True,
                    stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
                self.assertTrue(any(said.startswith(line) for said in process.stdout))
                self.assertTrue(any("cupsd" in command for command in self.left()))
                os.killpg(process.pid, number)  # as Ctrl-C in a terminal: all of the group
                _, error = process.communicate(timeout=120)
                self.assertEqual(process.returncode, status, error)
                if number != signal.SIGKILL:
                    self.assertIn("Stopped.", error)
                    self.assertNotIn("Traceback", error)
                    # Not a moment later: whoever starts it again finds nothing in the way.
                    self.assertFalse([c for c in self.left() if "cupsd" in c or "tsplprinter" in c])
                self.assert_nothing_is_left()


if __name__ == "__main__":
    unittest.main()
