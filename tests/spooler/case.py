"""What the tests of the spooler share: a spooler, and jobs that are waited for."""
import signal
import subprocess
import sys
import tempfile
import unittest

import stream
from printer import Printer
from spooler import BUILD, LABEL203, Spooler, guard

# A runner that stops a test leaves it the time to clean up; the guardian sees to it otherwise.
signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))


class SpoolerCase(unittest.TestCase):
    def setUp(self):
        self.maxDiff = None
        self.folder = tempfile.mkdtemp(prefix="tarvo-documents-")
        self.addCleanup(guard(self.folder))

    def path(self, name):
        return f"{self.folder}/{name}"

    def start_spooler(self, **options):
        self.spooler = Spooler(**options)
        self.addCleanup(self.spooler.stop)
        return self.spooler

    def start_printer(self, **options):
        printer = Printer(**options)
        self.addCleanup(printer.stop)
        return printer

    def start_queue(self, ppd=LABEL203, name="label", options=(), **printer):
        """A queue and the printer behind it, on the spooler that runs, or a new one."""
        if not hasattr(self, "spooler"):
            self.start_spooler()
        printer = self.start_printer(**printer)
        self.spooler.add_queue(name, ppd, printer.uri, *options)
        return printer

    def print(self, printer, document, *options, copies=1, queue="label"):
        """Prints a document to its end. The pages that the printer got."""
        before = len(printer.jobs)
        number = self.spooler.print(queue, document, *options, copies=copies)
        job = self.spooler.wait(number)
        self.assertEqual(job["state"], "completed", self.spooler.job_log(number))
        self.assertTrue(printer.wait(lambda p: len(p.jobs) > before), "nothing came")
        self.number = number
        return stream.pages(printer.jobs[-1])

    def chain(self):
        """The filters of the job that was printed last."""
        started = [line for line in self.spooler.job_log(self.number).splitlines()
                   if "Started filter" in line]
        return [line.split("/filter/")[1].split()[0] for line in started]

    def assert_whole_commands(self, sent):
        """The strict reader has nothing to say."""
        with open(self.path("sent.tspl"), "wb") as file:
            file.write(sent)
        answer = subprocess.run([f"{BUILD}/tools/tsplview/tsplview", "--list", self.path("sent.tspl")],
                                text=True, capture_output=True)
        self.assertEqual(answer.returncode, 0, answer.stderr)
        return answer.stdout

    def assert_box(self, page, left, top, width, height, within=3):
        """All ink of the page lies in this box, in dots, and reaches its edges."""
        for actual, expected in zip(page.box(), (left, top, left + width, top + height)):
            self.assertAlmostEqual(actual, expected, delta=within,
                                   msg=f"{page.box()} for {left, top, left + width, top + height}")
