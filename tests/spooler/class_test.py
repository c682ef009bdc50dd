"""More printers than one, as a CUPS class."""
import unittest

import documents
import stream
from case import SpoolerCase
from spooler import LABEL203

JOBS = 20


class Test(SpoolerCase):
    def setUp(self):
        super().setUp()
        self.start_spooler(error_policy="retry-job")
        self.printers = []
        for name in ("left", "right"):
            # Slow enough that both are needed.
            self.printers.append(self.start_printer(bytes_per_second=40000))
            self.spooler.add_queue(name, LABEL203, self.printers[-1].uri, "PageSize=40x30mm")
            self.spooler.run("lpadmin", "-p", name, "-c", "shipping")
        self.spooler.run("cupsenable", "shipping")
        self.spooler.run("cupsaccept", "shipping")

    def send(self):
        """Label n has n bars. The numbers of the jobs."""
        return [self.spooler.print("shipping", documents.pdf(
                    self.path(f"{n}.pdf"), 40, 30,
                    "".join(documents.box(1 + 1.5 * bar, 5, 0.75, 20) for bar in range(n))))
                for n in range(1, JOBS + 1)]

    @staticmethod
    def labels(printer):
        """The bars on each label of the jobs that the printer got to their end."""
        found = []
        for job in printer.jobs:
            for page in stream.pages(job):
                row = [page.dot(x, page.height // 2) for x in range(page.width)]
                found.append(sum(1 for left, here in zip([False] + row, row) if here and not left))
        return found

    def test_twenty_jobs_are_shared_and_each_printed_once(self):
        for number in self.send():
            self.assertEqual(self.spooler.wait(number, seconds=60)["state"], "completed")
        left, right = (self.labels(printer) for printer in self.printers)
        self.assertEqual(sorted(left + right), list(range(1, JOBS + 1)))
        self.assertGreater(len(left), 3)
        self.assertGreater(len(right), 3)

    # Out of paper, or switched off between two labels.
    def test_one_of_the_two_stops_midway_and_nothing_is_lost(self):
        numbers = self.send()
        left, right = self.printers
        self.assertTrue(left.wait(lambda p: len(p.jobs) >= 3 and p.receiving))
        left.finish()
        for number in numbers:
            self.assertEqual(self.spooler.wait(number, seconds=90)["state"], "completed")
        self.assertLess(len(left.jobs), JOBS / 2)
        self.assertEqual(sorted(self.labels(left) + self.labels(right)), list(range(1, JOBS + 1)))

    # The other computer knows of no Tarvo: CUPS asks the shared class what it takes.
    def test_a_class_is_shared_with_another_computer(self):
        there = self.spooler
        here = self.start_spooler()
        here.own_backend("ipp")
        here.run("lpadmin", "-p", "shipping", "-E", "-m", "everywhere",
                 "-v", there.uri("/classes/shipping"))
        number = here.print("shipping", documents.pdf(self.path("label.pdf"), 40, 30,
                                                      documents.box(5, 5, 20, 10)))
        self.assertEqual(here.wait(number)["state"], "completed")
        left, right = self.printers
        self.assertTrue(any(printer.wait(lambda p: p.jobs, 3) for printer in self.printers))
        page, = stream.pages((left.jobs + right.jobs)[0])
        self.assertEqual((page.width, page.height), (320, 240))
        self.assert_box(page, 40, 40, 160, 80)

    # A label fits the connection's buffers: CUPS has handed it over whole before it is printed, and
    # a raw connection does not say whether it was. That one may be lost, and no other.
    def test_one_of_the_two_is_switched_off_within_a_label(self):
        numbers = self.send()
        left, right = self.printers
        self.assertTrue(left.wait(lambda p: len(p.jobs) >= 3 and p.receiving))
        left.stop()
        for number in numbers:
            self.assertEqual(self.spooler.wait(number, seconds=90)["state"], "completed")
        printed = self.labels(left) + self.labels(right)
        self.assertEqual(len(printed), len(set(printed)))
        self.assertGreaterEqual(len(printed), JOBS - 1)

    # Of a job that does not fit them CUPS does know: one that does not drop it gets all of it.
    def test_a_long_job_that_a_printer_drops_goes_to_another(self):
        many = documents.pdf(self.path("many.pdf"), 101.6, 152.4,
                             *(documents.box(10, 20 + i, 30, 5) for i in range(40)))
        for printer in self.printers:
            printer.bytes_per_second = None
            printer.drop_after = 20000
        number = self.spooler.print("shipping", many, "PageSize=4x6")
        self.assertEqual(self.spooler.wait(number)["state"], "completed")
        self.assertEqual([len(printer.dropped) for printer in self.printers], [1, 1])
        whole = [job for printer in self.printers for job in printer.jobs]
        self.assertEqual([len(stream.pages(job)) for job in whole], [40])


if __name__ == "__main__":
    unittest.main()
