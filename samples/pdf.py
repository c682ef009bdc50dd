"""As much of PDF as the samples need: one page of lines, areas, text, pictures and shadings.

The files name no program and no date, so that the same drawing always gives the same file.
"""
import zlib


def number(value):
    return f"{value:.3f}".rstrip("0").rstrip(".") if value % 1 else str(int(value))


class Page:
    def __init__(self, width, height):
        """A page of width x height points."""
        self.size = (width, height)
        self.content = []
        self.objects = []
        self.resources = {"Font": {}, "XObject": {}, "Shading": {}}

    def add(self, operator, *operands):
        self.content.append(" ".join([number(o) if not isinstance(o, str) else o
                                      for o in operands] + [operator]))

    def path(self, points, closed=False):
        """Begins a path through the points; stroke, fill or clip with a further operator."""
        for index, (x, y) in enumerate(points):
            self.add("l" if index else "m", x, y)
        if closed:
            self.add("h")

    def rect(self, x, y, width, height, operator="f"):
        self.add("re", x, y, width, height)
        self.add(operator)

    def text(self, x, y, size, text, font="Helvetica"):
        name = font.replace("-", "")
        self.resources["Font"][name] = (
            f"<</Type/Font/Subtype/Type1/BaseFont/{font}/Encoding/WinAnsiEncoding>>")
        escaped = text.replace("\\", r"\\").replace("(", r"\(").replace(")", r"\)")
        self.content.append(f"BT /{name} {number(size)} Tf {number(x)} {number(y)} Td "
                            f"({escaped}) Tj ET")

    def shade(self, kind, coordinates, start, end):
        """Fills the clipped area: kind 2 is along a line, 3 from circle to circle; gray levels."""
        name = f"S{len(self.resources['Shading'])}"
        places = " ".join(number(c) for c in coordinates)
        self.resources["Shading"][name] = (
            f"<</ShadingType {kind}/ColorSpace/DeviceGray/Coords[{places}]/Extend[true true]"
            f"/Function<</FunctionType 2/Domain[0 1]/C0[{start}]/C1[{end}]/N 1>>>>")
        self.content.append(f"/{name} sh")

    def jpeg(self, data, width, height, x, y, w, h):
        """Places a gray JPEG file of width x height pixels into the box at x, y."""
        self.objects.append(
            f"<</Type/XObject/Subtype/Image/Width {width}/Height {height}/ColorSpace/DeviceGray"
            f"/BitsPerComponent 8/Filter/DCTDecode/Length {len(data)}>>stream\n".encode()
            + data + b"\nendstream")
        name = f"I{len(self.objects)}"
        self.resources["XObject"][name] = f"{len(self.objects) + 4} 0 R"
        self.content.append(
            f"q {number(w)} 0 0 {number(h)} {number(x)} {number(y)} cm /{name} Do Q")

    def save(self, path):
        body = zlib.compress("\n".join(self.content).encode("cp1252"), 9)
        resources = "".join(
            f"/{kind}<<" + "".join(f"/{name} {value}" for name, value in items.items()) + ">>"
            for kind, items in self.resources.items() if items)
        width, height = self.size
        objects = [
            b"<</Type/Catalog/Pages 2 0 R>>",
            b"<</Type/Pages/Kids[3 0 R]/Count 1>>",
            (f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 {number(width)} {number(height)}]"
             f"/Resources<<{resources}>>/Contents 4 0 R>>").encode(),
            f"<</Filter/FlateDecode/Length {len(body)}>>stream\n".encode() + body + b"\nendstream",
        ] + self.objects
        out = bytearray(b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n")
        offsets = []
        for index, item in enumerate(objects):
            offsets.append(len(out))
            out += f"{index + 1} 0 obj\n".encode() + item + b"\nendobj\n"
        start = len(out)
        out += f"xref\n0 {len(objects) + 1}\n0000000000 65535 f \n".encode()
        out += b"".join(f"{offset:010d} 00000 n \n".encode() for offset in offsets)
        out += (f"trailer<</Size {len(objects) + 1}/Root 1 0 R>>\n"
                f"startxref\n{start}\n%%EOF\n").encode()
        with open(path, "wb") as file:
            file.write(out)
