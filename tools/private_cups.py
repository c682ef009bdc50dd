"""The folders and the configuration of a CUPS apart from the system's.

It runs as whoever starts it, listens on a loopback port, and has its own filters, models and MIME
types beside the distribution's. tools/queue prints with one, the tests of the spooler start theirs.
"""
import glob
import os
import shutil
import socket
import subprocess
import sys

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
FileDevice Yes
"""

CUPSD_CONF = """\
Listen 127.0.0.1:{port}
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
  Order allow,deny
  Allow 127.0.0.1
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
"""


def filters_of(build):
    """Our filters, by name: the built ones and the scripts."""
    return {"imagetopicture": f"{SOURCE}/align/imagetopicture",
            "picturetolayout": f"{SOURCE}/align/picturetolayout",
            "rastertoaligned": f"{build}/align/rastertoaligned",
            "rastertotarvo": f"{build}/filter/rastertotarvo"}


def cups_config(name, fallback):
    answer = subprocess.run(["sh", "-c", f"cups-config --{name}"], text=True, capture_output=True)
    return answer.stdout.strip() or fallback


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


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
    os.chmod(folder, 0o755)  # filters of a root cupsd are started as lp
    for name in ("etc/ppd", "etc/ssl", "bin/filter", "data/drv", "data/mime", "cache", "run/certs",
                 "spool/tmp", "log", "home"):
        os.makedirs(os.path.join(folder, name))
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
    for entry in glob.glob(f"{data}/mime/*") + mime:
        shutil.copy(entry, os.path.join(folder, "data/mime"))
    for entry in models:
        shutil.copy(entry, os.path.join(folder, "data/drv"))


def configure(folder, port, error_policy="abort-job", kill_delay=10):
    """Writes the configuration; settings as in cupsd.conf."""
    group = "root" if os.geteuid() == 0 else subprocess.run(
        ["id", "-gn"], text=True, capture_output=True, check=True).stdout.strip()
    for name, text in (("cups-files.conf", CUPS_FILES_CONF), ("cupsd.conf", CUPSD_CONF)):
        with open(os.path.join(folder, "etc", name), "w", encoding="utf-8") as file:
            file.write(text.format(root=folder, group=group, port=port, error_policy=error_policy,
                                   kill_delay=kill_delay))


def cupsd_command(folder):
    return ["cupsd", "-f", "-c", f"{folder}/etc/cupsd.conf", "-s", f"{folder}/etc/cups-files.conf"]


def client_environment(folder, port):
    """For lp and all other clients of this CUPS, and for itself."""
    return dict(os.environ, CUPS_SERVER=f"127.0.0.1:{port}", HOME=f"{folder}/home",
                LC_ALL="C.UTF-8", SOFTWARE="tarvo")
