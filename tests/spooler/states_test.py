"""What becomes of jobs, and what lpstat and the error log say of it."""
import os
import struct
import threading
import time
import unittest

import documents
import stream
from case import SpoolerCase
from printer import free_port
from spooler import LABEL203, LABEL300


class Test(SpoolerCase):
    def setUp(self):
        super().setUp()
        self.label = documents.pdf(self.path("label.pdf"), 101.6, 152.4, documents.box(10, 20, 30, 5))

    def errors(self, number):
        """Messages of the job in the error log that are errors."""
        return [line.partition(f"[Job {number}] ")[2]
                for line in self.spooler.job_log(number).splitlines() if line.startswith("E ")]

    def is_listed(self, number):
        return f"label-{number} " in self.spooler.run("lpstat", "-o")

    def assert_prints(self, printer):
        """The next job comes out whole and complete."""
        page, = self.print(printer, self.label)
        self.assertEqual((page.height, page.copies), (1218, 1))
        self.assertAlmostEqual(page.ink(), 30 * 5 / (102.1 * 152.4), delta=0.001)

    def test_a_good_job(self):
        printer = self.start_queue()
        self.assert_prints(printer)
        job = self.spooler.job(self.number)
        self.assertEqual(job["job-state"], "completed")
        self.assertEqual(job["job-media-progress"], "100")
        self.assertEqual(job["job-impressions-completed"], "1")
        self.assertEqual(self.errors(self.number), [])
        self.assertFalse(self.is_listed(self.number))
        self.assertIn("printer label is idle.", self.spooler.run("lpstat", "-p", "label"))
        self.assertEqual(len(printer.jobs), 1)
        self.assertIn("PAGE: 1 1", self.spooler.job_log(self.number))

    # A page of one bit a dot, made elsewhere, is what the filter refuses with status 1.
    def test_a_job_whose_filter_exits_with_1(self):
        printer = self.start_queue()
        header = bytearray(1796)
        struct.pack_into("<2I", header, 276, 203, 203)
        struct.pack_into("<I", header, 340, 1)
        struct.pack_into("<8I", header, 372, 16, 9, 0, 1, 1, 2, 0, 3)
        with open(self.path("mono.ras"), "wb") as file:
            file.write(b"3SaR" + header + bytes(18))
        number = self.spooler.print("label", self.path("mono.ras"))
        # It stays in the queue, stopped, until somebody restarts or cancels it.
        self.assertEqual(self.spooler.wait(number)["state"], "stopped")
        self.assertTrue(self.is_listed(number))
        self.assertIn("printer label is idle.", self.spooler.run("lpstat", "-p", "label"))
        errors = self.errors(number)
        self.assertIn("Unsupported bits per pixel : 1 ! Requires 8 bits per pixel!", errors)
        self.assertTrue(any("Job stopped due to filter errors" in error for error in errors), errors)
        # What was sent is the start of a job, in whole commands, without a page.
        printer.wait(lambda p: p.jobs)
        self.assert_whole_commands(printer.jobs[0])
        self.assertNotIn(b"BITMAP", printer.jobs[0])
        # The queue goes on.
        self.assert_prints(printer)

    # Enough pages that most are still to come when the job is cancelled.
    def test_a_cancelled_job(self):
        printer = self.start_queue(LABEL300, bytes_per_second=2000000)
        many = documents.pdf(self.path("many.pdf"), 101.6, 152.4,
                             *(documents.box(10, 20 + i, 30, 5) for i in range(30)))
        number = self.spooler.print("label", many)
        self.assertTrue(printer.wait(lambda p: len(p.receiving) > 300000), "nothing came")
        self.assertIn(f"now printing label-{number}.", self.spooler.run("lpstat", "-p", "label"))
        self.spooler.run("cancel", str(number))
        self.assertEqual(self.spooler.wait(number)["state"], "canceled")
        self.assertTrue(printer.wait(lambda p: p.jobs), "the connection stays open")
        self.assertEqual(self.errors(number), [])
        self.assertFalse(self.is_listed(number))

        sent = printer.jobs[0]
        commands = self.assert_whole_commands(sent)
        printed = commands.count("PRINT ")
        self.assertGreaterEqual(printed, 1)
        self.assertLess(printed, 30)
        self.assertNotIn("crashed", self.spooler.job_log(number))
        # The printer is ready for the next one.
        page, = self.print(printer, self.label)
        self.assertEqual((page.width, page.height), (1200, 1800))
        self.assertAlmostEqual(page.ink(), 30 * 5 / (101.6 * 152.4), delta=0.001)

    def test_a_printer_that_is_down_at_first_and_comes_back(self):
        self.start_spooler()
        port = free_port()
        self.spooler.add_queue("label", LABEL203, f"socket://127.0.0.1:{port}")
        number = self.spooler.print("label", self.label)
        # The backend says it when its first attempt has failed, and again at each further one.
        state = ""
        limit = time.monotonic() + 30
        while "unavailable" not in state and time.monotonic() < limit:
            time.sleep(0.05)
            state = self.spooler.run("lpstat", "-p", "label")
        self.assertIn("The printer may not exist or is unavailable at this time.", state)
        self.assertEqual(self.spooler.job(number)["job-state"], "processing")
        printer = self.start_printer(port=port)
        self.assertEqual(self.spooler.wait(number)["state"], "completed")
        self.assertEqual(len(stream.pages(printer.jobs[0])), 1)

    def test_a_printer_that_drops_the_connection(self):
        printer = self.start_queue(drop_after=20000)
        many = documents.pdf(self.path("many.pdf"), 101.6, 152.4,
                             *(documents.box(10, 20 + i, 30, 5) for i in range(40)))
        number = self.spooler.print("label", many)
        self.assertEqual(self.spooler.wait(number)["state"], "aborted")
        errors = self.errors(number)
        self.assertTrue(any("Unable to write print data" in error for error in errors), errors)
        self.assertTrue(any("Job aborted due to backend errors" in error for error in errors), errors)
        self.assertNotIn("crashed", self.spooler.job_log(number))
        self.assertEqual(len(printer.dropped), 1)
        self.assert_prints(printer)

    def test_two_jobs_at_once_on_two_queues(self):
        one = self.start_queue(bytes_per_second=40000)
        two = self.start_queue(LABEL300, "other", bytes_per_second=80000)
        numbers = {}

        def send(queue):
            numbers[queue] = self.spooler.print(queue, self.label, "HalftoneType=Tattoo")

        threads = [threading.Thread(target=send, args=(queue,)) for queue in ("label", "other")]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertTrue(one.wait(lambda p: p.receiving) and two.wait(lambda p: p.receiving))
        self.assertTrue(one.receiving, "not at the same time")
        for number in numbers.values():
            self.assertEqual(self.spooler.wait(number)["state"], "completed")
        for printer, size in ((one, (816, 1218)), (two, (1200, 1800))):
            self.assertTrue(printer.wait(lambda p: p.jobs))
            page, = stream.pages(printer.jobs[0])
            self.assertEqual((page.width, page.height), size)
            self.assertAlmostEqual(page.ink(), 30 * 5 / (101.8 * 152.4), delta=0.001)

    # Whatever ends the test, nothing of its spooler is left.
    def test_nothing_is_left_behind(self):
        spooler = self.start_spooler()
        daemon, folder = spooler._daemon.pid, spooler.folder
        spooler._guardian.close()  # as the system does when the test is killed
        spooler._daemon.wait(10)
        for _ in range(500):
            if not os.path.exists(folder):
                break
            threading.Event().wait(0.02)
        self.assertFalse(os.path.exists(folder))
        self.assertFalse(os.path.exists(f"/proc/{daemon}/fd"))


if __name__ == "__main__":
    unittest.main()
