"""A build of its own in which mutants are tried: compiled alone, linked in front of the originals.

Nothing of the working tree is touched, and nothing of the build either, but for the filters and the
tools, which the tests that start them look for in their place: they are put back after each mutant.
"""
import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time

FLAGS = "-O1 -g0 -DHWY_COMPILE_ONLY_STATIC"
# The oldest vector unit that the kernels have a version for: every vector is as long as the bands of
# the diffusions, so that nothing is left out by luck.
VECTORS = {"x86_64": " -mssse3"}

# What tests start, and the folders it is made in.
STARTED = {"rastertotarvo": "filter", "rastertoaligned": "align", "tsplview": "tools/tsplview",
           "tsplprinter": "tools/tsplprinter"}
# name: its folder; and of those that start programs, which, and which of their tests: all that are quick.
PROGRAMS = {
    "common_test": "common", "ppd_option_test": "common", "filter_test": "filter",
    "printer_test": "printer", "printer_memory_test": "printer", "enhance_test": "enhance",
    "kernels_test": "kernels", "image_test": "image", "result_hashes": "results",
    "page_alignment_test": "align", "rastertoaligned_test": "align", "cancel_test": "cancel",
    "bad_jobs_test": "jobs", "compared_jobs_test": "jobs", "filter_process_test": "filter",
    "tspl_test": "tools", "tsplview_test": "tools", "tsplprinter_test": "tools",
}
DRIVEN = {
    "rastertoaligned_test": (("rastertoaligned", "rastertotarvo"), "*"),
    "filter_process_test": (("rastertotarvo",), "*"),
    "cancel_test": (("rastertotarvo",), "*"),
    "bad_jobs_test": (("rastertotarvo",), "*-Shares/*:BadInput.Random*"),
    "compared_jobs_test": (("rastertotarvo",),
                           "*-Jobs/*:RasterJobs.PlainPages:RasterJobs.LinesLongerThanTheWidth"),
    "tsplview_test": (("tsplview",), "*"),
    "tsplprinter_test": (("tsplprinter", "tsplview"), "*"),
}
TOOLS = {"tspl_test", "tsplview_test", "tsplprinter_test"}
# What printer and filter share with rastertoaligned is all in common. What becomes of pixels, the
# recorded results show as well as whole jobs. The filters' tests read streams by the tools' reader, but
# it has tests of its own.
WITHOUT = {folder: {"rastertoaligned_test"} for folder in ("printer", "filter")} | \
          {folder: set(DRIVEN) for folder in ("image", "enhance", "kernels")} | \
          {"tools": set(PROGRAMS) - TOOLS,
           "align": set(PROGRAMS) - {"page_alignment_test", "rastertoaligned_test"}}
EXTRA_TARGETS = [*STARTED, "tarvo_test_redirect", "tarvo_test_witness"]


class Failed(Exception):
    pass


def call(*command, **options):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            **options)
    if result.returncode != 0:
        raise Failed(" ".join(command) + "\n" + result.stdout[-4000:])
    return result.stdout


def floor_of(file):
    """The name that the folder's headers are included with."""
    return os.path.basename(os.path.dirname(file))


