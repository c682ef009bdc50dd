"""./run on real documents: what it prints, what it refuses, what it says."""
import os
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

ROOT = os.environ["TARVO_ROOT"]
sys.path.insert(0, os.path.join(ROOT, "tests/support"))
from comma_locale import comma_locale  # noqa: E402

RUN = os.path.join(ROOT, "run")

HALFTONES = ["None", "FloydSteinberg", "Ordered", "Burkes", "Stucki", "JarvisJudiceNinke", "Sierra",
             "StevensonArce", "Tattoo", "Tattoo_X8"]


def png(width, height, is_ink):
    """A gray PNG file, black where is_ink(x, y), white elsewhere."""
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    rows = b"".join(b"\0" + bytes(0 if is_ink(x, y) else 255 for x in range(width))
                    for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Page:
    """The dots of a BITMAP command, and the setup commands before it."""

    def __init__(self, commands, stride, height, data):
        self.commands = commands
        self.stride, self.height, self.data = stride, height, data

    def row(self, y):
        """The dots of a row as a text: # is ink (a bit of 0), . is paper."""
        line = self.data[y * self.stride:(y + 1) * self.stride]
        return "".join(f"{byte:08b}" for byte in line).replace("0", "#").replace("1", ".")

    def ink(self):
        return sum(8 - bin(byte).count("1") for byte in self.data)


def pages_of(path):
    """The pages of a stream, each with its commands up to BITMAP."""
    with open(path, "rb") as file:
        stream = file.read()
    assert stream.startswith(b"\n" * 64), "no preamble"
    pages = []
    at = 64
    while at < len(stream):
        head = re.compile(rb"BITMAP 0,0,(\d+),(\d+),0,").search(stream, at)
        stride, height = int(head[1]), int(head[2])
        data = stream[head.end():head.end() + stride * height]
        commands = stream[at:head.start()].decode().split("\r\n")
        tail = re.compile(rb"\r\nPRINT 1,\d+\r\n").match(stream, head.end() + stride * height)
        pages.append(Page(commands, stride, height, data))
        at = tail.end()
    return pages


class RunTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarvo-run-test.")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = os.path.join(self.folder, "out")

    def run_it(self, *arguments, status=0, cwd=None, environment=None):
        result = subprocess.run([RUN, "--out", self.out, *arguments], cwd=cwd or self.folder,
                                capture_output=True, text=True, env=dict(os.environ, **(environment or {})))
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return result

    def write(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(data if isinstance(data, bytes) else data.encode())
        return path

    def postscript_to(self, device, name, program, *more):
        path = os.path.join(self.folder, name)
        subprocess.run(["gs", "-q", "-dBATCH", "-dNOPAUSE", f"-sDEVICE={device}", f"-o{path}",
                        *more, "-c", program], check=True)
        return path

    def only_page(self, name):
        pages = pages_of(os.path.join(self.out, name + ".tspl"))
        self.assertEqual(len(pages), 1)
        return pages[0]

    # What is refused.

    def test_refuses_an_unknown_option_and_lists_the_known(self):
        document = self.write("note.txt", "note\n")
        result = self.run_it("-o", "Colour=Red", document, status=2)
        self.assertIn('There is no option "Colour"', result.stderr)
        for option in ("PageSize", "Resolution", "MediaMethod", "PaperType", "GapsHeight",
                       "PostAction", "Origin", "HalftoneType", "MirrorImage", "NegativeImage",
                       "PrintSpeed", "Darkness", "Brightness", "RecordPrinterCommands"):
            self.assertRegex(result.stderr, rf"(?m)^ +{option} ")
        self.assertFalse(os.path.exists(self.out))

    def test_refuses_an_unknown_choice_and_lists_the_known(self):
        document = self.write("note.txt", "note\n")
        result = self.run_it("-o", "HalftoneType=Dots", document, status=2)
        self.assertIn('HalftoneType cannot be "Dots"', result.stderr)
        self.assertEqual(re.findall(r"(?m)^ +(\S+)", result.stderr), HALFTONES)
        self.assertFalse(os.path.exists(self.out))

    def test_refuses_page_sizes_that_the_model_does_not_take(self):
        document = self.write("note.txt", "note\n")
        for size in ("A4", "Custom.105x50mm", "Custom.14x50mm", "Custom.50x1001mm", "Custom.x50mm",
                     "Custom.5x2furlong", "Custom", "Custom."):
            result = self.run_it("-o", "PageSize=" + size, document, status=2)
            self.assertIn(f'PageSize cannot be "{size}"', result.stderr)
            self.assertIn("15 x 10 to 104 x 1000 mm", result.stderr)

    def test_refuses_an_unknown_model_and_an_unknown_switch(self):
        document = self.write("note.txt", "note\n")
        result = self.run_it("--model", "label-600dpi", document, status=2)
        self.assertEqual(re.findall(r"(?m)^ +(\S+)", result.stderr),
                         ["label-203dpi", "label-300dpi", "stencil-a4-300dpi"])
        self.assertIn('There is no "--turbo"', self.run_it("--turbo", status=2).stderr)

    def test_documents_that_fail_are_told_after_the_others(self):
        good = self.write("good.txt", "good\n")
        empty = self.write("empty.txt", "")
        junk = self.write("junk.bin", bytes(range(256)) * 8)
        broken = self.write("broken.pdf", "%PDF-1.4\nnothing follows\n")
        result = self.run_it("missing.pdf", empty, junk, broken, self.folder, good, status=1)
        self.assertEqual(re.findall(r"(?m)^  failed: ([^:\n]*)", result.stderr),
                         ["no such file", "the file is empty", "not a PDF, PNG, JPEG or text file",
                          "no page could be made of it", "not a file"])
        self.assertIn("5 of 6 documents failed", result.stdout)
        self.assertGreater(self.only_page("good").ink(), 100)

    # What is printed.

    def test_prints_pdf(self):
        # An inch of ink, an inch from the left and the top of a page of 4 x 6 inches: 203 dots.
        document = self.postscript_to(
            "pdfwrite", "square.pdf",
            "<</PageSize[288 432]>>setpagedevice 72 288 72 72 rectfill showpage")
        result = self.run_it(document)
        self.assertRegex(result.stdout, r"page 1: 816 x 1218 dots, printed in \d+\.\d{3} s")
        page = self.only_page("square")
        # 812 dots are filled up to 816, a multiple of 8: 816 / 203 * 25.4.
        self.assertIn("SIZE 102.1 mm, 152.4 mm", page.commands)
        blank = "." * 816
        self.assertEqual(page.row(202), blank)
        for y in (203, 300, 405):
            self.assertEqual(page.row(y), "." * 203 + "#" * 203 + "." * 410)
        self.assertEqual(page.row(406), blank)
        with open(os.path.join(self.out, "square-1.png"), "rb") as picture:
            self.assertEqual(picture.read(8), b"\x89PNG\r\n\x1a\n")

    def test_prints_png_dot_for_dot_where_it_fits(self):
        checks = png(812, 1218, lambda x, y: (x // 7 + y // 5) % 2 == 0)
        self.run_it(self.write("checks.png", checks))
        page = self.only_page("checks")
        for y in range(1218):
            row = "".join("#" if (x // 7 + y // 5) % 2 == 0 else "." for x in range(812))
            self.assertEqual(page.row(y), row + "....", f"row {y}")

    def test_prints_jpeg(self):
        document = self.postscript_to(
            "jpeggray", "half.jpg",
            "<</PageSize[288 432]>>setpagedevice 0 0 144 432 rectfill showpage",
            "-r203", "-dJPEGQ=100")
        self.run_it(document)
        page = self.only_page("half")
        self.assertEqual((page.stride, page.height), (102, 1218))
        for y in (0, 600, 1217):
            self.assertEqual(page.row(y), "#" * 406 + "." * 410)

    def test_prints_text(self):
        self.run_it(self.write("two lines.txt", "First line\n\nThird line: 12.50 €\n"))
        page = self.only_page("two lines")
        inked = [y for y in range(page.height) if "#" in page.row(y)]
        # Lines are a sixth of an inch high, and keep 9 points from the top: 25 dots.
        self.assertGreaterEqual(inked[0], 25)
        self.assertLess(inked[-1], 25 + 3 * 203 // 6 + 10)
        # The first column of ink is 9 points from the left: 25 dots.
        self.assertGreaterEqual(min(page.row(y).index("#") for y in inked), 25)

    def test_prints_every_page(self):
        document = self.postscript_to(
            "pdfwrite", "pages.pdf", "<</PageSize[288 432]>>setpagedevice "
            "1 1 3 { 72 mul 0 exch 288 10 rectfill showpage } for")
        result = self.run_it(document)
        self.assertEqual(len(pages_of(os.path.join(self.out, "pages.tspl"))), 3)
        self.assertEqual(re.findall(r"page (\d):", result.stdout), ["1", "2", "3"])
        pictures = [name for name in sorted(os.listdir(self.out)) if name.endswith(".png")]
        self.assertEqual(pictures, ["pages-1.png", "pages-2.png", "pages-3.png"])

    def test_a_larger_document_is_scaled_down_and_not_cropped(self):
        # A frame of 8 points along the edges of A4 shows on all four edges that it reaches.
        document = self.postscript_to(
            "pdfwrite", "letter.pdf", "<</PageSize[595 842]>>setpagedevice "
            "16 setlinewidth 0 0 595 842 rectstroke showpage")
        self.run_it(document)
        page = self.only_page("letter")
        middle = page.row(page.height // 2)
        left, right = middle.index("#"), middle.rindex("#")
        # 842 points to 432 would leave 595 at 305: the width of 288 decides, 288 / 595 = 0.484.
        self.assertLess(left, 3)
        self.assertGreater(right, 808)
        inked = [y for y in range(page.height) if "#" in page.row(y)]
        # 842 * 0.484 = 407.6 points = 1149 dots, in the middle of 1218.
        self.assertAlmostEqual(inked[-1] - inked[0] + 1, 1149, delta=3)
        self.assertAlmostEqual(inked[0], (1218 - 1149) / 2, delta=3)

    def test_options_reach_the_filter(self):
        left = png(812, 1218, lambda x, y: x < 100)
        document = self.write("left.png", left)
        self.run_it("-o", "darkness=8", "-oPrintSpeed=4", "-o", "MirrorImage Origin=Rotation180",
                    "-o", "PaperType=LabelMark GapsHeight=2", document)
        page = self.only_page("left")
        for command in ("SPEED 4", "DENSITY 8", "DIRECTION 1,0", "BLINE 2.0 mm, 0.0 mm"):
            self.assertIn(command, page.commands)
        self.assertEqual(page.row(7), "." * 716 + "#" * 100)
        self.run_it("-o", "MirrorImage", "-o", "noMirrorImage", document)
        self.assertEqual(self.only_page("left").row(7), "#" * 100 + "." * 716)

    def test_another_model_and_a_custom_size(self):
        document = self.write("note.txt", "note\n")
        self.run_it("--model", "label-300dpi", "-o", "PageSize=Custom.4.5x3cm", document)
        page = self.only_page("note")
        # 45 mm are 531.5 dots at 300 dpi; 536 are a multiple of 8, in 67 bytes.
        self.assertEqual((page.stride, page.height), (67, 354))
        self.run_it("-o", "PageSize=Custom.104x50mm", document)
        # 104 mm are 831 dots at 203 dpi, filled up to 832.
        self.assertIn("SIZE 104.1 mm, 50.0 mm", self.only_page("note").commands)

    def test_says_when_choices_exclude_each_other(self):
        document = self.write("note.txt", "note\n")
        result = self.run_it("-o", "NegativeImage", document)
        self.assertIn("note: HalftoneType=None does not go with NegativeImage=True", result.stdout)
        page = self.only_page("note")
        self.assertEqual(page.ink(), 816 * 1218)  # a label of ink
        result = self.run_it("-o", "NegativeImage", "-o", "HalftoneType=Tattoo", document)
        self.assertNotIn("note:", result.stdout)

    # Pictures.

    def test_a_vertical_line_in_a_picture_stays_vertical(self):
        # A picture of an odd width, with a line of a tenth of it down the middle.
        document = self.write("line.png", png(201, 307, lambda x, y: 90 <= x < 110))
        for model, size, portrait in (("label-203dpi", "4x6", True), ("label-203dpi", "2x1", False),
                                      ("label-203dpi", "100x150mm", True),
                                      ("label-203dpi", "3x2", False),
                                      ("label-203dpi", "Custom.104x151mm", True),
                                      ("label-300dpi", "76x51mm", False),
                                      ("stencil-a4-300dpi", "Tattoo_A6", True)):
            with self.subTest(model=model, size=size):
                self.run_it("--model", model, "-o", "PageSize=" + size, "-o", "HalftoneType=None",
                            document)
                page = self.only_page("line")
                rows = [page.row(y) for y in range(page.height)]
                if not portrait:  # the picture is turned, and so is its line
                    rows = ["".join(column) for column in zip(*rows)]
                inked = [row for row in rows if "#" in row]
                self.assertGreater(len(inked), 150)
                self.assertEqual(len(set(inked)), 1, "rows differ: the line is not straight")
                self.assertRegex(inked[0], r"^\.+#+\.+$")

    def test_a_size_means_the_same_where_numbers_have_a_comma(self):
        environment = comma_locale(self, self.folder)
        listed = self.run_it("--list", environment=environment).stdout
        self.assertIn("Custom.WIDTHxLENGTHmm  15 x 10 to 104 x 1000 mm", listed)
        document = self.write("note.txt", "note\n")
        # The widest that the model takes.
        self.run_it("-o", "PageSize=Custom.104x10.5mm", document, environment=environment)
        self.assertEqual((self.only_page("note").stride * 8, self.only_page("note").height), (832, 84))

    def test_brightness_of_zero_changes_nothing_in_a_picture(self):
        document = self.write("left.png", png(812, 1218, lambda x, y: x < 100))
        self.run_it("-o", "Brightness=0", document)
        self.assertEqual(self.only_page("left").ink(), 100 * 1218)

    # Names and folders.

    def test_documents_of_one_name_keep_apart(self):
        self.write("a page.txt", "text\n")
        self.write("a page.png", png(60, 90, lambda x, y: x < 10))
        os.mkdir(os.path.join(self.folder, "other"))
        self.write("other/a page.txt", "other\n")
        self.run_it("a page.txt", "a page.png", "other/a page.txt", "./a page.txt")
        self.assertEqual(sorted(name for name in os.listdir(self.out) if name.endswith(".tspl")),
                         ["a page.png.tspl", "a page.tspl", "a page.txt-copy2.tspl",
                          "a page.txt.tspl"])

    def test_works_from_any_folder_with_relative_names(self):
        self.write("here.txt", "here\n")
        self.run_it("here.txt", cwd=self.folder)
        self.run_it(os.path.relpath(os.path.join(self.folder, "here.txt"), "/usr"), cwd="/usr")
        self.assertGreater(self.only_page("here").ink(), 100)

    # The samples.

    def scanned(self, picture):
        result = subprocess.run(["zbarimg", "-q", "--nodbus", os.path.join(self.out, picture)],
                                capture_output=True, text=True, check=True)
        return sorted(result.stdout.split())

    def test_prints_three_samples_and_the_barcodes_of_the_first_scan(self):
        result = self.run_it()
        self.assertEqual(sorted(os.listdir(self.out)),
                         sorted(f"{name}{ending}" for ending in (".log", ".tspl", "-1.png")
                                for name in ("shipping-label", "still-life", "moth")))
        for sample in ("shipping-label.pdf: for label-203dpi, PageSize=4x6 HalftoneType=None\n",
                       "still-life.pdf: for label-300dpi, PageSize=4x6 HalftoneType=Stucki\n",
                       "moth.pdf: for stencil-a4-300dpi, PageSize=A4 HalftoneType=Tattoo\n"):
            self.assertIn(sample, result.stdout)
        self.assertEqual(self.scanned("shipping-label-1.png"),
                         ["CODE-128:TV20250412007355",
                          "QR-Code:https://example.com/t/TV20250412007355"])

    def test_the_barcodes_scan_at_300_dpi_too(self):
        self.run_it("--model", "label-300dpi", os.path.join(ROOT, "samples", "shipping-label.pdf"))
        self.assertEqual(self.scanned("shipping-label-1.png"),
                         ["CODE-128:TV20250412007355",
                          "QR-Code:https://example.com/t/TV20250412007355"])

    def test_the_bars_of_the_label_are_whole_dots(self):
        self.run_it(os.path.join(ROOT, "samples", "shipping-label.pdf"))
        # Half way down the Code 128: modules of 4 dots between the 3 dots of the frame.
        bars = self.only_page("shipping-label").row(985)
        runs = [len(run) for run in re.findall(r"#+|\.+", bars)][3:-3]
        self.assertEqual([run % 4 for run in runs], [0] * len(runs))
        self.assertEqual(sum(runs), 4 * 145)  # 11 modules a character and 2 for the last bar


if __name__ == "__main__":
    unittest.main()
