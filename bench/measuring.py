"""What the scripts of this folder share: pages, processes and what they cost."""

import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(os.environ.get("TARVO_BENCH_BUILD", ROOT / "build" / "bench"))
SPOOL = pathlib.Path("/var/spool/cups/tmp")
PPD = BUILD / "ppd" / "tarvo-stencil-a4-300dpi.ppd"
FILTER = BUILD / "filter" / "rastertotarvo"
FLOOR = [str(BUILD / "bench" / "bench_floor"), str(SPOOL)]


def with_dumps_in_memory():
    """Goes on with a memory file system of this process's own where the dumps go. Needs root."""
    if os.environ.get("TARVO_BENCH_INSIDE") is not None:
        return
    mount = ["unshare", "--mount", "sh", "-c", "mount -t tmpfs tmpfs /mnt"]
    if os.geteuid() != 0 or subprocess.run(mount, check=False).returncode != 0:
        print("Needs root and may need more, for a memory file system of its own.", file=sys.stderr)
        sys.exit(77)  # CTest takes it as skipped
    environment = dict(os.environ, TARVO_BENCH_INSIDE="1")
    script = f'mkdir -p {SPOOL} && mount -t tmpfs tmpfs {SPOOL} && exec "$@"'
    os.execvpe("unshare", ["unshare", "--mount", "sh", "-c", script, "sh", sys.executable,
                           *sys.argv], environment)


def run(command, pages, out=os.devnull):
    """CPU seconds and peak KiB of one process that reads the file `pages`."""
    with open(pages, "rb") as source, open(out, "wb") as sink, open(os.devnull, "wb") as null:
        environment = {"PPD": str(PPD), "PATH": os.environ["PATH"]}
        child = subprocess.Popen(command, stdin=source, stdout=sink, stderr=null, env=environment)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    for dump in SPOOL.iterdir():
        dump.unlink()
    if child.returncode != 0:
        sys.exit(f"{command[0]} ended with {child.returncode}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def make_raster(folder, kind, width, height, dpi, pages):
    """The path of a raster file of equal pages, made in `folder`."""
    path = folder / f"{kind}-{width}x{height}-{pages}"
    command = [BUILD / "bench" / "bench_make_raster", kind, width, height, dpi, pages]
    with open(path, "wb") as out:
        subprocess.run(list(map(str, command)), stdout=out, check=True)
    return path


def filter_command(halftone, program=FILTER):
    return [str(program), "1", "user", "title", "1", f"HalftoneType={halftone}"]
