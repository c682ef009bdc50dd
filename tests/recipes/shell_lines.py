"""The shell lines of README.md and docs/installing.md, and what is done about each.

LINES has every line of every block of the two documents, in their order: it is run (Run), was run before
in the same root (Again), or is not run for a reason (Left). tests/recipes/run_lines runs them;
shell_lines_test.py sees that none is missing here.
"""
import dataclasses
import os
import re

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# Each root is a Debian of its own that holds nothing but sudo; the phases run in it one after another.
ROOTS = {"samples": ["samples"], "package": ["package", "removing"], "source": ["source"]}


@dataclasses.dataclass(frozen=True)
class Run:
    """Run as the reader would, by an ordinary user in the project's folder."""
    phase: str
    before: str = ""   # run by root before it: what stands in for the reader's printer and system
    after: str = ""    # run by root after it: what it must have done
    instead: str = ""  # the line that stands in for it where it can't be run as it is
    as_root: bool = False


@dataclasses.dataclass(frozen=True)
class Again:
    """Run already: the same line, earlier in the same root."""
    phase: str


@dataclasses.dataclass(frozen=True)
class Left:
    """Not run."""
    reason: str


# What stands in for systemd and for a printer in the network. The functions are in prelude.sh.
CUPS = "start_cups_and_printer"
AT_THE_PRINTER = "socket://127.0.0.1:9100"
PRINTS = """
lp -d label samples/shipping-label.pdf
await_page
"""
FIND = """find /var/spool/cups/tmp -maxdepth 1 -type f -mmin +60 \\( -name 'origin_[0-9]*.bmp' \
-o -name 'dithered_[0-9]*.bmp' -o -name 'tarvo-[0-9]*.bin' -o -name '.origin_[0-9]*.bmp-??????' \
-o -name '.dithered_[0-9]*.bmp-??????' \\) -delete"""
OLD_FILES = """
cd /var/spool/cups/tmp
rm -f *.bmp
touch origin_1.bmp dithered_1.bmp tarvo-1.bin other.bmp
touch -d '2 hours ago' origin_0.bmp dithered_0.bmp tarvo-0.bin another.bmp
touch .origin_1.bmp-AbCdEf
touch -d '2 hours ago' .origin_0.bmp-AbCdEf .dithered_0.bmp-AbCdEf .other
"""
ONLY_OLD_FILES_ARE_GONE = """
cd /var/spool/cups/tmp
[ "$(echo *.bmp *.bin)" = "another.bmp dithered_1.bmp origin_1.bmp other.bmp tarvo-1.bin" ]
[ "$(echo .o* .d*)" = ".origin_1.bmp-AbCdEf .other .d*" ]
"""

