"""Nobody but its owner reaches a private CUPS, and no file is a printer."""
import os
import tempfile
import unittest
from unittest import mock

import documents
from case import SpoolerCase
from intruder import (as_another, can_become_another, listening_paths_of, open_to_others, ports_of)
from spooler import LABEL203, guard, make_folder

# Folders that the filters, which have a user of their own, have to look into. What is printed, logged
# and kept for clients is in none of them.
OPEN = ("bin", "data", "etc", "cache", "run")

# Of one who wants files written: a filter of the print server's that passes on what it gets.
PASSING_ON = """*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "PASSING.PPD"
*Manufacturer: "None"
*Product: "(None)"
*ModelName: "None"
*ShortNickName: "None"
*NickName: "None"
*PSVersion: "(3010.000) 0"
*cupsFilter: "*/* 0 -"
*cupsFilter2: "*/* */* 0 -"
*OpenUI *PageSize: PickOne
*DefaultPageSize: A4
*PageSize A4: ""
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*DefaultPageRegion: A4
*PageRegion A4: ""
*CloseUI: *PageRegion
*DefaultImageableArea: A4
*ImageableArea A4: "0 0 595 842"
*DefaultPaperDimension: A4
*PaperDimension A4: "595 842"
"""


class Test(SpoolerCase):
    def setUp(self):
        super().setUp()
        self.printer = self.start_queue()
        # Others may look into this one.
        self.shared = make_folder("tarvo-shared-")
        self.addCleanup(guard(self.shared))
        os.chmod(self.shared, 0o755)
        self.model = self.write("model.ppd", PASSING_ON, 0o644)
        self.words = self.write("words.txt", "words of another\n", 0o644)
        self.target = self.write("target", "the owner's\n", 0o600)

    def write(self, name, text, mode):
        path = f"{self.shared}/{name}"
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(path, mode)
        return path

    def assert_target_is_untouched(self):
        with open(self.target, encoding="utf-8") as file:
            self.assertEqual(file.read(), "the owner's\n")

    # Whatever the configuration says: what the process holds.
    def test_it_listens_on_its_socket_and_on_no_port(self):
        label = documents.pdf(self.path("label.pdf"), 101.6, 152.4, documents.box(10, 20, 30, 5))
        for _ in range(2):
            self.assertEqual(ports_of(self.spooler.process), [])
            self.assertEqual(listening_paths_of(self.spooler.process),
                             [self.spooler.path("socket/cups.sock")])
            self.print(self.printer, label)

    def test_what_is_printed_and_logged_is_its_owners(self):
        self.print(self.printer, self.words)
        self.assertEqual(open_to_others(self.spooler.folder, 0o002), [])
        readable = {path for path in open_to_others(self.spooler.folder, 0o004)
                    if path.partition("/")[0] not in OPEN}
        self.assertEqual(readable, set())
        for name in ("log/error_log", "spool/d00001-001", "dumps/spool"):
            self.assertTrue(os.path.exists(self.spooler.path(name)), name)

    # With a model of one's own, and root's rights, it would be any file and any bytes.
    def test_a_file_is_no_printer(self):
        answer = self.spooler.run("lpadmin", "-p", "thief", "-E", "-v", f"file://{self.target}", "-P",
                                  self.model, check=False)
        self.assertIn("File device URIs have been disabled", answer)
        self.assertNotIn("thief", self.spooler.run("lpstat", "-e"))
        self.assert_target_is_untouched()

    @unittest.skipUnless(can_become_another(), "only root can become another user")
    def test_another_user_can_do_nothing(self):
        self.assertEqual(as_another("cat", self.model, self.words).returncode, 0)
        socket = self.spooler.path("socket/cups.sock")
        harmless = ["lpadmin", "-p", "thief", "-E", "-v", "socket://127.0.0.1:9", "-P", self.model]
        for command in (harmless,
                        ["lpadmin", "-p", "thief", "-E", "-v", f"file://{self.target}", "-P",
                         self.model],
                        ["lpadmin", "-p", "label", "-v", f"file://{self.target}"],
                        ["lpadmin", "-x", "label"], ["cancel", "-a"],
                        ["lp", "-d", "label", self.words], ["lp", "-d", "thief", self.words],
                        ["lpstat", "-e"], ["lpstat", "-W", "all", "-o"]):
            with self.subTest(command=command):
                environment = dict(self.spooler.environment, HOME="/nonexistent")
                self.assertNotIn("label", as_another(*command, environment=environment).stdout)
                # And by the other way of naming a server.
                done = as_another(command[0], "-h", socket, *command[1:],
                                  environment=dict(environment, CUPS_SERVER=""))
                self.assertNotIn("label", done.stdout)
                if command[0] != "lpstat":
                    self.assertNotEqual(done.returncode, 0, done.stdout)
        for name in ("socket", "log", "home", "spool", "spool/tmp", "dumps", "dumps/spool"):
            with self.subTest(folder=name):
                self.assertNotEqual(as_another("ls", self.spooler.path(name)).returncode, 0)
        self.assertEqual(self.spooler.run("lpstat", "-e"), "label\n")
        self.assertIn("socket://", self.spooler.run("lpstat", "-v", "label"))
        self.assertEqual(self.printer.jobs, [])
        self.assert_target_is_untouched()
        # It is who asks that counts, not what is asked.
        self.spooler.run(*harmless)
        self.assertIn("thief", self.spooler.run("lpstat", "-e"))

    # The system's folder for temporary files may be deep down, or its owner's alone.
    def test_its_folder_is_one_that_its_socket_and_its_filters_can_use(self):
        root = tempfile.mkdtemp(prefix="tarvo-", dir="/tmp")
        self.addCleanup(guard(root))
        os.chmod(root, 0o755)
        for name, mode, will_do in (("short", 0o755, True), ("d" * 90, 0o755, False),
                                    ("closed", 0o700, os.geteuid() != 0)):
            with self.subTest(name):
                parent = f"{root}/{name}"
                os.mkdir(parent)
                os.chmod(parent, mode)
                with mock.patch("tempfile.tempdir", parent):
                    spooler = self.start_spooler()
                self.assertEqual(os.path.dirname(spooler.folder), parent if will_do else "/tmp")
                self.spooler.add_queue("label", LABEL203, self.printer.uri)
                self.print(self.printer, self.words)


if __name__ == "__main__":
    unittest.main()
