"""Options that CUPS and this filter share, and documents that do not fit: what comes of them. Each
case is a paragraph of docs/printing.md."""
import subprocess
import unittest

import documents
from case import SpoolerCase
from spooler import LABEL203

# A letter of the alphabet for the corners: the same neither turned nor mirrored.
CORNER = documents.box(5, 5, 30, 10)
PORTRAIT = {"as it is": (40, 40, 240, 80), "mirrored": (532, 40, 240, 80),
            "upside down": (532, 1098, 240, 80)}


class Test(SpoolerCase):
    def setUp(self):
        super().setUp()
        self.printer = self.start_queue()
        self.pdf = documents.pdf(self.path("corner.pdf"), 101.6, 152.4, CORNER)
        self.picture = documents.jpeg(self.path("corner.jpg"), self.pdf, dpi=203)

    def one(self, document, *options, queue="label"):
        page, = self.print(self.printer, document, *options, queue=queue)
        return page

    # imagetopdf and imagetoraster take it for a percentage of the light, in whatever case.
    def test_brightness_is_ours_alone_in_pictures_too(self):
        gray = documents.png(self.path("gray.png"), 200, 300, lambda x, y: 155 if x < 100 else 255)
        for document in (self.pdf, gray):
            plain = self.one(document, "HalftoneType=Stucki")
            self.assertEqual(self.one(document, "HalftoneType=Stucki", "Brightness=0").data, plain.data)
            # 100 levels of ink of 255, and 20 x 5 more or fewer.
            darker = self.one(document, "HalftoneType=Stucki", "Brightness=20")
            lighter = self.one(document, "HalftoneType=Stucki", "Brightness=-20")
            self.assertGreater(darker.ink(), plain.ink() + 0.15)
            if document == gray:
                self.assertAlmostEqual(plain.ink(), 100 / 255 / 2, delta=0.02)
                self.assertAlmostEqual(lighter.ink(), 0, delta=0.01)

    def test_mirror_of_cups_and_ours_mirror_once_each(self):
        for document in (self.pdf, self.picture):
            with self.subTest(document):
                self.assert_box(self.one(document), *PORTRAIT["as it is"], within=5)
                self.assert_box(self.one(document, "mirror"), *PORTRAIT["mirrored"], within=5)
                self.assert_box(self.one(document, "MirrorImage"), *PORTRAIT["mirrored"], within=5)
                # Both: twice.
                self.assert_box(self.one(document, "mirror", "MirrorImage"), *PORTRAIT["as it is"],
                                within=5)

    # 812 dots are filled up to 816 at the right; our mirror, after that, puts them at the left.
    def test_our_mirror_moves_the_label_by_the_dots_that_fill_it_up(self):
        theirs, ours = (self.one(self.pdf, option).box() for option in ("mirror", "MirrorImage"))
        self.assertEqual(ours[0] - theirs[0], 816 - 812)

    def test_landscape(self):
        # A page that has the label's shape is turned by CUPS, and turned back to fit: upside down.
        self.assert_box(self.one(self.pdf, "landscape"), *PORTRAIT["upside down"], within=5)
        # A page that lies across is turned to fit, and landscape changes nothing.
        across = documents.pdf(self.path("across.pdf"), 152.4, 101.6, CORNER)
        for options in ((), ("landscape",)):
            # 5 mm from the left and the bottom, 10 wide, 30 high.
            self.assert_box(self.one(across, *options), 40, 1218 - 40 - 240, 80, 240, within=5)
        # A picture lies across, as large as it fits: 6 inches high in a width of 4.
        box = self.one(self.picture, "landscape").box()
        self.assertAlmostEqual(box[2] - box[0], 80 * 4 / 6, delta=4)
        self.assertAlmostEqual(box[3] - box[1], 240 * 4 / 6, delta=4)

    # CUPS turns a picture where it believes that it gets larger, wrongly for a long one.
    def test_a_long_picture_can_be_kept_from_turning(self):
        long = documents.png(self.path("long.png"), 300, 100, lambda x, y: 0)
        self.assert_box(self.one(long, "PageSize=3x2"), 237, 0, 135, 406)
        self.assert_box(self.one(long, "PageSize=3x2", "orientation-requested=3"), 0, 101, 609, 203)

    # A frame along the edges of A4 on 4 x 6 inches: whether all four sides of it are there.
    def test_a_document_larger_than_the_label(self):
        frame = documents.pdf(self.path("a4.pdf"), 210, 297, "4 w 2 -295 206 293 re S\n")
        # CUPS's own choice for a label without margins: 297 mm fill the 6 inches, and of the 108 mm
        # that 210 become 3 are cut off at either side, the sides of the frame among them.
        filled = self.one(frame)
        self.assertEqual((filled.box()[1], filled.box()[3]), (0, 1218))
        self.assertEqual(filled.row(609), b"\xff" * 102)
        for option in ("fit-to-page", "print-scaling=fit", "print-scaling=auto-fit"):
            with self.subTest(option):
                # 210 mm become 4 inches, 297 mm 1149 dots, in the middle.
                self.assert_box(self.one(frame, option), 0, 34, 812, 1149, within=4)
        # As the owner of the queue can have it for every job.
        self.spooler.add_queue("whole", LABEL203, self.printer.uri, "print-scaling-default=auto-fit")
        self.assert_box(self.one(frame, queue="whole"), 0, 34, 812, 1149, within=4)
        # A job may still ask for something else: as large as it is, in the middle.
        self.assertIsNone(self.one(frame, "print-scaling=none", queue="whole").box())

    def test_a_document_smaller_than_the_label_is_in_its_middle(self):
        small = documents.pdf(self.path("small.pdf"), 50, 30, documents.box(0, 0, 50, 30))
        box = self.one(small).box()
        # CUPS turns it to the label's shape: 30 x 50 mm in 4 x 6 inches.
        self.assertAlmostEqual(box[2] - box[0], 240, delta=3)
        self.assertAlmostEqual(box[3] - box[1], 400, delta=3)
        self.assertAlmostEqual((box[0] + box[2]) / 2, 406, delta=3)
        self.assertAlmostEqual((box[1] + box[3]) / 2, 609, delta=3)
        self.assert_box(self.one(small, "PageSize=50x30mm"), 0, 0, 400, 240)

    # Ghostscript 10.00 (Debian 12) takes a custom size for the model's own size that it is when turned,
    # 10.05 (Debian 13) does not any more.
    def test_a_custom_size_that_is_another_one_turned(self):
        version = subprocess.run(["gs", "--version"], check=True, capture_output=True, text=True).stdout
        turns = [int(number) for number in version.split(".")] < [10, 5]
        upright = documents.pdf(self.path("upright.pdf"), 40, 60, documents.box(0, 0, 40, 60))
        page = self.one(upright, "PageSize=Custom.40x60mm")
        # 60 x 40 mm, or as it was asked for.
        self.assertEqual((page.width, page.height), (480, 320) if turns else (320, 480))
        page = self.one(upright, "PageSize=Custom.41x61mm")
        self.assertEqual((page.width, page.height), (328, 488))


if __name__ == "__main__":
    unittest.main()