LINES = {
    "README.md": [
        # Try it
        ("./run", Run("samples", after="""
            for page in shipping-label still-life moth; do
              test -s out/$page.tspl
              test -s out/$page-1.png
            done""")),
        ("./run -o HalftoneType=Stucki -o Brightness=10 holiday.jpg letter.pdf", Run(
            "samples",
            before="""
              pdftoppm -jpeg -r 50 -singlefile samples/still-life.pdf holiday
              cp samples/shipping-label.pdf letter.pdf""",
            after="test -s out/holiday-1.png; test -s out/letter-1.png")),
        ("./test", Left("it is what runs this too, for a quarter of an hour")),
        # Use it with CUPS
        ("tools/install-deps build", Run("package")),
        ("cmake --preset user && cmake --build --preset user", Run(
            "package", after="[ ! -e build/user/tests ]  # nobody waits for tests")),
        ("cpack --config build/user/CPackConfig.cmake -B out", Run("package")),
        ("sudo apt install ./out/printer-driver-tarvo_*.deb", Run(
            "package", after="dpkg --verify printer-driver-tarvo; command -v tsplview")),
        ("sudo lpadmin -p label -E -v socket://PRINTER:9100 -m drv:///tarvo.drv/tarvo-label-203dpi.ppd "
         "-o PageSize=4x6", Run(
             "package", before=CUPS, after=PRINTS,
             instead=f"sudo lpadmin -p label -E -v {AT_THE_PRINTER} -m "
                     "drv:///tarvo.drv/tarvo-label-203dpi.ppd -o PageSize=4x6")),
        # See what will be printed
        ("build/user/tools/tsplview/tsplview --list out/shipping-label.tspl", Run("samples")),
        ("build/user/tools/tsplview/tsplview --png pictures out/shipping-label.tspl", Run(
            "samples", after="test -s pictures/*.png")),
    ],
    "docs/installing.md": [
        # The package
        ("tools/install-deps build", Again("package")),
        ("cmake --preset user && cmake --build --preset user", Again("package")),
        ("cpack --config build/user/CPackConfig.cmake -B out", Again("package")),
        ("sudo apt install ./out/printer-driver-tarvo_*.deb", Again("package")),
        ("$ sudo lpinfo -m | grep -i tarvo", Run("package")),
        # From source
        ("tools/install-deps build run", Run("source")),
        ("cmake --preset user && cmake --build --preset user", Run("source")),
        ("sudo cmake --install build/user", Run("source")),
        ("sudo systemctl restart cups        # it reads the types of documents when it starts", Run(
            "source", instead=":  # there is no systemd: CUPS is started by hand",
            after=CUPS + f"""
              lpadmin -p label -E -v {AT_THE_PRINTER} -m drv:///tarvo.drv/tarvo-label-203dpi.ppd
              """ + PRINTS)),
        ("xargs sudo rm -v < build/user/install_manifest.txt", Run(
            "source", after="[ -z \"$(find /usr /etc/tmpfiles.d -name '*tarvo*')\" ]")),
        # Adding a queue
        ("sudo lpadmin -p label -E -v socket://192.0.2.7:9100 -m drv:///tarvo.drv/tarvo-label-203dpi.ppd "
         "-o PageSize=4x6", Run(
             "package", after=PRINTS,
             instead=f"sudo lpadmin -p label -E -v {AT_THE_PRINTER} -m "
                     "drv:///tarvo.drv/tarvo-label-203dpi.ppd -o PageSize=4x6")),
        # Upgrading
        ("sudo lpadmin -p label -m drv:///tarvo.drv/tarvo-label-203dpi.ppd", Run("package", after=PRINTS)),
        # Removing
        ("sudo lpadmin -x label                      # each queue: their printing stops with the filter", Run(
            "removing", after="! lpstat -p label")),
        ("sudo apt remove printer-driver-tarvo", Run(
            "removing", after="! command -v tsplview; [ ! -e /usr/lib/cups/filter/rastertotarvo ]")),
        # Disk space
        ("sudo lpadmin -p label -o KeepPages=False", Run(
            "package", before="rm -f /var/spool/cups/tmp/*.bmp",
            after=PRINTS + """
              [ "$(echo /var/spool/cups/tmp/*.bmp)" = "/var/spool/cups/tmp/*.bmp" ]""")),
        ("sed 's/- - - 1d/- - - 1h/' /usr/lib/tmpfiles.d/tarvo.conf | sudo tee /etc/tmpfiles.d/tarvo.conf", Run(
            "package", after="""
              [ "$(diff /usr/lib/tmpfiles.d/tarvo.conf /etc/tmpfiles.d/tarvo.conf | grep -c '^> .* 1h$')" -eq 1 ]""")),
        ("sudo systemctl edit systemd-tmpfiles-clean.timer", Left("it opens an editor, and needs systemd running")),
        ("[Timer]", Left("a line of a file of systemd's")),
        ("OnUnitActiveSec=1h", Left("a line of a file of systemd's")),
        ("0 * * * * " + FIND, Run(
            "package", before=OLD_FILES, instead=FIND, after=ONLY_OLD_FILES_ARE_GONE, as_root=True)),
    ],
}


def blocks(text):
    """The blocks of a document, each with its physical lines."""
    return [block.splitlines() for block in re.findall(r"^```[^\n`]*\n(.*?)^```$", text, re.M | re.S)]


def shell_lines(text):
    """Every line of every block, and for a line that begins with "$ " what the block shows below it.

    Lines that a backslash joins are one. In a block with "$ " lines all others are what those say.
    """
    found = []
    for block in blocks(text):
        joined = re.sub(r"\\\n\s*", "", "\n".join(block)).splitlines()
        shows = any(line.startswith("$ ") for line in joined)
        for line in filter(None, joined):
            if shows and not line.startswith("$ "):
                found[-1][1].append(line)
            else:
                found.append((line, []))
    return found


def read(document):
    with open(os.path.join(ROOT, document), encoding="utf-8") as file:
        return file.read()
