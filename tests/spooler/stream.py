"""What the printer got, page by page: the dots, the copies and the commands before them."""
import re

PREAMBLE = b"\n" * 64


class Page:
    """One page. dot(x, y) is whether there is ink; commands are those before its dots."""

    def __init__(self, commands, width_bytes, height, data, copies):
        self.commands, self.height, self.data, self.copies = commands, height, data, copies
        self.width_bytes, self.width = width_bytes, width_bytes * 8

    def dot(self, x, y):
        return not self.data[y * self.width_bytes + x // 8] & 0x80 >> x % 8

    def ink(self):
        """How much of the page is ink, from 0 to 1."""
        clear = sum(8 - byte.bit_count() for byte in self.data)
        return clear / (len(self.data) * 8)

    def row(self, y):
        return self.data[y * self.width_bytes:(y + 1) * self.width_bytes]

    def box(self):
        """Left, top, right and bottom of the ink, the last two past it. None for a blank page."""
        rows = [y for y in range(self.height) if self.row(y) != b"\xff" * self.width_bytes]
        if not rows:
            return None
        across = bytearray(b"\xff" * self.width_bytes)
        for y in rows:
            for i, byte in enumerate(self.row(y)):
                across[i] &= byte
        columns = [x for x in range(self.width) if not across[x // 8] & 0x80 >> x % 8]
        return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1


def pages(stream):
    """The pages of a whole job, read strictly. Raises ValueError where it is malformed."""
    return [page for document in documents(stream) for page in document]


def documents(stream):
    """The pages of each document of a whole job: the filter runs once for each, and begins anew."""
    if not stream.startswith(PREAMBLE):
        raise ValueError("no preamble")
    at, found, commands = 0, [], []
    while at < len(stream):
        if stream.startswith(PREAMBLE, at) and not commands:
            found.append([])
            at += len(PREAMBLE)
            continue
        bitmap = re.compile(rb"BITMAP 0,0,(\d+),(\d+),0,").match(stream, at)
        if not bitmap:
            line = re.compile(rb"[A-Z][ -~]*\r\n").match(stream, at)
            if not line:
                raise ValueError(f"no command at byte {at}: {stream[at:at + 40]!r}")
            commands.append(line[0].decode().strip())
            at = line.end()
            continue
        width_bytes, height = int(bitmap[1]), int(bitmap[2])
        data = stream[bitmap.end():bitmap.end() + width_bytes * height]
        end = re.compile(rb"\r\nPRINT 1,(\d+)\r\n").match(stream, bitmap.end() + len(data))
        if not end or len(data) != width_bytes * height:
            raise ValueError(f"the bitmap at byte {at} is not followed by PRINT")
        found[-1].append(Page(commands, width_bytes, height, data, int(end[1])))
        at, commands = end.end(), []
    if commands:
        raise ValueError(f"commands without a bitmap: {commands}")
    return found
