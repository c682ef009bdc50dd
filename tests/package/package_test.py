#!/usr/bin/env python3
"""The Debian package, from making to removing: package_test.py STEP BUILD_FOLDER

is_made makes it; the other steps look at what it made. Nothing here touches the system's own CUPS or
its list of packages.
"""
import glob
import gzip
import os
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time

sys.path[:0] = [os.path.dirname(os.path.abspath(__file__)),
                os.path.join(os.path.dirname(os.path.abspath(__file__)), "../spooler")]
from packaged_cups import PackagedCups  # noqa: E402
from printer import Printer  # noqa: E402

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
NAME = "printer-driver-tarvo"
FILTERS = ["rastertoaligned", "rastertotarvo"]
SCRIPTS = ["imagetopicture", "picturetolayout"]
TOOLS = ["tarvo-report", "tsplprinter", "tsplview"]
MIME = ["tarvo.convs", "tarvo.types"]
MODELS = ["tarvo-label-203dpi.ppd", "tarvo-label-300dpi.ppd", "tarvo-stencil-a4-300dpi.ppd"]


def expect(truth, message):
    if not truth:
        sys.exit(f"FAILED: {message}")


def run(*command, **options):
    """Runs a command, which has to succeed, and returns what it wrote."""
    expect(shutil.which(command[0]), f"{command[0]} is missing: tools/install-deps test")
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            check=False, **options)
    expect(result.returncode == 0, f"{' '.join(command)}: status {result.returncode}\n{result.stdout}")
    return result.stdout


def make(build, folder, **options):
    """Makes the package in `folder` and returns its path."""
    run("cpack", "--config", os.path.join(build, "CPackConfig.cmake"), "-B", folder, **options)
    made = glob.glob(os.path.join(folder, "*.deb"))
    expect(len(made) == 1, f"cpack made {made}")
    return made[0]


def package(build):
    return glob.glob(os.path.join(build, "package", "*.deb"))[0]


def unpack(build, folder):
    run("dpkg-deb", "--extract", package(build), folder)
    os.chmod(folder, 0o755)  # the print system's user has to get in
    return folder


def is_made(build, _):
    shutil.rmtree(os.path.join(build, "package"), ignore_errors=True)
    made = make(build, os.path.join(build, "package"))
    name = os.path.basename(made)
    expect(name.startswith(NAME + "_") and name.count("_") == 2, f"it is called {name}")
    fields = run("dpkg-deb", "--field", made)
    for field in ("Maintainer: ", "Section: text", "Priority: optional", "Installed-Size: "):
        expect(field in fields, f"no {field!r} in\n{fields}")
    depends = run("dpkg-deb", "--field", made, "Depends").split(", ")
    names = {entry.split(" ")[0] for entry in depends}
    needed = {"cups", "cups-filters", "libc6", "libstdc++6"}
    expect(needed <= names, f"{needed - names} missing in Depends")
    expect(any(name.startswith("libcups2") for name in names), f"no libcups2 in {depends}")


