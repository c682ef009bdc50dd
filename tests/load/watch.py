"""What processes hold, as /proc has it."""
import os


class Sample:
    """Memory in KiB and open descriptors of a process, now."""

    def __init__(self, process):
        with open(f"/proc/{process}/status", encoding="ascii", errors="replace") as file:
            fields = dict(line.split(":", 1) for line in file if ":" in line)
        self.memory = int(fields["VmRSS"].split()[0])
        self.descriptors = len(os.listdir(f"/proc/{process}/fd"))

    def __str__(self):
        return f"{self.memory} KiB, {self.descriptors} descriptors"


def running_below(folder):
    """Processes whose working environment is this folder's spooler, by name."""
    mark = b"\0CUPS_SERVERROOT=" + os.fsencode(folder) + b"/"
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/environ", "rb") as file:
                    if mark in b"\0" + file.read():
                        with open(f"/proc/{name}/comm", encoding="ascii") as comm:
                            yield comm.read().strip()
            except OSError:
                pass
