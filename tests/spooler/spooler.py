"""A CUPS of a test's own: its folders, its socket, our filters and models. Never the system's.

Environment: TARVO_BUILD_DIR, the build folder with the filters, the PPD files and tsplview;
TARVO_SOURCE_DIR, the root of the sources.
"""
import os
import re
import shutil
import subprocess
import sys
import time

BUILD = os.environ["TARVO_BUILD_DIR"]
SOURCE = os.environ["TARVO_SOURCE_DIR"]
sys.path.insert(0, f"{SOURCE}/tools")
from private_cups import (answers, client_environment, configure, cupsd_command, filters_of,
                          give_to_filters, lay_out, make_folder, start_guardian,
                          uri_of)  # found by the line above

LABEL203 = f"{BUILD}/ppd/tarvo-label-203dpi.ppd"
LABEL300 = f"{BUILD}/ppd/tarvo-label-300dpi.ppd"
STENCIL = f"{BUILD}/ppd/tarvo-stencil-a4-300dpi.ppd"
FILTERS = filters_of(BUILD)
PRELOAD = f"{BUILD}/tests/support/libtarvo_test_redirect.so"

# A filter whose dumps of the pages and trace file land in the test's folder. The process is the
# filter's, with its signals and descriptors. It runs a copy: the user of the filters may not see
# into the folder of the sources.
KEEPING_DUMPS = """#!/bin/sh
ours=$CUPS_SERVERBIN/ours
export LD_PRELOAD="$ours/redirect.so" TARVO_TEST_FOLDER={dumps} \\
  ASAN_OPTIONS=verify_asan_link_order=0
exec "$ours/{name}" "$@"
"""

FINAL_STATES = ("completed", "canceled", "aborted", "stopped")

os.environ["PATH"] += ":/usr/sbin:/sbin"


def guard(folder):
    """A guardian for a folder. Returns what ends it, and the folder."""
    pipe = start_guardian(folder)

    def end():
        pipe.close()
        limit = time.monotonic() + 10
        while os.path.exists(folder) and time.monotonic() < limit:
            time.sleep(0.02)

    return end


