"""A bar is as wide as it was drawn: a dot is ink where its centre lies in the bar, and nowhere else."""
import os
import subprocess
import unittest

import documents
from case import SpoolerCase
from spooler import BUILD, LABEL203, LABEL300, SOURCE, STENCIL

# queue, PPD, model for ./run, dots an inch, page size and its width and height in mm: sizes that are
# whole points and whole dots, so that nothing moves a bar on its way.
MODELS = (("label", LABEL203, "label-203dpi", 203, "4x6", 101.6, 152.4),
          ("fine", LABEL300, "label-300dpi", 300, "4x6", 101.6, 152.4),
          ("stencil", STENCIL, "stencil-a4-300dpi", 300, "Letter", 215.9, 279.4))

# What bars of 0.33 mm are wide, in dots: they are 2.64 dots at 203 dpi and 3.90 at 300.
WIDTHS = {203: {2, 3}, 300: {3, 4}}


def bars_of_a_third(dpi):
    """Bars of 0.33 mm, 0.99 mm apart, so that their edges lie everywhere between two dots."""
    bars = [(5 + 0.99 * i, 0.33) for i in range(90)]
    # Where an edge lies on a centre, either dot would be right.
    return [(at, width) for at, width in bars
            if all(abs(edge * dpi / 25.4 % 1 - 0.5) > 0.02 for edge in (at, at + width))]


def bars_of_whole_dots(dpi, decimals):
    """Bars of 1 to 4 dots with gaps of 1 to 4, in millimetres with so many decimals."""
    bars, at = [], 40
    for i in range(90):
        bars.append((round(at * 25.4 / dpi, decimals), round((i % 4 + 1) * 25.4 / dpi, decimals)))
        at += i % 4 + 1 + i // 4 % 4 + 1
    return bars


def dots_of(bars, dpi):
    """The first dot of each bar, and how many it has."""
    found = []
    for at, width in bars:
        dots = [dot for dot in range(int(at * dpi / 25.4) - 1, int((at + width) * dpi / 25.4) + 2)
                if at <= (dot + 0.5) * 25.4 / dpi < at + width]
        found.append((dots[0], len(dots)))
    return found


def runs(dots):
    """The same of a row or a column of printed dots."""
    found, before = [], False
    for i, ink in enumerate(dots):
        if ink and not before:
            found.append((i, 0))
        if ink:
            found[-1] = (found[-1][0], found[-1][1] + 1)
        before = ink
    return found


class Test(SpoolerCase):
    def kinds(self, dpi):
        return {"0.33 mm": bars_of_a_third(dpi), "whole dots": bars_of_whole_dots(dpi, 6),
                "whole dots, rounded": bars_of_whole_dots(dpi, 2)}

    def document(self, bars, width, height):
        """Two pages: upright bars at the top, and bars that lie, at the left."""
        return documents.pdf(self.path("bars.pdf"), width, height,
                             "".join(documents.box(at, 5, thick, 20) for at, thick in bars),
                             "".join(documents.box(5, at, 20, thick) for at, thick in bars))

    def test_bars_are_in_the_dots_whose_centres_they_cover(self):
        for queue, ppd, _, dpi, size, width, height in MODELS:
            printer = self.start_queue(ppd, queue)
            for kind, bars in self.kinds(dpi).items():
                with self.subTest(queue=queue, bars=kind):
                    expected = dots_of(bars, dpi)
                    self.assertGreater(len(expected), 80)
                    if kind == "0.33 mm":
                        self.assertEqual({dots for _, dots in expected}, WIDTHS[dpi])
                    upright, lying = self.print(printer, self.document(bars, width, height),
                                                f"PageSize={size}", "HalftoneType=None", queue=queue)
                    middle = round(15 * dpi / 25.4)
                    self.assertEqual(runs(upright.dot(x, middle) for x in range(upright.width)),
                                     expected)
                    self.assertEqual(runs(lying.dot(middle, y) for y in range(lying.height)),
                                     expected)

    def test_run_prints_what_the_queue_prints(self):
        for queue, ppd, model, dpi, size, width, height in MODELS:
            with self.subTest(queue=queue):
                printer = self.start_queue(ppd, queue)
                document = self.document(bars_of_a_third(dpi), width, height)
                options = [f"PageSize={size}", "HalftoneType=None"]
                # ./run asks for the first of these by itself.
                self.print(printer, document, "print-scaling=auto-fit", *options, queue=queue)
                subprocess.run([f"{SOURCE}/run", "--model", model, "--out", self.path("out"),
                                *(word for option in options for word in ("-o", option)), document],
                               env=dict(os.environ, TARVO_BUILD=BUILD), check=True,
                               stdout=subprocess.DEVNULL)
                with open(self.path("out/bars.tspl"), "rb") as file:
                    self.assertTrue(file.read() == printer.jobs[-1], "the dots differ")

    # Whatever becomes a page does so in the same way, and nobody has to ask for it.
    def test_documents_of_every_kind(self):
        picture = documents.png(self.path("black.png"), 200, 300, lambda x, y: 0)
        with open(self.path("note.txt"), "w", encoding="utf-8") as file:
            file.write("note\n")
        label = documents.pdf(self.path("label.pdf"), 101.6, 152.4, documents.box(10, 20, 30, 5))
        with open(self.path("label.ps"), "w", encoding="utf-8") as file:
            file.write("%!PS-Adobe-3.0\n10 10 20 20 rectfill showpage\n")
        for queue, ppd, *_ in MODELS:
            printer = self.start_queue(ppd, queue)
            for document in (label, picture, documents.jpeg(self.path("label.jpg"), label),
                             self.path("note.txt"), self.path("label.ps")):
                with self.subTest(queue=queue, document=document):
                    self.print(printer, document, queue=queue)
                    self.assertIn("Ghostscript using Center-of-Pixel method to fill paths.",
                                  self.spooler.job_log(self.number))

    def test_a_job_may_ask_for_every_dot_that_a_shape_touches(self):
        printer = self.start_queue()
        # Between the centres of two dots: 39.6 to 40.4.
        thin = documents.pdf(self.path("thin.pdf"), 101.6, 152.4,
                             documents.box(39.6 * 25.4 / 203, 5, 0.8 * 25.4 / 203, 20))
        for options, dots in (((), []), (("CenterOfPixel=false",), [(39, 2)])):
            with self.subTest(options):
                page, = self.print(printer, thin, *options)
                self.assertEqual(runs(page.dot(x, 120) for x in range(page.width)), dots)


if __name__ == "__main__":
    unittest.main()
