"""A shipping label of 4 x 6 inches, drawn in dots of 203 dpi: 812 x 1218, from the top left."""
import subprocess

import pdf

DPI = 203
WIDTH, HEIGHT = 812, 1218
TRACKING = "TV20250412007355"
LINK = "https://example.com/t/" + TRACKING


def modules(symbology, text, *options):
    """The rows of a barcode as texts of 0 and 1, one digit for each module."""
    dump = subprocess.run(["zint", "--dump", "-b", symbology, *options, "-d", text], check=True,
                          capture_output=True, text=True).stdout
    return ["".join(f"{int(digit, 16):04b}" for digit in line.replace(" ", ""))
            for line in dump.split("\n") if line]


class Label(pdf.Page):
    def __init__(self):
        super().__init__(WIDTH * 72 / DPI, HEIGHT * 72 / DPI)
        scale = 72 / DPI
        self.content.append(f"{scale:.8f} 0 0 {scale:.8f} 0 0 cm")

    def box(self, x, y, width, height):
        """A black box of whole dots."""
        self.rect(x, HEIGHT - y - height, width, height)

    def line(self, y, x=20, width=WIDTH - 40):
        self.box(x, y, width, 3)

    def write(self, x, y, size, text, font="Helvetica"):
        """Text with its base line at y."""
        self.text(x, HEIGHT - y, size, text, font)

    def bold(self, x, y, size, text):
        self.write(x, y, size, text, "Helvetica-Bold")

    def shape(self, points, operator="f"):
        self.path([(x, HEIGHT - y) for x, y in points], closed=True)
        self.add(operator)


def draw():
    label = Label()
    # The frame and its lines.
    for box in ((20, 20, 772, 3), (20, 1195, 772, 3), (20, 20, 3, 1178), (789, 20, 3, 1178)):
        label.box(*box)
    for y in (180, 368, 606, 868, 1138):
        label.line(y)

    # The service.
    label.box(20, 20, 160, 160)
    label.add("g", 1)
    label.bold(36, 140, 106, "T2")
    label.add("g", 0)
    label.bold(204, 92, 56, "TARVO EXPRESS")
    label.write(204, 146, 36, "Two-day parcel, signed for")

    # From whom, to whom.
    label.bold(40, 214, 22, "FROM")
    for index, text in enumerate(("Lindqvist & Daughters", "Instrument Makers", "7 Ropewalk Yard",
                                  "Port Ellery PE4 2QT")):
        label.write(40, 250 + 32 * index, 28, text)
    label.box(520, 180, 3, 191)
    for index, (name, value) in enumerate((("SHIPPED", "12 April 2025"), ("WEIGHT", "1.84 kg"),
                                           ("PARCEL", "1 of 1"))):
        label.bold(540, 212 + 58 * index, 20, name)
        label.write(540, 240 + 58 * index, 28, value)
    label.bold(40, 404, 22, "TO")
    label.bold(40, 456, 50, "Dr Amara Okonjo-Vale")
    for index, text in enumerate(("Observatory Hill, Dome 3", "22 Meridian Terrace",
                                  "Kestrel Bay KB1 9RW")):
        label.write(40, 506 + 43 * index, 40, text)

    # The link to the parcel's journey: 7 dots a module, 0.88 mm.
    rows = modules("58", LINK, "--secure=2")
    for y, row in enumerate(rows):
        x = 0
        while x < len(rows):
            run = len(row[x:]) - len(row[x:].lstrip("1"))
            if run:
                label.box(56 + 7 * x, 633 + 7 * y, 7 * run, 7)
            x += max(run, 1)
    label.bold(300, 656, 22, "ROUTE")
    label.bold(297, 758, 104, "KB1-07")
    label.write(300, 812, 30, "Gate 4, before 10:30")
    label.write(300, 850, 26, "Reference: order 88-2041, brass sextant")

    # This side up.
    for x in (720, 756):
        label.shape([(x, 640), (x + 14, 664), (x + 5, 664), (x + 5, 690), (x - 5, 690),
                     (x - 5, 664), (x - 14, 664)])
    label.box(702, 696, 72, 4)

    # The parcel's number: 4 dots a module, 0.5 mm. Code 128 ends in a bar: what follows is padding.
    bars = modules("20", TRACKING)[0].rstrip("0")
    left = (WIDTH - 4 * len(bars)) // 2
    x = 0
    while x < len(bars):
        run = len(bars[x:]) - len(bars[x:].lstrip("1"))
        if run:
            label.box(left + 4 * x, 892, 4 * run, 186)
        x += max(run, 1)
    label.write(left + 96, 1120, 40, "TV 2025 0412 0073 55")

    label.write(40, 1180, 26, "Fragile: keep dry, keep upright. Returns: example.com/returns")
    return label
