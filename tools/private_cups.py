"""The folders and the configuration of a CUPS apart from the system's.

It runs as whoever starts it, and has its own filters, models and MIME types beside the
distribution's. tools/queue prints with one, the tests of the spooler start theirs.

It asks nobody for a password, so nobody else may reach it: it listens on a socket in a folder that
only its owner may enter, and on no port. What is printed, its log and its clients' files are in such
folders too. It takes no files for printers: a queue to a file, and a model that names a filter,
would write what its maker likes wherever root may.
"""
import glob
import http.client
import os
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import urllib.parse

TOOLS = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(TOOLS)
OUR_MODELS = [f"{SOURCE}/ppd/tarvo.drv"]
OUR_MIME = [f"{SOURCE}/ppd/tarvo.convs", f"{SOURCE}/ppd/tarvo.types"]

CUPS_FILES_CONF = """\
ServerRoot {root}/etc
ServerBin {root}/bin
DataDir {root}/data
DocumentRoot {root}/data/doc-root
CacheDir {root}/cache
StateDir {root}/run
RequestRoot {root}/spool
TempDir {root}/spool/tmp
ServerKeychain {root}/etc/ssl
AccessLog {root}/log/access_log
ErrorLog {root}/log/error_log
PageLog {root}/log/page_log
SystemGroup {group}
FileDevice No
"""

CUPSD_CONF = """\
Listen {socket}
LogLevel debug
MaxLogSize 0
PageLogFormat %p %j %P %C
DefaultAuthType None
DefaultEncryption Never
Browsing No
BrowseLocalProtocols none
WebInterface No
DirtyCleanInterval 0
PreserveJobFiles Yes
JobRetryInterval 2
JobKillDelay {kill_delay}
ErrorPolicy {error_policy}
<Location />
  Order deny,allow
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
"""

# The folders, below that of the CUPS. The first may be entered by its owner alone; the others by the
# user of a root cupsd's filters as well.
CLOSED = ("socket", "log", "home")
OPEN = ("etc", "etc/ppd", "etc/ssl", "bin", "bin/filter", "data", "data/drv", "data/mime", "cache",
        "run", "run/certs", "spool", "spool/tmp")
SOCKET = "socket/cups.sock"
# What the system takes for a socket's path at most, in bytes.
LONGEST_SOCKET_PATH = 107


def filters_of(build):
    """Our filters, by name: the built ones and the scripts."""
    return {"imagetopicture": f"{SOURCE}/align/imagetopicture",
            "picturetolayout": f"{SOURCE}/align/picturetolayout",
            "rastertoaligned": f"{build}/align/rastertoaligned",
            "rastertotarvo": f"{build}/filter/rastertotarvo"}


def cups_config(name, fallback):
    answer = subprocess.run(["sh", "-c", f"cups-config --{name}"], text=True, capture_output=True)
    return answer.stdout.strip() or fallback


def socket_of(folder):
    """The socket that the CUPS of this folder listens on."""
    return os.path.join(folder, SOCKET)


def uri_of(folder, path):
    """The address of a queue, a class or a job (/jobs/1) of the CUPS of this folder."""
    return f"ipp://{urllib.parse.quote(socket_of(folder), safe='')}{path}"


def may_be_entered_by_all(folder):
    while folder != "/":
        if not os.stat(folder).st_mode & 0o001:
            return False
        folder = os.path.dirname(folder)
    return True


def make_folder(prefix):
    """A new folder for a CUPS, below the one for temporary files if that will do.

    The filters of a root CUPS run as another user, who must reach it; and the path of the socket in
    it must not be too long.
    """
    parent = os.path.realpath(tempfile.gettempdir())
    made = os.fsencode(socket_of(os.path.join(parent, prefix + "12345678")))
    if len(made) > LONGEST_SOCKET_PATH or os.geteuid() == 0 and not may_be_entered_by_all(parent):
        parent = "/tmp"
    return tempfile.mkdtemp(prefix=prefix, dir=parent)


def start_guardian(folder):
    """Sees to it that the folder goes, and what was started in it, however this process ends.

    Returns a pipe: write to it the id of each process that is to be ended, first the first to end.
    Closing it is the sign to end them.
    """
    guardian = subprocess.Popen([sys.executable, "-B", os.path.join(TOOLS, "guardian.py"), folder],
                                stdin=subprocess.PIPE, start_new_session=True)
    guardian.wait()  # it works on in the background
    return guardian.stdin


def install_filter(folder, name, original):
    """Copies: a CUPS of root runs no filter that others own or may write to."""
    target = os.path.join(folder, "bin/filter", name)
    shutil.copyfile(original, target)
    os.chmod(target, 0o755)


