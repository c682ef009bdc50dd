"""What another user of the machine sees of a private CUPS: ports, sockets, files, and its answer."""
import os
import shutil
import stat
import subprocess


def can_become_another():
    """Whether tests may try things as another user."""
    return os.geteuid() == 0 and shutil.which("setpriv") is not None


def as_another(*command, environment=None):
    """Runs a command as the user nobody, and says how it ended."""
    return subprocess.run(["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups", *command],
                          text=True, capture_output=True, env=environment, cwd="/", timeout=30,
                          check=False)


def sockets_of(process):
    """The numbers of the sockets that a process holds."""
    found = set()
    for name in os.listdir(f"/proc/{process}/fd"):
        try:
            target = os.readlink(f"/proc/{process}/fd/{name}")
        except FileNotFoundError:
            continue  # closed meanwhile
        if target.startswith("socket:["):
            found.add(target[len("socket:["):-1])
    return found


def ports_of(process):
    """The network sockets of a process: (protocol, local address and port), as /proc has them."""
    held, found = sockets_of(process), []
    for protocol in ("tcp", "tcp6", "udp", "udp6", "udplite", "udplite6", "raw", "raw6"):
        try:
            with open(f"/proc/{process}/net/{protocol}", encoding="ascii") as table:
                lines = table.read().splitlines()[1:]
        except FileNotFoundError:
            continue  # this system knows no such protocol
        found += [(protocol, line.split()[1]) for line in lines if line.split()[9] in held]
    return found


def listening_paths_of(process):
    """The paths of the sockets that a process listens on; an abstract one begins with an @."""
    held, found = sockets_of(process), []
    with open(f"/proc/{process}/net/unix", encoding="utf-8", errors="replace") as table:
        for line in table.read().splitlines()[1:]:
            words = line.split(None, 7)
            accepts = int(words[3], 16) & 0x10000
            if words[6] in held and accepts:
                found.append(words[7] if len(words) > 7 else "")
    return found


def open_to_others(folder, bit):
    """What lies below a folder and its owner's and group's others can reach and read (bit 4) or write
    (bit 2). Links are left out: what counts is where they lead to."""
    found = []

    def look(path):
        for entry in os.scandir(path):
            mode = entry.stat(follow_symlinks=False).st_mode
            if mode & bit and not stat.S_ISLNK(mode):
                found.append(os.path.relpath(entry.path, folder))
            if stat.S_ISDIR(mode) and mode & 0o001:
                look(entry.path)

    look(folder)
    return found
