"""What stops a build: a compiler's warning a developer's, nobody else's, and a locale none.

Configures the project in each way and runs its own commands, on a file that deserves a warning.
"""
import json
import os
import shlex
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests/support"))
from comma_locale import comma_locale  # noqa: E402

COMPILER = os.environ.get("TARVO_COMPILER", "c++")

# Any compiler warns of it under -Wall.
DESERVES_A_WARNING = "int answer() {\n  int unused = 42;\n  return 6;\n}\n"

USERS = {
    "the preset user": ["--preset", "user"],
    "a plain cmake": ["-G", "Ninja"],
}
DEVELOPERS = {
    "the preset release": ["--preset", "release"],
    "the preset sanitize": ["--preset", "sanitize"],
}
# Built without the flags of all the rest: that is what it is for.
BARE = {"tests/hardening/soft.cc"}


def run(*command, **options):
    return subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False,
                          **options)


class BuildsTest(unittest.TestCase):
    def configure(self, arguments):
        """A build that is configured, and nothing built."""
        folder = tempfile.TemporaryDirectory(prefix="tarvo-builds-")
        self.addCleanup(folder.cleanup)
        ran = run("cmake", "-S", ROOT, *arguments, "-B", folder.name, "-DCMAKE_CXX_COMPILER=" + COMPILER)
        self.assertEqual(ran.returncode, 0, ran.stdout)
        return folder.name

    def configured(self, arguments):
        """Every compiler command of a build: source, command, folder that it runs in."""
        with open(os.path.join(self.configure(arguments), "compile_commands.json"), encoding="utf-8") as file:
            return [(os.path.relpath(entry["file"], ROOT), shlex.split(entry["command"]), entry["directory"])
                    for entry in json.load(file)]

    def compile_warned(self, commands):
        """Runs the command of one of the project's files on a file that deserves a warning."""
        command, folder = next((command, folder) for source, command, folder in commands
                               if source == "common/text.cc")
        source = os.path.join(folder, "warned.cc")
        with open(source, "w", encoding="utf-8") as file:
            file.write(DESERVES_A_WARNING)
        command = [source if word == os.path.join(ROOT, "common/text.cc") else word for word in command]
        command[command.index("-o") + 1] = os.path.join(folder, "warned.o")
        return run(*command, cwd=folder)

    def test_a_warning_stops_no_user(self):
        for what, arguments in USERS.items():
            with self.subTest(what):
                commands = self.configured(arguments)
                strict = sorted(source for source, command, _ in commands
                                if any(word.startswith("-Werror") for word in command))
                self.assertEqual(strict, [])
                self.assertEqual([source for source, _, _ in commands if source.startswith("tests/")], [],
                                 "it builds tests")
                ran = self.compile_warned(commands)
                self.assertIn("warning: ", ran.stdout)
                self.assertEqual(ran.returncode, 0, ran.stdout)

    def test_a_warning_stops_developers(self):
        for what, arguments in DEVELOPERS.items():
            with self.subTest(what):
                commands = self.configured(arguments)
                lenient = sorted(source for source, command, _ in commands if "-Werror" not in command)
                self.assertEqual([source for source in lenient if source not in BARE], [])
                ran = self.compile_warned(commands)
                self.assertIn("error: ", ran.stdout)
                self.assertNotEqual(ran.returncode, 0, ran.stdout)

    def test_every_preset_but_the_user_s_is_strict(self):
        with open(os.path.join(ROOT, "CMakePresets.json"), encoding="utf-8") as file:
            presets = [preset["name"] for preset in json.load(file)["configurePresets"]
                       if not preset.get("hidden")]
        said = {name: run("cmake", "-N", "--preset", name, cwd=ROOT).stdout for name in presets}
        lenient = [name for name, variables in said.items() if 'TARVO_WERROR="ON"' not in variables]
        self.assertEqual(lenient, ["user"])

    def test_models_are_compiled_where_numbers_have_a_comma(self):
        folder = self.configure(USERS["the preset user"])
        environment = comma_locale(self, folder)
        ran = run("cmake", "--build", folder, "--target", "tarvo_ppds", env=dict(os.environ, **environment))
        self.assertEqual(ran.returncode, 0, ran.stdout)
        self.assertEqual(sorted(name for name in os.listdir(os.path.join(folder, "ppd")) if name.endswith(".ppd")),
                         ["tarvo-label-203dpi.ppd", "tarvo-label-300dpi.ppd", "tarvo-stencil-a4-300dpi.ppd"])


if __name__ == "__main__":
    unittest.main()
