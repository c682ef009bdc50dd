"""A compiler's warning stops a developer's build, and nobody else's.

Configures the project in each way and runs its own commands on a file that deserves a warning.
"""
import json
import os
import shlex
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
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


class WarningsTest(unittest.TestCase):
    def configured(self, arguments):
        """Every compiler command of a build: source, command, folder that it runs in."""
        folder = tempfile.TemporaryDirectory(prefix="tarvo-warnings-")
        self.addCleanup(folder.cleanup)
        ran = run("cmake", "-S", ROOT, *arguments, "-B", folder.name, "-DCMAKE_CXX_COMPILER=" + COMPILER)
        self.assertEqual(ran.returncode, 0, ran.stdout)
        with open(os.path.join(folder.name, "compile_commands.json"), encoding="utf-8") as file:
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

    def test_it_stops_no_user(self):
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

    def test_it_stops_developers(self):
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


if __name__ == "__main__":
    unittest.main()