class Workshop:
    def __init__(self, home, number, folders):
        """`folders`: those of the mutants; what none of them is put to is not built."""
        self.home = home
        self.programs = [name for name in PROGRAMS
                         if any(name not in WITHOUT.get(folder, ()) for folder in folders)]
        self.tree = os.path.join(home, "tree")
        self.build = os.path.join(home, str(number))
        self.scratch = os.path.join(self.build, "mutant")
        self.time_of = {}  # program: processor seconds of a run
        self.silence_of = {}  # program: seconds that it is silent for at most
        self.original_code = {}

    def prepare(self):
        """Builds everything unchanged and sees that the tests pass."""
        for name, folder in STARTED.items():
            program = os.path.join(self.build, folder, name)
            if os.path.exists(program):  # a run that was ended may have left a mutant there
                os.remove(program)
        flags = FLAGS + VECTORS.get(os.uname().machine, "")
        call("cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DTARVO_TESTS=ON",
             "-DCMAKE_BUILD_TYPE=Mutation",
             "-DCMAKE_CXX_FLAGS=" + flags, "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
        call("ninja", "-C", self.build, *self.programs, *EXTRA_TARGETS)
        self.read_commands()
        self.precompile()
        for name in self.programs:
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            outcome = self.run(name, os.path.join(self.build, self.output[name]))
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.time_of[name] = (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
            if outcome:
                raise Failed(f"{name} fails unchanged: {outcome}")

    def read_commands(self):
        self.compile_of = {}  # object: its command, without what names the files
        self.source_of = {}
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            entries = json.load(file)
        for entry in entries:
            words = shlex.split(entry["command"])
            source, target = entry["file"], words[words.index("-o") + 1]
            if os.path.basename(words[0]) == "ccache":
                words = words[1:]
            kept = []
            skip = 0
            for word in words:
                if skip or word in ("-MD", source, "-c") or word.startswith("-W"):
                    skip = max(0, skip - 1)
                elif word in ("-o", "-MT", "-MF"):
                    skip = 1
                else:
                    kept.append(word)
            self.compile_of[target] = kept + ["-w"]
            self.source_of[target] = os.path.relpath(source, self.tree)

        self.link_of, self.output = {}, {}
        for name in [*self.programs, *STARTED]:
            command = call("ninja", "-C", self.build, "-t", "commands", name).splitlines()[-1]
            words = shlex.split(command)
            words = words[words.index("&&") + 1:]
            words = words[:words.index("&&")]
            self.link_of[name] = words
            self.output[name] = words[words.index("-o") + 1]

        # Which objects are made of a file: itself, or what includes it. Tests do as well: the code of a
        # header is compiled in them a second time, and what it says of sizes must be the same in all.
        self.objects_of = {}
        target = None
        real = {}
        for line in call("ninja", "-C", self.build, "-t", "deps").splitlines():
            if line and not line.startswith(" "):
                target = line.split(":")[0]
            elif line:
                path = line.strip()
                if path not in real:
                    real[path] = os.path.relpath(os.path.realpath(os.path.join(self.build, path)),
                                                 os.path.realpath(self.tree))
                if not real[path].startswith(".."):
                    self.objects_of.setdefault(real[path], set()).add(target)

    def precompile(self):
        """The system's headers, which are most of a compilation, once for each set of definitions."""
        headers = set()
        for source in self.objects_of:
            if source.startswith("tests/"):
                continue
            with open(os.path.join(self.tree, source), encoding="utf-8") as file:
                headers |= set(re.findall(r"^#include <(?!hwy/)[^>]+>", file.read(), re.M))
        folder = os.path.join(self.build, "precompiled")
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        self.header_of = {}
        made = {}
        for target, command in self.compile_of.items():
            if not target.startswith(("common/", "kernels/", "image/", "enhance/", "printer/", "filter/",
                                      "align/", "tools/")):
                continue
            options = [word for word in command if not word.startswith("-I")]
            if " ".join(options) not in made:
                header = os.path.join(folder, f"system{len(made)}.h")
                with open(header, "w", encoding="utf-8") as file:
                    file.write("\n".join(sorted(headers)) + "\n")
                call(*options, "-x", "c++-header", header, "-o", header + ".gch", cwd=self.build)
                made[" ".join(options)] = header
            self.header_of[target] = made[" ".join(options)]

    def run(self, name, program, limits=None):
        """Runs a test program. Returns what it died of, or nothing if it passed.

        `limits`: seconds of processor time for each of its processes, seconds without a word; none
        for the unchanged program, whose times are taken.
        """
        processor_limit, silence_limit = limits or (120, 120)

        def set_limits():
            os.setsid()
            resource.setrlimit(resource.RLIMIT_CPU, (processor_limit, processor_limit + 1))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_AS, (6 << 30, 6 << 30))
            resource.setrlimit(resource.RLIMIT_FSIZE, (256 << 20, 256 << 20))

        if PROGRAMS[name] == "results":
            command = [program, os.path.join(self.tree, "tests/results/hashes.txt")]
        else:
            command = [program, "--gtest_fail_fast", "--gtest_filter=" + DRIVEN.get(name, ("", "*"))[1]]
        path = os.path.join(self.build, "said")
        longest = 0.0
        with open(path, "w+b") as said:
            process = subprocess.Popen(command, cwd=self.build, stdin=subprocess.DEVNULL, stdout=said,
                                       stderr=subprocess.STDOUT, preexec_fn=set_limits)
            size, spoken = 0, time.monotonic()
            while True:
                try:
                    status = process.wait(0.5)
                    break
                except subprocess.TimeoutExpired:
                    now = time.monotonic()
                    if os.path.getsize(path) != size:
                        size, spoken = os.path.getsize(path), now
                    longest = max(longest, now - spoken)
                    if now - spoken > silence_limit:
                        status = None
                        break
            try:  # whatever it started goes with it
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
            if limits is None:
                self.silence_of[name] = longest
            if status == 0:
                return ""
            said.seek(0)
            text = said.read(1 << 20).decode(errors="replace")
        if status is None or -status in (signal.SIGXCPU, signal.SIGKILL):
            return name + ": time limit"
        failed = re.search(r"\[  FAILED  \] ([^ ,\n]+)", text) or re.search(r"\[ RUN      \] ([^ ,\n]+)\n?$", text)
        return name + ": " + (failed[1] if failed else f"status {status}")

    def write(self, mutant):
        """Puts the changed file where its floor's other files look first. Returns its path."""
        shutil.rmtree(self.scratch, ignore_errors=True)
        path = os.path.join(self.scratch, floor_of(mutant.file), os.path.basename(mutant.file))
        os.makedirs(os.path.dirname(path))
        with open(path, "w", encoding="utf-8") as file:
            file.write(mutant.content)
        return path

    def compile(self, target, source, made, optimised=False):
        words = list(self.compile_of[target])
        first = [f"-I{self.scratch}"]
        if optimised:
            words.append("-O2")
        elif target in self.header_of:
            first += ["-include", self.header_of[target]]
        command = words[:1] + first + words[1:] + ["-c", source, "-o", made]

        def set_limits():  # a template may have become one without an end
            resource.setrlimit(resource.RLIMIT_CPU, (60, 61))
            resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))

        return subprocess.run(command, cwd=self.build, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, preexec_fn=set_limits).returncode == 0

    def link(self, name, objects, output):
        """Links a program with the mutant's objects. Returns whether it is made of them at all."""
        words = list(self.link_of[name])
        words[words.index("-o") + 1] = output
        own = [word for word in words if word in objects]
        in_libraries = [made for target, made in objects.items()
                        if any(word.endswith(".a") and os.path.dirname(word) == target.split("/CMakeFiles")[0]
                               for word in words) and target not in own
                        and "CMakeFiles/tarvo_" in target]
        if not own and not in_libraries:
            return False
        words = [objects.get(word, word) for word in words]
        words[1:1] = in_libraries
        call(*words, cwd=self.build)
        return True

    def programs_for(self, file):
        """The folder's own tests first, then the quickest."""
        folder = file.split("/")[0]
        names = [name for name in self.programs if name not in WITHOUT.get(folder, ())]
        return sorted(names, key=lambda name: (PROGRAMS[name] != folder, name in DRIVEN,
                                               self.time_of[name]))

    def attempt(self, mutant):
        """What became of a mutant: ("refused" | "killed" | "same code" | "survived", by what)."""
        if mutant.file not in self.objects_of:
            raise Failed(f"{mutant.file} is in no program")
        path = self.write(mutant)
        objects = {}
        for target in sorted(self.objects_of[mutant.file]):
            source = path if self.source_of[target] == mutant.file \
                else os.path.join(self.tree, self.source_of[target])
            made = os.path.join(self.scratch, target.replace("/", "_"))
            if not self.compile(target, source, made):
                return "refused", "compiler"
            objects[target] = made
        changed = None  # the programs that are made of it, once they are needed, and their places
        try:
            for name in self.programs_for(mutant.file):
                program = os.path.join(self.scratch, name + ".program")  # a folder may have its name
                if name in DRIVEN:
                    if changed is None:
                        changed = {}
                        for started in STARTED:
                            made = os.path.join(self.scratch, started + ".program")
                            if self.link(started, objects, made):
                                place = os.path.join(self.build, self.output[started])
                                os.rename(place, place + ".original")
                                changed[started] = place
                                os.rename(made, place)
                    if not changed.keys() & set(DRIVEN[name][0]):
                        continue
                    program = os.path.join(self.build, self.output[name])
                elif not self.link(name, objects, program):
                    continue
                died = self.run(name, program,
                                (int(3 * self.time_of[name]) + 2, 4 * self.silence_of[name] + 10))
                if died:
                    return "killed", died
        except Failed:
            return "refused", "linker"
        finally:
            for place in (changed or {}).values():
                os.replace(place + ".original", place)
        return ("same code", "-O2") if self.is_same_code(mutant, path) else ("survived", "")

    def is_same_code(self, mutant, path):
        """Whether the optimiser makes the same machine code of it."""
        for target in sorted(self.objects_of[mutant.file]):
            original = os.path.join(self.tree, self.source_of[target])
            made = os.path.join(self.scratch, "code.o")
            if target not in self.original_code:
                aside = self.scratch + ".aside"
                os.rename(self.scratch, aside)
                try:
                    kept = os.path.join(self.build, "code.o")
                    self.compile(target, original, kept, optimised=True)
                    with open(kept, "rb") as file:
                        self.original_code[target] = file.read()
                finally:
                    os.rename(aside, self.scratch)
            source = path if self.source_of[target] == mutant.file else original
            if not self.compile(target, source, made, optimised=True):
                return False
            with open(made, "rb") as file:
                if file.read() != self.original_code[target]:
                    return False
        return True
