"""Labels that say which they are: the number of their job and of their page as black and white bars.

A label is BARS bars of the same width, side by side over its whole height. The first is white and
the second black; then come a job's number, a page's number, and a sum over both, highest bits first,
a black bar being a 1.
"""
import struct

JOB_BITS, PAGE_BITS, SUM_BITS = 14, 6, 8
BARS = 2 + JOB_BITS + PAGE_BITS + SUM_BITS


def check_sum(job, page):
    return (job * 31 + page * 7 + 5) % (1 << SUM_BITS)


def bars(job, page):
    """The bars of a label, as 0 and 1."""
    text = f"01{job:0{JOB_BITS}b}{page:0{PAGE_BITS}b}{check_sum(job, page):0{SUM_BITS}b}"
    assert len(text) == BARS
    return [int(bit) for bit in text]


def header(width, height, dpi):
    made = bytearray(1796)
    struct.pack_into("<2I", made, 276, dpi, dpi)
    struct.pack_into("<I", made, 340, 1)  # copies
    # Width, height, medium, bits a colour, bits a pixel, bytes a line, chunks, K: ink is 255.
    struct.pack_into("<8I", made, 372, width, height, 0, 8, 8, width, 0, 3)
    struct.pack_into("<I", made, 420, 1)  # colours
    return bytes(made)


def raster(path, job, pages, width, height, dpi):
    """A raster file of that many labels. What is left of the width behind the bars is paper."""
    bar = width // BARS
    with open(path, "wb") as file:
        file.write(b"3SaR")
        for page in range(1, pages + 1):
            row = b"".join((b"\xff" if bit else b"\0") * bar for bit in bars(job, page))
            file.write(header(width, height, dpi) + row.ljust(width, b"\0") * height)
    return path


def read(page):
    """The numbers of a label's job and page, from the dots of a printed one. Raises ValueError if
    it can't be read, or says different things at different heights."""
    bar = page.width // BARS
    said = set()
    for y in (page.height // 20, page.height // 2, page.height - page.height // 20):
        text = ""
        for n in range(BARS):
            # In the middle of a bar, where no sharpening or diffusion reaches from its neighbours.
            ink = sum(page.dot(n * bar + x, y + dy) for x in range(bar // 4, bar - bar // 4)
                      for dy in range(-2, 3))
            text += "1" if ink > 5 * (bar - bar // 4 * 2) // 2 else "0"
        said.add(text)
    if len(said) != 1:
        raise ValueError(f"a label says {sorted(said)}")
    text, = said
    job = int(text[2:2 + JOB_BITS], 2)
    number = int(text[2 + JOB_BITS:-SUM_BITS], 2)
    if not text.startswith("01") or int(text[-SUM_BITS:], 2) != check_sum(job, number):
        raise ValueError(f"a label says {text}")
    return job, number