def is_the_same_again(build, folder):
    """At another time, in another folder, under another mask, on another file system: the same bytes."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else folder
    with tempfile.TemporaryDirectory(prefix="tarvo-package-", dir=memory) as elsewhere:
        again = make(build, os.path.join(elsewhere, "again"), umask=0o077)
        fields = [run("dpkg-deb", "--field", path) for path in (package(build), again)]
        expect(fields[0] == fields[1], "\n".join(["a second package differs from the first:", *fields]))
        with open(package(build), "rb") as one, open(again, "rb") as other:
            expect(one.read() == other.read(), "a second package differs from the first")


def pleases_lintian(build, _):
    options = ["--allow-root"] if os.geteuid() == 0 else []
    said = run("lintian", "--fail-on", "error,warning", *options, package(build))
    expect(said.strip() == "", f"lintian says\n{said}")


def expected_files():
    """Every file of the package and its mode."""
    doc = f"usr/share/doc/{NAME}/"
    files = {
        "usr/share/cups/drv/tarvo.drv": 0o644,
        f"usr/share/cups/ppd-updaters/{NAME}.ppd-updater": 0o644,
        "usr/lib/tmpfiles.d/tarvo.conf": 0o644,
        doc + "copyright": 0o644,
        doc + "changelog.Debian.gz": 0o644,
    }
    for name in FILTERS:
        files[f"usr/lib/cups/filter/{name}"] = 0o755
        files[f"usr/share/man/man8/{name}.8.gz"] = 0o644
    for name in SCRIPTS:
        files[f"usr/lib/cups/filter/{name}"] = 0o755
    for name in TOOLS:
        files[f"usr/bin/{name}"] = 0o755
        files[f"usr/share/man/man1/{name}.1.gz"] = 0o644
    for name in MIME:
        files[f"usr/share/cups/mime/{name}"] = 0o644
    return files


def holds_what_it_should(build, folder):
    with subprocess.Popen(["dpkg-deb", "--fsys-tarfile", package(build)],
                          stdout=subprocess.PIPE) as tar:
        members = list(tarfile.open(fileobj=tar.stdout, mode="r|"))
    files = {member.name.removeprefix("./"): member for member in members if not member.isdir()}
    expected = expected_files()
    expect(set(files) == set(expected), f"missing: {sorted(set(expected) - set(files))}, "
           f"too many: {sorted(set(files) - set(expected))}")
    for member in members:
        mode = 0o755 if member.isdir() else expected[member.name.removeprefix("./")]
        expect(member.mode == mode, f"{member.name}: mode {member.mode:o}, expected {mode:o}")
        expect((member.uid, member.gid) == (0, 0), f"{member.name}: not root's")
        expect(member.isdir() or member.isreg(), f"{member.name}: neither file nor folder")
    times = {member.mtime for member in members}
    expect(len(times) == 1, f"times differ: {times}")
    root = unpack(build, folder)
    for name in expected:
        if name.endswith(".gz"):
            with open(os.path.join(root, name), "rb") as file:
                head = file.read(10)
            expect(head[4:8] == b"\0\0\0\0" and head[8] == 2, f"{name}: not made by gzip -9n")
            with gzip.open(os.path.join(root, name), "rt", encoding="utf-8") as file:
                expect(file.read(), f"{name}: empty")


def is_hardened(build, folder):
    """The stripped programs in it have what the built ones have."""
    root = unpack(build, folder)
    for path in [f"usr/lib/cups/filter/{name}" for name in FILTERS] + \
            [f"usr/bin/{name}" for name in TOOLS if name != "tarvo-report"]:
        print(path)
        print(run(sys.executable, os.path.join(SOURCE, "tests/hardening/hardening_test.py"),
                  os.path.join(root, path), "pie", "relro", "now", "stack", "segments", "protector",
                  "fortify"))


def manuals_have_no_warnings(build, folder):
    root = unpack(build, folder)
    for page in glob.glob(os.path.join(root, "usr/share/man/man*/*.gz")):
        shown = subprocess.run(
            ["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], text=True,
            env=dict(os.environ, LC_ALL="C.UTF-8", MANROFFSEQ="", MANWIDTH="80"),
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
        expect(shown.returncode == 0 and shown.stderr == "", f"{page}: {shown.stderr}")


OURS = ["origin_2026-11-21_5_23_54_0.bmp", "dithered_2026-1-1_0_0_0_1.bmp",
        "tarvo-20261121093000.bin",
        # What a killed job leaves.
        ".origin_2026-11-21_5_23_54_0.bmp-AbC1xZ", ".dithered_2026-1-1_0_0_0_1.bmp-0-_.~a"]
OTHERS = [".hidden", ".bmp", "o", "or", "origin", "origin_", "origin.bmp", "origin_1.bmp.tmp",
          "Origin_1.bmp", "origami.bmp", "dither.bmp", "dithered_1", "tarvo", "tarvo.bin", "tarvo-1",
          "tarvo-label.bin", "0a1b2c3d4e5f", "gs_AbCdEf", "foomatic-abcdef", "label.bmp", "x.bin",
          "bin", "bmp", "cups-dbus-notifier-lockfile", ".origin_1.bmp", ".origin_1.bmp-AbC1x",
          ".origin_1.bmp-AbC1xZ2", ".tarvo-20261121093000.bin", ".tarvo-1.bmp-AbC1xZ"]


def neighbours(name, wrong):
    """The name with a letter changed, for each letter that is to be right; wrong fits nowhere."""
    return [name[:i] + wrong + name[i + 1:] for i in range(len(name)) if name[i] not in "1X"]


# One letter is all that keeps these from being ours.
OTHERS += [name for ours in ("origin_1.bmp", ".origin_1.bmp-XXXXXX") for name in neighbours(ours, "q")]
# And of these, all that there is to them is right.
OTHERS += [".origin"[:length] for length in range(2, 8)]


def fill(tmp):
    os.makedirs(tmp)
    for name in OURS + OTHERS:
        with open(os.path.join(tmp, name), "w", encoding="utf-8"):
            pass
    os.mkdir(os.path.join(tmp, "folder"))
    with open(os.path.join(tmp, "folder", OURS[0]), "w", encoding="utf-8"):
        pass


def check_left(tmp, also):
    left = set(os.listdir(tmp))
    expected = set(OTHERS) | {"folder"} | also
    expect(left == expected, f"lost: {sorted(expected - left)}, still there: {sorted(left - expected)}")
    expect(os.listdir(os.path.join(tmp, "folder")) == [OURS[0]], "it went into a folder")


def tidies_only_our_names(build, folder):
    """Of what is in the temporary folder, the tmpfiles.d entry deletes old pages and recordings."""
    root = unpack(build, folder)
    with open(os.path.join(root, "usr/lib/tmpfiles.d/tarvo.conf"), encoding="utf-8") as file:
        shipped = file.read()
    # A file's time of change can't be set back, so "a day" becomes a second.
    expect(shipped.count("/var/spool/cups/tmp - - - 1d\n") == 1, "the age is not a day")
    hurried = os.path.join(root, "hurried.conf")
    with open(hurried, "w", encoding="utf-8") as file:
        file.write(shipped.replace("- - - 1d\n", "- - - 1s\n"))
    tmp = os.path.join(root, "var/spool/cups/tmp")
    fill(tmp)
    time.sleep(1.2)
    with open(os.path.join(tmp, "origin_new.bmp"), "w", encoding="utf-8"):
        pass
    said = run("systemd-tmpfiles", "--clean", "--root=" + root, hurried)
    expect(said.strip() == "", f"systemd-tmpfiles says {said}")
    check_left(tmp, {"origin_new.bmp"})


def prints_in_a_queue(build, folder):
    """A print server that has only the unpacked package lists the models and prints with each."""
    root = unpack(build, os.path.join(folder, "root"))
    with PackagedCups(root) as cups:
        listed = [line.split(" ")[0] for line in cups.run("lpinfo", "-m").splitlines()
                  if "tarvo" in line]
        uris = [f"drv:///tarvo.drv/{model}" for model in MODELS]
        expect(sorted(listed) == uris, f"lpinfo -m lists {listed}")
        for number, uri in enumerate(uris):
            out = os.path.join(folder, f"out{number}.tspl")
            with Printer() as printer, open(out, "wb") as file:
                cups.run("lpadmin", "-p", f"q{number}", "-E", "-v", printer.uri, "-m", uri)
                cups.print(f"q{number}", os.path.join(SOURCE, "LICENSE"))
                expect(printer.wait(lambda p: p.jobs), f"{uri}: nothing came")
                file.write(printer.jobs[0])
            pages = run(os.path.join(root, "usr/bin/tsplview"), out)
            print(uri, pages.splitlines()[0], sep="\n  ")
            expect(pages.startswith("page 1: ") and ", 1 copy" in pages, f"{uri} gives {pages}")


def leaves_nothing_behind(build, folder):
    """Installed and removed in a package list of its own, it leaves only what is not its own."""
    root = os.path.join(folder, "root")
    admin = os.path.join(root, "var/lib/dpkg")
    for name in ("updates", "info", "triggers"):
        os.makedirs(os.path.join(admin, name))
    for name in ("status", "available"):
        with open(os.path.join(admin, name), "w", encoding="utf-8"):
            pass
    tmp = os.path.join(root, "var/spool/cups/tmp")
    fill(tmp)
    dpkg = ["dpkg", "--root=" + root, "--force-depends", "--force-not-root", "--force-bad-path",
            "--log=/dev/null",
            # The scripts are not run inside the folder, where there is no shell: they are told of
            # it by DPKG_ROOT.
            "--force-script-chrootless"]
    env = dict(os.environ, PATH=os.environ["PATH"] + ":/usr/sbin:/sbin")
    run(*dpkg, "--install", package(build), env=env)
    for name in expected_files():
        expect(os.path.exists(os.path.join(root, name)), f"{name} was not installed")
    # Over itself, as by an upgrade.
    run(*dpkg, "--install", package(build), env=env)
    check_left(tmp, set(OURS))
    run(*dpkg, "--remove", NAME, env=env)
    expect("tarvo" not in run(*dpkg[:2], "--list", env=env), "dpkg still knows it")
    left = [os.path.join(where, name) for where, _, names in os.walk(root) for name in names
            if not where.startswith((admin, tmp))]
    expect(not left, f"left behind: {left}")
    check_left(tmp, set())


def keeps_pages_on_an_upgrade(_, folder):
    """Only a removal takes away what printing left: not an upgrade, nor its steps when it fails."""
    for number, (arguments, left) in enumerate((
            (["upgrade", "9.9"], OURS), (["failed-upgrade", "9.9"], OURS),
            (["deconfigure", "in-favour", "other", "1"], OURS), (["remove"], []),
            (["remove", "in-favour", "other", "1"], []))):
        root = os.path.join(folder, str(number))
        tmp = os.path.join(root, "var/spool/cups/tmp")
        fill(tmp)
        # Without a number, which all of ours have, and what is no file.
        others = {name.replace("_2026", "_x2026").replace("tarvo-2026", "tarvo-x2026")
                  for name in OURS}
        for name in others:
            with open(os.path.join(tmp, name), "w", encoding="utf-8"):
                pass
        os.mkdir(os.path.join(tmp, "origin_1.bmp"))
        run(os.path.join(SOURCE, "package/prerm"), *arguments, env=dict(os.environ, DPKG_ROOT=root))
        print(" ".join(arguments))
        check_left(tmp, others | {"origin_1.bmp"} | set(left))
    # A system without CUPS's folder.
    run(os.path.join(SOURCE, "package/prerm"), "remove", env=dict(os.environ, DPKG_ROOT=folder))


def follows_prefix_and_destdir(build, folder):
    """What is CUPS's goes to CUPS's folders, all else under the prefix."""
    trees = {}
    for prefix in ("/usr", "/usr/local", "/opt/tarvo"):
        # Configured on its own, and the programs of the build put in place of being built again.
        tree = os.path.join(folder, prefix.strip("/").replace("/", "-"))
        run("cmake", "-S", SOURCE, "-B", tree, "-G", "Ninja", "-DTARVO_TESTS=OFF",
            "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_INSTALL_PREFIX=" + prefix)
        for where, folders, names in os.walk(build):
            if where == build:
                folders.remove("package")
            for name in set(names) & set(FILTERS + TOOLS):
                target = os.path.join(tree, os.path.relpath(where, build))
                os.makedirs(target, exist_ok=True)
                shutil.copy2(os.path.join(where, name), target)
        root = os.path.join(tree, "root")
        run("cmake", "--install", tree, env=dict(os.environ, DESTDIR=root))
        trees[prefix] = {os.path.relpath(os.path.join(where, name), root)
                         for where, _, names in os.walk(root) for name in names}
    serverbin = run("cups-config", "--serverbin").strip().strip("/")
    datadir = run("cups-config", "--datadir").strip().strip("/")
    for prefix, found in trees.items():
        below = prefix.strip("/")
        expected = {f"{datadir}/drv/tarvo.drv", f"{below}/lib/tmpfiles.d/tarvo.conf"}
        expected |= {f"{serverbin}/filter/{name}" for name in FILTERS + SCRIPTS}
        expected |= {f"{below}/share/man/man8/{name}.8" for name in FILTERS}
        expected |= {f"{below}/bin/{name}" for name in TOOLS}
        expected |= {f"{below}/share/man/man1/{name}.1" for name in TOOLS}
        expected |= {f"{datadir}/mime/{name}" for name in MIME}
        expect(found == expected, f"{prefix}: missing {sorted(expected - found)}, "
               f"too many {sorted(found - expected)}")


STEPS = {step.__name__: step for step in (
    is_made, is_the_same_again, pleases_lintian, holds_what_it_should, is_hardened,
    manuals_have_no_warnings, tidies_only_our_names, prints_in_a_queue, leaves_nothing_behind,
    keeps_pages_on_an_upgrade, follows_prefix_and_destdir)}


def main(arguments):
    if len(arguments) != 2 or arguments[0] not in STEPS:
        sys.exit(__doc__ + "\nSteps: " + ", ".join(STEPS))
    os.umask(0o022)
    with tempfile.TemporaryDirectory(prefix="tarvo-package-") as folder:
        os.chmod(folder, 0o755)
        STEPS[arguments[0]](os.path.abspath(arguments[1]), folder)


if __name__ == "__main__":
    main(sys.argv[1:])
