"""Documents for tests, made from nothing."""
import struct
import subprocess
import zlib


def pdf(path, width_mm, height_mm, *contents):
    """A PDF of a page for each content, given as drawing operators in millimetres from the page's
    top left corner, y upwards negative as PDF has it."""
    scale = 72 / 25.4
    objects = [b"<</Type/Catalog/Pages 2 0 R>>", b""]
    kids = []
    for content in contents:
        drawing = f"{scale} 0 0 {scale} 0 {height_mm * scale} cm\n{content}".encode()
        objects.append(b"<</Length %d>>stream\n%s\nendstream" % (len(drawing), drawing))
        objects.append(
            f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 {width_mm * scale} {height_mm * scale}]"
            f"/Contents {len(objects)} 0 R/Resources<</Font<</F <</Type/Font/Subtype/Type1"
            f"/BaseFont/Helvetica>>>>>>>>".encode())
        kids.append(f"{len(objects)} 0 R")
    objects[1] = f"<</Type/Pages/Kids[{' '.join(kids)}]/Count {len(kids)}>>".encode()
    out, offsets = b"%PDF-1.4\n", []
    for number, body in enumerate(objects, 1):
        offsets.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    table = b"".join(b"%010d 00000 n \n" % offset for offset in offsets)
    out += (b"xref\n0 %d\n0000000000 65535 f \n%strailer<</Size %d/Root 1 0 R>>\nstartxref\n%d\n"
            b"%%%%EOF\n" % (len(objects) + 1, table, len(objects) + 1, len(out)))
    with open(path, "wb") as file:
        file.write(out)
    return path


def box(x, y, width, height):
    """A filled box for pdf(): position from the top left corner, in mm."""
    return f"{x} {-y - height} {width} {height} re f\n"


def text(x, y, size, words):
    """Words for pdf(): the baseline's start from the top left corner, in mm."""
    return f"BT /F {size} Tf {x} {-y} Td ({words}) Tj ET\n"


def png(path, width, height, gray, dpi=None):
    """An 8-bit gray PNG; gray(x, y) is 0 for black to 255 for white."""
    rows = b"".join(b"\0" + bytes(gray(x, y) for x in range(width)) for y in range(height))

    def chunk(name, body):
        return struct.pack(">I", len(body)) + name + body + struct.pack(">I", zlib.crc32(name + body))

    density = b"" if dpi is None else chunk(b"pHYs", struct.pack(">IIB", *[round(dpi / .0254)] * 2, 1))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" +
                   chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0)) + density +
                   chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))
    return path


def jpeg(path, source, dpi=100):
    """The first page of a PDF as a JPEG."""
    subprocess.run(["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=jpeggray", f"-r{dpi}",
                    "-dLastPage=1", f"-sOutputFile={path}", source], check=True)
    return path
