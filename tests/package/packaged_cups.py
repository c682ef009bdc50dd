"""A print server with folders of its own, which finds our programs in an unpacked package."""
import glob
import os
import signal
import subprocess
import sys
import time

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tools"))
from private_cups import (client_environment, configure, cupsd_command, install_filter, lay_out,
                          make_folder, start_guardian)  # found by the line above

os.environ["PATH"] += ":/usr/sbin:/sbin"


class PackagedCups:
    """Runs as long as it is entered. Of models it has those of the package alone."""

    def __init__(self, package_root):
        self.folder = make_folder("tarvo-package-")
        self._guardian = start_guardian(self.folder)
        self.server = None
        programs = glob.glob(f"{package_root}/usr/lib/cups/filter/*")
        data = f"{package_root}/usr/share/cups"
        lay_out(self.folder, [os.path.basename(program) for program in programs],
                glob.glob(f"{data}/drv/*"), glob.glob(f"{data}/mime/*"))
        for program in programs:
            install_filter(self.folder, os.path.basename(program), program)
        configure(self.folder)
        self._environment = client_environment(self.folder)

    def __enter__(self):
        self.server = subprocess.Popen(cupsd_command(self.folder), env=self._environment)
        self._guardian.write(f"{self.server.pid}\n".encode())
        self._guardian.flush()
        for _ in range(200):
            if "is running" in self._try("lpstat", "-r").stdout:
                return self
            time.sleep(0.05)
        self.__exit__()
        raise SystemExit("FAILED: cupsd did not start\n" + self._log())

    def __exit__(self, *_):
        self.server.send_signal(signal.SIGTERM)
        try:
            self.server.wait(10)
        except subprocess.TimeoutExpired:
            self.server.kill()
            self.server.wait()
        self._guardian.close()

    def run(self, *command):
        """Runs a client of the server, which has to succeed, and returns what it wrote."""
        result = self._try(*command)
        if result.returncode != 0:
            raise SystemExit(f"FAILED: {' '.join(command)}: {result.stdout}\n" + self._log())
        return result.stdout

    def print(self, queue, document):
        """Prints and waits until the job has completed."""
        job = self.run("lp", "-d", queue, document).split()[3]
        for _ in range(600):
            if job in self.run("lpstat", "-W", "completed", "-o", queue):
                break
            time.sleep(0.05)
        else:
            raise SystemExit(f"FAILED: {job} does not complete\n" + self._log())

    def _path(self, name):
        return os.path.join(self.folder, name)

    def _try(self, *command):
        return subprocess.run(command, env=self._environment, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=60, check=False)

    def _log(self):
        try:
            with open(self._path("log/error_log"), encoding="utf-8", errors="replace") as file:
                return "".join(file.readlines()[-60:])
        except OSError:
            return ""
