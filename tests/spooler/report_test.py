"""tarvo-report on a CUPS that prints: what it finds, and that it tells nobody's secrets."""
import os
import shutil
import unittest

import documents
from case import SpoolerCase
from spooler import BUILD, SOURCE


class Test(SpoolerCase):
    def test_a_queue_with_a_good_job_and_a_refused_one(self):
        self.start_queue()
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

        os.mkdir(self.path("bin"))
        shutil.copy(f"{BUILD}/tools/tsplview/tsplview", self.path("bin"))
        path = self.spooler.environment["PATH"]
        self.spooler.environment["PATH"] = self.path("bin") + ":" + path
        said = self.spooler.run("bash", f"{SOURCE}/tools/tarvo-report", "--ppd", ppd, "--log",
                                self.spooler.path("log/error_log"), "--out", self.path("report"),
                                "label")
        self.assertNotIn("not read", said)
        with open(self.path("report"), encoding="utf-8") as file:
            report = file.read()
        for expected in ("printer label is idle.", "*4x6 4x4", "Jobs that are not finished: 0",
                         '[Job 1] Queued on "label" by (hidden).', "[Job 1] argv[3]=(hidden)",
                         "Brightness=4", "settings->PaperType:LabelGaps",
                         "client-error-document-format-not-supported",
                         "SIZE 102.1 mm, 152.4 mm", "816 x 1218 dots", "PRINT 1,1",
                         "*PPD-Adobe:"):
            self.assertIn(expected, report)
        for secret in ("gretchen", "Acme", "Offer", "job-uuid", "envp["):
            self.assertNotIn(secret, report)


if __name__ == "__main__":
    unittest.main()
