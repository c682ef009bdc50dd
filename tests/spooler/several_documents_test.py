"""Jobs of several documents: the filter runs once for each, and all of them go to the printer as one
stream, one after another."""
import re
import unittest

import documents
import stream
from case import SpoolerCase


class Test(SpoolerCase):
    def box(self, name, left, top):
        return documents.pdf(self.path(name), 101.6, 152.4, documents.box(left, top, 30, 5))

    def sent_by(self, printer, *command):
        """Runs lp to the job's end. What the printer got."""
        answer = self.spooler.run("lp", "-d", "label", *command)
        number = int(re.search(r"request id is \S+-(\d+) ", answer)[1])
        job = self.spooler.wait(number)
        self.assertEqual(job["state"], "completed", self.spooler.job_log(number))
        self.assertTrue(printer.wait(lambda p: p.jobs), "nothing came")
        self.assertEqual(len(printer.jobs), 1)
        return printer.jobs[0]

    def assert_documents(self, sent, count):
        """That many documents of a page each, good ones for every reader. Their pages."""
        read = stream.documents(sent)
        self.assertEqual([len(pages) for pages in read], [1] * count)
        commands = self.assert_whole_commands(sent)
        self.assertEqual(commands.count("  64 line feeds\n"), count)
        self.assertEqual(commands.count("  PRINT 1,1\n"), count)
        return [page for page, in read]

    def test_two_documents_in_one_job(self):
        printer = self.start_queue()
        sent = self.sent_by(printer, self.box("a.pdf", 10, 20), self.box("b.pdf", 40, 100))
        first, second = self.assert_documents(sent, 2)
        self.assert_box(first, *(mm * 203 / 25.4 for mm in (10, 20, 30, 5)))
        self.assert_box(second, *(mm * 203 / 25.4 for mm in (40, 100, 30, 5)))

    def test_a_banner_page(self):
        printer = self.start_queue()
        sent = self.sent_by(printer, "-o", "job-sheets=standard,none", self.box("a.pdf", 10, 20))
        banner, page = self.assert_documents(sent, 2)
        self.assertGreater(banner.ink(), 0)
        self.assert_box(page, *(mm * 203 / 25.4 for mm in (10, 20, 30, 5)))


if __name__ == "__main__":
    unittest.main()