class Spooler:
    """Started, used and stopped in a with statement.

    filters: scripts that stand in for ours, by name. error_policy and kill_delay (seconds from
    cancelling to killing) as in cupsd.conf.
    """

    def __init__(self, filters=None, error_policy="abort-job", kill_delay=10):
        self.folder = make_folder("tarvo-spooler-")
        self._daemon = None
        self._guardian = start_guardian(self.folder)
        try:
            self._lay_out(filters or {})
            configure(self.folder, error_policy, kill_delay)
            self._start()
        except BaseException:
            self.stop()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        if self._daemon is not None:
            self._daemon.terminate()
            self._daemon.wait(10)
            self._daemon = None
        self._guardian.close()
        limit = time.monotonic() + 10
        while os.path.exists(self.folder) and time.monotonic() < limit:
            time.sleep(0.02)

    def path(self, name):
        return os.path.join(self.folder, name)

    # Setting it up

    def _lay_out(self, stand_ins):
        lay_out(self.folder, FILTERS)
        os.mkdir(self.path("bin/ours"))
        os.chmod(self.path("bin/ours"), 0o755)
        for name in ("dumps", "dumps/spool"):
            give_to_filters(self.path(name))
        shutil.copy(PRELOAD, self.path("bin/ours/redirect.so"))
        for name, original in FILTERS.items():
            shutil.copy(original, self.path("bin/ours/" + name))
            self._install_filter(name, stand_ins.get(name) or
                                 KEEPING_DUMPS.format(dumps=self.path("dumps"), name=name))

    def _install_filter(self, name, script):
        target = self.path("bin/filter/" + name)
        with open(target, "w", encoding="utf-8") as file:
            file.write(script)
        os.chmod(target, 0o755)

    def _start(self):
        self.environment = client_environment(self.folder)
        with open(self.path("log/console"), "w", encoding="utf-8") as console:
            self._daemon = subprocess.Popen(
                cupsd_command(self.folder),
                stdin=subprocess.DEVNULL, stdout=console, stderr=console)
        self._guardian.write(f"{self._daemon.pid}\n".encode())
        self._guardian.flush()
        limit = time.monotonic() + 10
        while time.monotonic() < limit:
            if self._daemon.poll() is not None:
                break
            if answers(self.folder):
                return
            time.sleep(0.02)
        raise RuntimeError("cupsd does not start:\n" + self.read("log/console") +
                           self.read("log/error_log"))

    # Using it

    def uri(self, path):
        """The address of a queue, a class or a job, such as /jobs/1."""
        return uri_of(self.folder, path)

    @property
    def process(self):
        """The id of the cupsd's process."""
        return self._daemon.pid

    def run(self, *command, check=True):
        """Runs a client, such as lp, for this CUPS. Its standard output, and error after it."""
        answer = subprocess.run(command, env=self.environment, text=True, capture_output=True,
                                timeout=60)
        if check and answer.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: {answer.returncode}: {answer.stderr}")
        return answer.stdout + answer.stderr

    def read(self, name):
        try:
            with open(self.path(name), encoding="utf-8", errors="replace") as file:
                return file.read()
        except OSError:
            return ""

    def own_backend(self, name):
        """Has a backend started as the spooler's own user: it may then reach another spooler's socket,
        which the user of the filters may not."""
        backends = self.path("bin/backend")
        theirs = os.path.realpath(backends)
        os.unlink(backends)
        os.mkdir(backends)
        os.chmod(backends, 0o755)
        shutil.copy(f"{theirs}/{name}", backends)
        os.chmod(f"{backends}/{name}", 0o700)

    def add_queue(self, name, ppd, uri, *options):
        """options: Option=Choice, the queue's own defaults."""
        self.run("lpadmin", "-p", name, "-P", ppd, "-v", uri, "-E",
                 *(word for option in options for word in ("-o", option)))

    def print(self, queue, document, *options, copies=1):
        """Sends a job with lp. Its number."""
        answer = self.run("lp", "-d", queue, "-n", str(copies),
                          *(word for option in options for word in ("-o", option)), document)
        return int(re.search(r"request id is \S+-(\d+) ", answer)[1])

    def job(self, number):
        """The attributes of a job that tests ask for, as texts."""
        test = self.path("home/job.test")
        with open(test, "w", encoding="utf-8") as file:
            file.write("""{
  OPERATION Get-Job-Attributes
  GROUP operation-attributes-tag
  ATTR charset attributes-charset utf-8
  ATTR naturalLanguage attributes-natural-language en
  ATTR uri job-uri $uri
  ATTR keyword requested-attributes all
  DISPLAY job-state
  DISPLAY job-state-reasons
  DISPLAY job-printer-state-message
  DISPLAY job-media-progress
  DISPLAY job-impressions-completed
  DISPLAY job-printer-uri
}
""")
        answer = self.run("ipptool", "-tv", self.uri(f"/jobs/{number}"), test, check=False)
        return dict(re.findall(r"^ +([a-z-]+) \([^)]*\) = (.*)$", answer, re.M))

    def wait(self, number, states=FINAL_STATES, seconds=40):
        """Waits for a state of the job, a final one by default. The job's attributes."""
        limit = time.monotonic() + seconds
        while True:
            job = self.job(number)
            state = job.get("job-state", "").replace("processing-stopped", "stopped")
            if state in states:
                return dict(job, state=state)
            if time.monotonic() > limit:
                raise AssertionError(f"job {number} is {state} after {seconds} s:\n" +
                                     self.job_log(number))
            time.sleep(0.05)

    def job_log(self, number):
        """What the error log says of the job."""
        return "\n".join(line for line in self.read("log/error_log").splitlines()
                         if f"[Job {number}]" in line)

    def page_log(self, number):
        """The page log's lines on the job: (page, copies) each."""
        return [tuple(line.split()[2:4]) for line in self.read("log/page_log").splitlines()
                if line.split()[1] == str(number)]
