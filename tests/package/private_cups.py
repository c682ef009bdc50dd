"""A print server with folders of its own, which finds our programs in an unpacked package."""
import grp
import os
import shutil
import signal
import subprocess
import time

FILTER_FOLDER = "/usr/lib/cups"
DATA_FOLDER = "/usr/share/cups"


class PrivateCups:
    """Runs in `folder` as long as it is entered, and listens on a socket there only."""

    def __init__(self, folder, package_root):
        self.folder = folder
        self.package = package_root
        self.server = None
        self.socket = os.path.join(folder, "run", "cups.sock")

    def __enter__(self):
        for name in ("etc/ppd", "etc/ssl", "bin/filter", "data", "cache", "run/certs", "spool/tmp",
                     "log", "home", "out"):
            os.makedirs(os.path.join(self.folder, name))
        self._link_programs()
        self._link_data()
        self._configure()
        self.server = subprocess.Popen(
            ["cupsd", "-f", "-c", self._path("etc/cupsd.conf"), "-s", self._path("etc/files.conf")],
            env=self._environment())
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

    def run(self, *command):
        """Runs a client of the server, which has to succeed, and returns what it wrote."""
        result = self._try(*command)
        if result.returncode != 0:
            raise SystemExit(f"FAILED: {' '.join(command)}: {result.stdout}\n" + self._log())
        return result.stdout

    def make_device(self, name):
        """A file that stands for a printer."""
        path = self._path(os.path.join("out", name))
        with open(path, "w", encoding="utf-8"):
            pass
        os.chmod(path, 0o666)
        return path

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

    def _environment(self):
        return dict(os.environ, CUPS_SERVER=self.socket, HOME=self._path("home"), LC_ALL="C.UTF-8",
                    PATH=os.environ["PATH"] + ":/usr/sbin:/sbin")

    def _try(self, *command):
        return subprocess.run(command, env=self._environment(), text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=60, check=False)

    def _log(self):
        try:
            with open(self._path("log/error"), encoding="utf-8", errors="replace") as file:
                return "".join(file.readlines()[-60:])
        except OSError:
            return ""

    def _link_programs(self):
        for name in ("backend", "daemon", "driver", "cgi-bin", "monitor", "notifier"):
            os.symlink(os.path.join(FILTER_FOLDER, name), self._path("bin/" + name))
        ours = os.path.join(self.package, "usr/lib/cups/filter")
        names = os.listdir(ours)
        for name in names:  # copied: who owns them is looked at
            shutil.copy(os.path.join(ours, name), self._path("bin/filter/" + name))
        for name in set(os.listdir(FILTER_FOLDER + "/filter")) - set(names):
            os.symlink(os.path.join(FILTER_FOLDER, "filter", name), self._path("bin/filter/" + name))

    def _link_data(self):
        """The system's data, but of its models none: those listed come from the package."""
        ours = os.path.join(self.package, "usr/share/cups")
        os.symlink(os.path.join(ours, "drv"), self._path("data/drv"))
        for name in os.listdir(DATA_FOLDER):
            if name not in ("drv", "mime"):
                os.symlink(os.path.join(DATA_FOLDER, name), self._path("data/" + name))
        os.mkdir(self._path("data/mime"))
        for folder in (os.path.join(DATA_FOLDER, "mime"), os.path.join(ours, "mime")):
            for name in os.listdir(folder) if os.path.isdir(folder) else []:
                if not os.path.lexists(self._path("data/mime/" + name)):
                    os.symlink(os.path.join(folder, name), self._path("data/mime/" + name))

    def _configure(self):
        folder = self.folder
        group = grp.getgrgid(os.getegid()).gr_name
        with open(self._path("etc/files.conf"), "w", encoding="utf-8") as file:
            file.write(f"""ServerRoot {folder}/etc
ServerBin {folder}/bin
DataDir {folder}/data
CacheDir {folder}/cache
StateDir {folder}/run
RequestRoot {folder}/spool
TempDir {folder}/spool/tmp
ServerKeychain {folder}/etc/ssl
AccessLog {folder}/log/access
ErrorLog {folder}/log/error
PageLog {folder}/log/page
SystemGroup {group}
FileDevice Yes
""")
        with open(self._path("etc/cupsd.conf"), "w", encoding="utf-8") as file:
            file.write(f"""Listen {self.socket}
LogLevel debug
MaxLogSize 0
DefaultAuthType None
DefaultEncryption Never
Browsing No
BrowseLocalProtocols none
WebInterface No
DirtyCleanInterval 0
ErrorPolicy abort-job
<Policy default>
  <Limit All>
    Order allow,deny
    Allow all
  </Limit>
</Policy>
""")
