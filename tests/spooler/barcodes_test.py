"""The barcodes of the shipping label can be read after the whole chain."""
import subprocess
import unittest

from case import SpoolerCase
from spooler import BUILD, LABEL203, LABEL300, SOURCE


class Test(SpoolerCase):
    def scan(self, ppd):
        printer = self.start_queue(ppd)
        page, = self.print(printer, f"{SOURCE}/samples/shipping-label.pdf", "PageSize=4x6",
                           "HalftoneType=None")
        with open(self.path("label.tspl"), "wb") as file:
            file.write(printer.jobs[0])
        subprocess.run([f"{BUILD}/tools/tsplview/tsplview", "--png", self.folder,
                        self.path("label.tspl")], check=True, stdout=subprocess.DEVNULL)
        answer = subprocess.run(["zbarimg", "-q", self.path("label-1.png")], text=True,
                                capture_output=True)
        return page, sorted(answer.stdout.splitlines())

    def test_at_203_dpi(self):
        page, codes = self.scan(LABEL203)
        self.assertEqual((page.width, page.height), (816, 1218))
        self.assert_codes(codes)

    def test_at_300_dpi(self):
        page, codes = self.scan(LABEL300)
        self.assertEqual((page.width, page.height), (1200, 1800))
        self.assert_codes(codes)

    def assert_codes(self, codes):
        self.assertEqual(codes, ["CODE-128:TV20250412007355",
                                 "QR-Code:https://example.com/t/TV20250412007355"])


if __name__ == "__main__":
    unittest.main()
