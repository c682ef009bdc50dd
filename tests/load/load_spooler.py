"""The spooler that the load goes through."""
import os
import shutil

from spooler import BUILD, FILTERS, Spooler, give_to_filters

EXIT_REPORT = f"{BUILD}/tests/load/libtarvo_load_exit_report.so"

# As that of the spooler's other tests, and says at its end what it held.
REPORTING_FILTER = """#!/bin/sh
ours=$CUPS_SERVERBIN/ours
root=${{CUPS_SERVERROOT%/etc}}
export LD_PRELOAD="$ours/exit_report.so $ours/redirect.so" TARVO_LOAD_REPORT=$root/counts/filters \\
  TARVO_TEST_FOLDER=$root/dumps ASAN_OPTIONS=verify_asan_link_order=0
exec "$ours/{name}" "$@"
"""

FAILING_BACKEND = """#!/bin/sh
[ $# -gt 0 ] || exit 0  # asked for devices, not started for a job
counts=${{CUPS_SERVERROOT%/etc}}/counts
starts=$(($(cat "$counts/starts" || echo 0) + 1))
echo $starts >"$counts/starts"
export DEVICE_URI="socket:${{DEVICE_URI#failing:}}"
case $((starts % 10)) in
  5) echo at once >>"$counts/failed"
     exit 1 ;;
  0) echo midway >>"$counts/failed"
     head -c 20000 | {socket} "$@"
     exit 1 ;;
esac
exec {socket} "$@"
"""


class LoadSpooler(Spooler):
    """Forgets jobs after a while, as one that runs for years does, and has a backend that fails."""

    def __init__(self, **options):
        super().__init__({name: REPORTING_FILTER.format(name=name) for name in FILTERS}, **options)

    def _start(self):
        with open(self.path("etc/cupsd.conf"), "a", encoding="utf-8") as file:
            file.write("MaxJobs 100\nPreserveJobFiles No\n")
        shutil.copy(EXIT_REPORT, self.path("bin/ours/exit_report.so"))
        give_to_filters(self.path("counts"))  # and to backends
        backends = self.path("bin/backend")
        theirs = os.path.realpath(backends)
        os.unlink(backends)
        os.mkdir(backends)
        os.symlink(f"{theirs}/socket", f"{backends}/socket")
        with open(f"{backends}/failing", "w", encoding="utf-8") as file:
            file.write(FAILING_BACKEND.format(socket=f"{theirs}/socket"))
        os.chmod(f"{backends}/failing", 0o755)
        super()._start()

    def failed_starts(self):
        """How many starts of the failing backend did fail."""
        return len(self.read("counts/failed").splitlines())
