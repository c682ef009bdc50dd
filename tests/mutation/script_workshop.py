"""Tries mutants of scripts: in the copied tree, with a build of the programs that the scripts start.

A changed script may end any process and leave any behind, so what it is put to runs in a PID namespace of
its own, with a folder for temporary files that is removed.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

from scripts import language_of
from workshop import Failed, call

PACKAGE_STEPS = ["is_made", "is_the_same_again", "pleases_lintian", "holds_what_it_should",
                 "tidies_only_our_names", "leaves_nothing_behind", "prints_in_a_queue"]
SPOOLER = ["spooler/documents_test", "spooler/traps_test", "spooler/states_test"]
# What each is put to, the quickest first.
SUITES_OF = {
    "run": ["run/run_test", "run/queue_test"],
    "align/imagetopicture": ["run/run_test", "spooler/documents_test"],
    "align/picturetolayout": ["run/run_test", "spooler/documents_test"],
    "tools/rasterise": ["run/run_test"],
    "tools/ppd-options": ["run/run_test", "run/queue_test"],
    "tools/document-options": ["run/run_test", "run/queue_test"],
    "tools/queue": ["run/queue_test"],
    "tools/private_cups.py": ["run/queue_test", *SPOOLER],
    "tools/guardian.py": ["run/queue_test", *SPOOLER],
    "tools/tarvo-report": ["tools/report_test", "spooler/report_test"],
    "package/prerm": ["package/package_test"],
    "package/postinst": ["package/package_test"],
    "package/finish.cmake": ["package/package_test"],
    "package/seal.cmake": ["package/package_test"],
}
TARGETS = ["rastertotarvo", "rastertoaligned", "tsplview", "tsplprinter", "tarvo_ppds"]


def alone():
    """What a command is started with so that it sees, and ends, no processes but those it starts."""
    start = ["unshare", "--pid", "--fork", "--kill-child", "--mount-proc"]
    for command in (start, [*start, "--user", "--map-current-user"]):
        if shutil.which("unshare") and subprocess.run([*command, "true"], capture_output=True).returncode == 0:
            return command
    raise Failed("mutants of scripts need unshare --pid, which is not to be had here")


class ScriptWorkshop:
    def __init__(self, home, *_):
        self.tree = os.path.join(home, "tree")
        self.build = os.path.join(home, "scripts")
        self.seconds_of = {}  # command: how long it takes unchanged

    def prepare(self):
        self.alone = alone()
        call("cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
             "-DTARVO_TESTS=OFF")
        call("ninja", "-C", self.build, *TARGETS)

    def commands_for(self, file):
        for suite in SUITES_OF[file]:
            script = os.path.join(self.tree, "tests", suite + ".py")
            if suite.startswith("package/"):
                yield from ((script, step, self.build) for step in PACKAGE_STEPS)
            else:
                yield script, "-f"

    def run(self, command, limit):
        """Runs tests. Returns what they died of, or nothing if they passed."""
        environment = dict(os.environ, TARVO_BUILD=self.build, TARVO_ROOT=self.tree,
                           TARVO_BUILD_DIR=self.build, TARVO_SOURCE_DIR=self.tree,
                           TARVO_REPORT=os.path.join(self.tree, "tools/tarvo-report"))
        environment.pop("PPD", None)
        name = os.path.relpath(command[0], os.path.join(self.tree, "tests")).removesuffix(".py")
        if name == "package/package_test":
            name += f" {command[1]}"
        with tempfile.TemporaryDirectory(prefix="m", ignore_cleanup_errors=True) as folder:
            os.chmod(folder, 0o755)  # a CUPS started by root runs its filters as another user
            try:
                result = subprocess.run([*self.alone, sys.executable, "-B", *command], cwd=folder,
                                        env=dict(environment, TMPDIR=folder), stdin=subprocess.DEVNULL,
                                        text=True, errors="replace", stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, timeout=limit, start_new_session=True)
            except subprocess.TimeoutExpired:
                return name + ": time limit"
        if result.returncode == 0:
            return ""
        failed = re.search(r"^(?:FAIL|ERROR): (\w+)", result.stdout, re.M)
        return name + ": " + (failed[1] if failed else f"status {result.returncode}")

    def is_refused(self, mutant):
        language = language_of(mutant.file, mutant.content)
        if language == "python":
            try:
                compile(mutant.content, mutant.file, "exec")
            except SyntaxError:
                return True
        if language == "shell":
            shell = "bash" if "bash" in mutant.content.splitlines()[0] else "sh"
            return subprocess.run([shell, "-n"], input=mutant.content, text=True,
                                  capture_output=True).returncode != 0
        return False

    def attempt(self, mutant):
        """What became of a mutant: ("refused" | "killed" | "survived", by what)."""
        if self.is_refused(mutant):
            return "refused", "syntax"
        path = os.path.join(self.tree, mutant.file)
        for command in self.commands_for(mutant.file):
            if command not in self.seconds_of:
                started = time.monotonic()
                died = self.run(command, 900)
                if died:
                    raise Failed(f"{died} fails unchanged")
                self.seconds_of[command] = time.monotonic() - started
        with open(path, encoding="utf-8") as file:
            original = file.read()
        try:
            with open(path, "w", encoding="utf-8") as file:
                file.write(mutant.content)
            for command in self.commands_for(mutant.file):
                died = self.run(command, 3 * self.seconds_of[command] + 20)
                if died:
                    return "killed", died
        finally:
            with open(path, "w", encoding="utf-8") as file:
                file.write(original)
        return "survived", ""