def lay_out(folder, ours, models=OUR_MODELS, mime=OUR_MIME):
    """Makes the folders, with all that the distribution has but its models and what is ours.

    `ours` are names of filters, which are left out; `models` and `mime` are the files of ours.
    """
    # Set one by one, so that no mask has a say.
    os.chmod(folder, 0o711 if os.geteuid() == 0 else 0o700)
    for names, mode in ((OPEN, 0o755), (CLOSED, 0o700)):
        for name in names:
            os.mkdir(os.path.join(folder, name))
            os.chmod(os.path.join(folder, name), mode)
    server, data = cups_config("serverbin", "/usr/lib/cups"), cups_config("datadir", "/usr/share/cups")
    for entry in glob.glob(f"{server}/*"):
        if os.path.basename(entry) != "filter":
            os.symlink(entry, os.path.join(folder, "bin", os.path.basename(entry)))
    for entry in glob.glob(f"{server}/filter/*"):
        if os.path.basename(entry) not in ours:
            os.symlink(entry, os.path.join(folder, "bin/filter", os.path.basename(entry)))
    for entry in glob.glob(f"{data}/*"):
        if os.path.basename(entry) not in ("drv", "mime"):
            os.symlink(entry, os.path.join(folder, "data", os.path.basename(entry)))
    for name, entries in (("mime", glob.glob(f"{data}/mime/*") + mime), ("drv", models)):
        for entry in entries:
            os.chmod(shutil.copy(entry, os.path.join(folder, "data", name)), 0o644)


def give_to_filters(path):
    """Makes a folder that the filters may write into, and nobody else but its owner and root."""
    os.makedirs(path)
    os.chmod(path, 0o700)
    if os.geteuid() == 0:
        shutil.chown(path, "lp")


def configure(folder, error_policy="abort-job", kill_delay=10):
    """Writes the configuration; settings as in cupsd.conf."""
    group = "root" if os.geteuid() == 0 else subprocess.run(
        ["id", "-gn"], text=True, capture_output=True, check=True).stdout.strip()
    for name, text in (("cups-files.conf", CUPS_FILES_CONF), ("cupsd.conf", CUPSD_CONF)):
        with open(os.path.join(folder, "etc", name), "w", encoding="utf-8") as file:
            file.write(text.format(root=folder, group=group, socket=socket_of(folder),
                                   error_policy=error_policy, kill_delay=kill_delay))


def cupsd_command(folder):
    return ["cupsd", "-f", "-c", f"{folder}/etc/cupsd.conf", "-s", f"{folder}/etc/cups-files.conf"]


def client_environment(folder):
    """For lp and all other clients of this CUPS, and for itself."""
    # A client that is ended leaves its temporary files behind: here they go with the folder.
    # lpoptions would ask for a queue's model at the system's port; it finds the file by the root.
    return dict(os.environ, CUPS_SERVER=socket_of(folder), CUPS_SERVERROOT=f"{folder}/etc",
                HOME=f"{folder}/home", TMPDIR=f"{folder}/home", LC_ALL="C.UTF-8", SOFTWARE="tarvo")


def answers(folder):
    """Whether the CUPS of this folder takes connections."""
    with socket.socket(socket.AF_UNIX) as connection:
        connection.settimeout(1)
        return connection.connect_ex(socket_of(folder)) == 0


class _Connection(http.client.HTTPConnection):
    def __init__(self, path):
        super().__init__("localhost", timeout=10)
        self._path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.settimeout(self.timeout)
        self.sock.connect(self._path)


def job_state(folder, number):
    """The state of a job, by its number in IPP; None when it can't be had.

    Asked for in IPP itself: lpstat tells a job that printed from no other that is over.
    """
    def attribute(tag, name, value):
        return (struct.pack(">BH", tag, len(name)) + name.encode() +
                struct.pack(">H", len(value)) + value.encode())

    path = f"/jobs/{number}"
    request = (struct.pack(">BBHIB", 2, 0, 0x0009, 1, 0x01) +
               attribute(0x47, "attributes-charset", "utf-8") +
               attribute(0x48, "attributes-natural-language", "en") +
               attribute(0x45, "job-uri", f"ipp://localhost{path}") +
               attribute(0x44, "requested-attributes", "job-state") + b"\x03")
    connection = _Connection(socket_of(folder))
    try:
        connection.request("POST", path, request, {"Content-Type": "application/ipp"})
        answer = connection.getresponse().read()
    except (OSError, http.client.HTTPException):
        return None
    finally:
        connection.close()
    head = b"\x23\x00\x09job-state\x00\x04"
    at = answer.find(head) + len(head)
    return struct.unpack(">I", answer[at:at + 4])[0] if head in answer else None
