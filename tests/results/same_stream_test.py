#!/usr/bin/env python3
"""The same page gives the same stream and the same dumps: in each process, at any time, under any
locale and environment. same_stream_test.py BUILD_FOLDER
"""
import hashlib
import os
import random
import resource
import struct
import subprocess
import sys
import tempfile

BUILD = os.path.abspath(sys.argv[1])
JOBS = ["HalftoneType=None", "HalftoneType=Ordered", "HalftoneType=StevensonArce Brightness=20",
        "HalftoneType=Tattoo MirrorImage=true", "HalftoneType=Tattoo_X8 NegativeImage=true"]
WIDTH, HEIGHT, DPI = 333, 240, 203


def page():
    header = bytearray(1796)
    struct.pack_into("<2I", header, 276, DPI, DPI)
    struct.pack_into("<I", header, 340, 1)  # copies
    # Width, height, medium, bits a colour, bits a pixel, bytes a line, chunks, K: ink is 255.
    struct.pack_into("<8I", header, 372, WIDTH, HEIGHT, 0, 8, 8, WIDTH, 0, 3)
    struct.pack_into("<I", header, 420, 1)  # colours
    noise = random.Random(5)
    pixels = bytes(min(255, max(0, x * 255 // WIDTH + noise.randint(-40, 40)))
                   for _ in range(HEIGHT) for x in range(WIDTH))
    return bytes(header) + pixels


class Folder:
    """A folder for the jobs: their pages, a locale with a decimal comma, another working folder."""

    def __init__(self, path):
        self.path = path
        self.raster = f"{path}/page.ras"
        with open(self.raster, "wb") as file:
            file.write(b"3SaR" + page() * 2)
        self.locale = None
        if os.path.exists("/usr/share/i18n/locales/de_DE"):
            subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", f"{path}/de_DE.UTF-8"],
                           check=True)
            # glibc keeps a list made of LOCPATH for ever, which the leak detector would report.
            self.locale = {"LOCPATH": path, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8",
                           "ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"}
        self._runs = 0

    def run(self, options, environment=(), before=(), from_pipe=False, prepare=None):
        """One job. Hashes of its stream, and of its dumps in the order of their names."""
        self._runs += 1
        place = f"{self.path}/{self._runs}"
        os.makedirs(f"{place}/spool")
        variables = {"PATH": os.environ["PATH"], "PPD": f"{BUILD}/ppd/tarvo-label-203dpi.ppd",
                     "LD_PRELOAD": f"{BUILD}/tests/support/libtarvo_test_redirect.so",
                     "ASAN_OPTIONS": "verify_asan_link_order=0", "TARVO_TEST_FOLDER": place}
        variables.update(environment)
        command = [*before, f"{BUILD}/filter/rastertotarvo", "1", "user", "title", "1", options]
        with open(f"{place}/stream", "wb") as stream, open(f"{place}/errors", "wb") as errors:
            process = subprocess.Popen(
                command if from_pipe else [*command, self.raster], cwd=place, env=variables,
                stdin=subprocess.PIPE if from_pipe else subprocess.DEVNULL, stdout=stream,
                stderr=errors, preexec_fn=prepare)
            if from_pipe:
                with open(self.raster, "rb") as raster:
                    while part := raster.read(997):
                        process.stdin.write(part)
                        process.stdin.flush()
                process.stdin.close()
        status = process.wait()
        with open(f"{place}/errors", encoding="utf-8", errors="replace") as errors:
            assert status == 0, f"{command}: {status}\n{errors.read()[-2000:]}"
        # A dump's name begins with its kind and ends with its number; the time is between them.
        dumps = sorted(os.listdir(f"{place}/spool"),
                       key=lambda name: (name.split("_")[0], name.split("_")[-1]))
        assert len(dumps) == 4, dumps
        return [digest(f"{place}/stream")] + [digest(f"{place}/spool/{name}") for name in dumps]


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def small_stack():
    resource.setrlimit(resource.RLIMIT_STACK, (256 << 10, 256 << 10))


def other_mask():
    os.umask(0)
    os.nice(1)


def variations(folder):
    """What is different, and how: arguments of Folder.run()."""
    yield "in another process", {}
    for time in (-86400 * 365, 0, 1 << 31, 1 << 33):
        yield f"at {time} s", {"environment": {"TARVO_TEST_TIME": str(time)}}
    for zone in ("Pacific/Apia", "XXX-13:30", ":none"):
        yield f"in the time zone {zone}", {"environment": {"TZ": zone}}
    if folder.locale:
        yield "with a decimal comma", {"environment": folder.locale}
    for name in ("C.UTF-8", "tr_TR.ISO-8859-9", "none"):
        yield f"in the locale {name}", {"environment": {"LC_ALL": name, "LANGUAGE": name}}
    for byte in (0, 85, 255):  # what malloc() gives is filled with it
        yield f"in memory of {byte}s", {"environment": {"MALLOC_PERTURB_": str(byte)}}
    yield "in a large environment", {"environment": {f"V{n}": "x" * 1009 for n in range(97)}}
    yield "as CUPS does", {"environment": {
        "PRINTER": "label", "CONTENT_TYPE": "application/pdf", "LANG": "en.UTF-8",
        "DEVICE_URI": "socket://127.0.0.1", "CHARSET": "utf-8", "SOFTWARE": "CUPS/2.4.2"}}
    yield "from a pipe, in pieces", {"from_pipe": True}
    yield "at fixed addresses", {"before": ["setarch", "-R"]}
    yield "with a small stack", {"prepare": small_stack}
    yield "with another mask and priority", {"prepare": other_mask}


def main():
    wrong = []
    with tempfile.TemporaryDirectory(prefix="tarvo-same-") as path:
        folder = Folder(path)
        count = 0
        for job in JOBS:
            expected = folder.run(job)
            for name, how in variations(folder):
                count += 1
                if folder.run(job, **how) != expected:
                    wrong.append(f"{job}, {name}: another stream or other dumps")
        streams = {folder.run(job)[0] for job in JOBS}
        if len(streams) != len(JOBS):
            wrong.append("different jobs have the same stream")
    print(f"{count} jobs, {len(wrong)} differ")
    for text in wrong:
        print(text)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
