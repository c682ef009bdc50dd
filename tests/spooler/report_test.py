"""tarvo-report on a CUPS that prints: what it finds, and that it tells nobody's secrets."""
import os
import shutil
import unittest

import documents
from case import SpoolerCase
from spooler import BUILD, SOURCE


class Test(SpoolerCase):
    def setUp(self):
        super().setUp()
        self.start_queue()
        os.mkdir(self.path("bin"))
        shutil.copy(f"{BUILD}/tools/tsplview/tsplview", self.path("bin"))
        path = self.spooler.environment["PATH"]
        self.spooler.environment["PATH"] = self.path("bin") + ":" + path

    def tarvo_report(self, *arguments, check=True):
        """What it says; the report is the file of that name."""
        return self.spooler.run("bash", f"{SOURCE}/tools/tarvo-report", "--log",
                                self.spooler.path("log/error_log"), "--out", self.path("report"),
                                *arguments, check=check)

    def read_report(self):
        with open(self.path("report"), encoding="utf-8") as file:
            return file.read()

    def test_a_queue_with_a_good_job_and_a_refused_one(self):
        label = documents.pdf(self.path("label.pdf"), 101.6, 152.4, documents.box(10, 20, 30, 5))
        answer = self.spooler.run("lp", "-d", "label", "-U", "gretchen", "-t", "Offer for Acme",
                                  "-o", "RecordPrinterCommands=1", "-o", "Brightness=4", label)
        self.assertEqual(self.spooler.wait(int(answer.split("-")[1].split()[0]))["state"], "completed")
        # A document that CUPS has no filter for.
        with open(self.path("text.docx"), "wb") as file:
            file.write(b"PK\3\4" + bytes(300))
        self.assertIn("Unsupported document-format",
                      self.spooler.run("lp", "-d", "label", self.path("text.docx"), check=False))
        # The test's filters leave their recordings elsewhere.
        ppd = self.path("label.ppd")
        with open(ppd, "w", encoding="utf-8") as file:
            file.write(self.spooler.read("etc/ppd/label.ppd").replace(
                "/var/spool/cups/tmp/tarvo", self.spooler.path("dumps/spool/tarvo")))

        said = self.tarvo_report("--ppd", ppd, "label")
        self.assertNotIn("not read", said)
        report = self.read_report()
        for expected in ("printer label is idle.", "*4x6 4x4", "Jobs that are not finished: 0",
                         '[Job 1] Queued on "label" by (hidden).', "[Job 1] argv[3]=(hidden)",
                         "Brightness=4", "settings->PaperType:LabelGaps",
                         "client-error-document-format-not-supported",
                         "SIZE 102.1 mm, 152.4 mm", "816 x 1218 dots", "PRINT 1,1",
                         "*PPD-Adobe:"):
            self.assertIn(expected, report)
        for secret in ("gretchen", "Acme", "Offer", "job-uuid", "envp["):
            self.assertNotIn(secret, report)

    # As CUPS itself writes them into its log and its list of jobs.
    def test_names_that_cups_has_to_quote(self):
        document = self.path('Brief copies=3 "an" Käthe.txt')
        with open(document, "w", encoding="utf-8") as file:
            file.write("a text\n")
        for user, title in (("jo", "Q"), ("Max Müller", 'An "Jörg" & Co, sides=two'), ("b\\o", document)):
            answer = self.spooler.run("lp", "-d", "label", "-U", user, "-t", title, "-o",
                                      "job-password=geheim", document)
            self.spooler.wait(int(answer.split("-")[1].split()[0]))
        self.tarvo_report("--ppd", self.spooler.path("etc/ppd/label.ppd"), "label")
        report = self.read_report()
        self.assertIn("[Job 3] argv[3]=(hidden)", report)
        for secret in ("Müller", "Jörg", "sides=two", "Brief", "Käthe", "copies=3", "geheim", '"jo"', '"Q"',
                       "b\\o", "b\\\\o"):
            self.assertNotIn(secret, report)

    def test_a_queue_that_is_not_there_and_a_cups_that_is_down(self):
        self.assertIn('there is no queue "other"', self.tarvo_report("other", check=False))
        self.assertFalse(os.path.exists(self.path("report")))
        self.assertNotIn("not read  the queue's state", self.tarvo_report("label"))
        os.remove(self.path("report"))
        self.spooler._daemon.terminate()
        self.spooler._daemon.wait(10)
        said = self.tarvo_report("--ppd", self.spooler.path("etc/ppd/label.ppd"), "label")
        self.assertIn("not read  the queue's state", said)
        self.assertIn("read      the queue's model", said)


if __name__ == "__main__":
    unittest.main()
