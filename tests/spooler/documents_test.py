"""Documents of each kind, through the spooler to the printer."""
import os
import re
import struct
import subprocess
import unittest

import documents
from case import SpoolerCase
from spooler import BUILD, LABEL203, LABEL300, PRELOAD, STENCIL

MM203 = 203 / 25.4

# Keeps what the filter gets, and prints with the filter.
RECORDING = """#!/bin/sh
dumps=${CUPS_SERVERROOT%/etc}/dumps
printf %s "$5" >"$dumps/options"
tee "$dumps/raster" | LD_PRELOAD=$CUPS_SERVERBIN/ours/redirect.so TARVO_TEST_FOLDER=$dumps \\
  ASAN_OPTIONS=verify_asan_link_order=0 "$CUPS_SERVERBIN/ours/rastertotarvo" "$@"
"""


class Test(SpoolerCase):
    def label(self, *contents, name="label.pdf"):
        return documents.pdf(self.path(name), 101.6, 152.4, *contents)

    def test_a_pdf(self):
        printer = self.start_queue()
        page, = self.print(printer, self.label(documents.box(10, 20, 30, 5)))
        self.assertEqual(self.chain(), ["pdftopdf", "gstoraster", "rastertoaligned", "rastertotarvo"])
        # 812 x 1218 dots, filled up to 816.
        self.assertEqual((page.width, page.height, page.copies), (816, 1218, 1))
        self.assert_box(page, 10 * MM203, 20 * MM203, 30 * MM203, 5 * MM203)

    def test_a_picture_goes_by_way_of_pdf_and_fills_the_page(self):
        printer = self.start_queue()
        # As high as the page for its width, with a corner of ink.
        shape = lambda x, y: 0 if x < 50 and y < 25 else 255
        picture = documents.png(self.path("corner.png"), 200, 300, shape)
        page, = self.print(printer, picture)
        self.assertEqual(self.chain(), ["imagetopicture", "picturetolayout", "gstoraster",
                                        "rastertoaligned", "rastertotarvo"])
        self.assertEqual((page.width, page.height), (816, 1218))
        self.assert_box(page, 0, 0, 203, 101)

        jpeg = documents.jpeg(self.path("box.jpg"), self.label(documents.box(10, 20, 30, 5)))
        page, = self.print(printer, jpeg)
        self.assertEqual(self.chain()[0], "imagetopicture")
        self.assert_box(page, 10 * MM203, 20 * MM203, 30 * MM203, 5 * MM203, within=4)

    def test_a_picture_keeps_the_page_size_of_the_label(self):
        printer = self.start_queue()
        wide = documents.png(self.path("wide.png"), 400, 300, lambda x, y: 0)
        # Turned where it gets larger that way, and in the middle.
        for size, dots, box in (("4x6", (816, 1218), (0, 68, 812, 1082)),
                                ("3x2", (616, 406), (34, 0, 541, 406)),
                                ("Custom.60x35mm", (480, 280), (53, 0, 373, 280))):
            with self.subTest(size):
                page, = self.print(printer, wide, f"PageSize={size}")
                self.assertEqual((page.width, page.height), dots)
                self.assert_box(page, *box)

    def test_a_text(self):
        printer = self.start_queue()
        with open(self.path("note.txt"), "w", encoding="utf-8") as file:
            file.write("first\n\n\nfourth\n")
        page, = self.print(printer, self.path("note.txt"))
        self.assertEqual(self.chain(), ["texttopdf", "pdftopdf", "gstoraster", "rastertoaligned",
                                        "rastertotarvo"])
        rows = [page.row(y) != b"\xff" * page.width_bytes for y in range(page.height)]
        lines = sum(1 for above, here in zip([False] + rows, rows) if here and not above)
        self.assertGreaterEqual(lines, 2)  # of letters, and the dots of their i

    def test_two_pages(self):
        printer = self.start_queue()
        pages = self.print(printer, self.label(documents.box(10, 20, 30, 5),
                                               documents.box(10, 90, 30, 5)))
        self.assertEqual([page.box()[1] // 100 for page in pages], [1, 7])
        self.assertEqual(self.spooler.page_log(self.number), [("total", "2")])

    def test_three_copies(self):
        printer = self.start_queue()
        one, two = documents.box(10, 20, 30, 5), documents.box(10, 90, 30, 5)
        picture = documents.png(self.path("black.png"), 200, 300, lambda x, y: 0)
        for document, pages in ((self.label(one), 1), (self.label(one, two, name="two.pdf"), 2),
                                (picture, 1)):
            for options, repeated in ((), False), (("collate=false",), False), (("collate=true",), True):
                with self.subTest(document=document, options=options):
                    printed = self.print(printer, document, *options, copies=3)
                    # The printer repeats a page that comes once; collated ones come again.
                    self.assertEqual([page.copies for page in printed],
                                     [1] * pages * 3 if repeated else [3] * pages)
                    self.assertEqual([page.data for page in printed],
                                     [page.data for page in printed[:pages]] * (3 if repeated else 1))
                    self.assertEqual(self.spooler.page_log(self.number), [("total", str(pages * 3))])

    def test_the_bytes_are_those_of_the_filter(self):
        self.start_spooler(filters={"rastertotarvo": RECORDING})
        os.mkdir(self.path("spool"))
        printer = self.start_queue()
        document = self.label(documents.box(10, 20, 30, 5) + documents.text(10, 60, 12, "Text"),
                              documents.box(0, 0, 101.6, 152.4))
        for options in ((), ("HalftoneType=Stucki", "Brightness=-10", "MirrorImage", "Darkness=8"),
                        ("HalftoneType=Tattoo", "NegativeImage", "Origin=Rotation180")):
            with self.subTest(options):
                self.print(printer, document, *options)
                text = self.spooler.read("dumps/options")
                for option in options:
                    self.assertIn(option, text)
                with open(self.spooler.path("dumps/raster"), "rb") as raster:
                    own = subprocess.run(
                        [f"{BUILD}/filter/rastertotarvo", "1", "user", "title", "1", text],
                        stdin=raster, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                        env=dict(os.environ, PPD=self.spooler.path("etc/ppd/label.ppd"),
                                 LD_PRELOAD=PRELOAD, TARVO_TEST_FOLDER=self.folder,
                                 ASAN_OPTIONS="verify_asan_link_order=0"))
                self.assertTrue(printer.jobs[-1] == own.stdout, "the bytes differ")
                self.assertGreater(len(own.stdout), 2 * 102 * 1218)

    def test_options_of_the_job_and_of_the_queue_reach_the_filter(self):
        printer = self.start_queue(options=("PrintSpeed=3", "Darkness=4", "PaperType=LabelMark"))
        document = self.label(documents.box(10, 20, 30, 5))
        page, = self.print(printer, document)
        self.assertEqual(page.commands, [
            "SIZE 102.1 mm, 152.4 mm", "BLINE 3.0 mm, 0.0 mm", "REFERENCE 0,0", "DIRECTION 0,0",
            "SPEED 3", "DENSITY 4", "SET RIBBON OFF", "OFFSET 0.0 mm", "SET TEAR ON",
            "SET PEEL OFF", "SET CUTTER OFF", "CLS"])
        page, = self.print(printer, document, "Darkness=9", "MediaMethod=Transfer", "PostAction=Cut",
                           "Origin=Rotation180", "PaperType=Continue")
        self.assertEqual(page.commands, [
            "SIZE 102.1 mm, 152.4 mm", "GAP 0, 0", "REFERENCE 0,0", "DIRECTION 1,0", "SPEED 3",
            "DENSITY 9", "SET RIBBON ON", "OFFSET 0.0 mm", "SET TEAR OFF", "SET PEEL OFF",
            "SET CUTTER ON", "CLS"])

    # A document of the page's size, with a line of a millimetre from top to bottom in the middle:
    # it begins and ends in the same columns in each row.
    def test_every_size_is_straight_and_not_scaled(self):
        printer203 = self.start_queue()
        printer300 = self.start_queue(LABEL300, "fine")
        stencil = self.start_queue(STENCIL, "stencil")
        sizes = [(printer, queue, dpi, name)
                 for printer, queue, dpi in ((printer203, "label", 203), (printer300, "fine", 300))
                 for name in ("3x2", "2.25x1.25", "100x150mm", "76x51mm", "Custom.33x47mm")]
        sizes.append((stencil, "stencil", 300, "Letter"))
        for printer, queue, dpi, name in sizes:
            with self.subTest(size=name, queue=queue):
                numbers = re.findall(r"[\d.]+\d|\d", name.removeprefix("Custom."))
                inch = 1 if name.endswith("mm") else 25.4
                width, height = (215.9, 279.4) if name == "Letter" else (float(n) * inch for n in numbers)
                document = documents.pdf(self.path("line.pdf"), width, height,
                                         documents.box(width / 2, -5, 1, height + 10))
                page, = self.print(printer, document, f"PageSize={name}", queue=queue)
                dots = round(width / 25.4 * dpi)
                self.assertEqual((page.width, page.height),
                                 ((dots + 7) // 8 * 8, round(height / 25.4 * dpi)))
                # The page ends within a dot, CUPS puts it in the middle of whole points: a row or
                # two at the edge may be past it, and blank.
                self.assertEqual(len({page.row(y) for y in range(2, page.height - 2)}), 1)
                self.assert_box(page, width / 2 / 25.4 * dpi, 0, dpi / 25.4, page.height, within=2)

    # Raster made elsewhere is aligned as well.
    def test_a_raster_of_white_on_black(self):
        printer = self.start_queue()
        header = bytearray(1796)
        struct.pack_into("<2I", header, 276, 203, 203)       # HWResolution
        struct.pack_into("<I", header, 340, 1)               # NumCopies
        # cupsWidth, cupsHeight, cupsMediaType, bits per colour and pixel, bytes per line, order, space
        struct.pack_into("<8I", header, 372, 13, 9, 0, 8, 8, 13, 0, 18)
        row = bytes([255] * 6 + [0] + [255] * 6)
        with open(self.path("line.ras"), "wb") as file:
            file.write(b"3SaR" + header + row * 9)
        page, = self.print(printer, self.path("line.ras"))
        self.assertEqual(self.chain(), ["rastertoaligned", "rastertotarvo"])
        self.assertEqual(page.box(), (6, 0, 7, 9))


if __name__ == "__main__":
    unittest.main()
