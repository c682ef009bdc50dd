"""What ./test counts and says of a run of CTest that has everything in it."""
import os
import subprocess
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))

GOOD = 'add_test({name} "true")\n'
GOOGLE_SKIP = r"""
add_test({name} "printf" "x_test.cc:7: Skipped\nnothing can be mounted here\n[  SKIPPED ] A.B (0 ms)\n")
set_tests_properties({name} PROPERTIES SKIP_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
"""
PYTHON_SKIP = r"""
add_test({name} "printf" "test_x (T.test_x) ... skipped 'root may read everything'\n\nOK (skipped=1)\n")
set_tests_properties({name} PROPERTIES SKIP_REGULAR_EXPRESSION "OK \\(skipped=")
"""
SCRIPT = """
add_test({name} "sh" "-c" "{script}")
set_tests_properties({name} PROPERTIES SKIP_RETURN_CODE 77)
"""
FAILS_SETUP = 'add_test(setup "false")\nset_tests_properties(setup PROPERTIES FIXTURES_SETUP broken)\n'

# what: CTest's file, what is said, and the last line
RUNS = [
    ("one that passes", GOOD.format(name="good"), [], "1 passed, 0 failed, 0 skipped"),
    ("one that fails", 'add_test(bad "false")', ["failed: some: bad"], "0 passed, 1 failed, 0 skipped"),
    ("a crash", 'add_test(bad "sh" "-c" "kill -SEGV $$")', ["failed: some: bad"], "0 passed, 1 failed, 0 skipped"),
    ("a program that is not there", 'add_test(bad "/nowhere/at/all")', ["failed: some: bad"],
     "0 passed, 1 failed, 0 skipped"),
    ("one whose first step fails",
     FAILS_SETUP + 'add_test(after "true")\nset_tests_properties(after PROPERTIES FIXTURES_REQUIRED broken)',
     ["failed: some: setup", "failed: some: after"], "0 passed, 2 failed, 0 skipped"),
    ("one that is switched off", GOOD.format(name="off") + "set_tests_properties(off PROPERTIES DISABLED TRUE)",
     ["failed: some: off"], "0 passed, 1 failed, 0 skipped"),
    ("a test of GoogleTest's skips", GOOD.format(name="good") + GOOGLE_SKIP.format(name="disk"),
     ["skipped: some: disk: nothing can be mounted here"], "1 passed, 0 failed, 1 skipped"),
    ("a test of unittest's skips", PYTHON_SKIP.format(name="report"),
     ["skipped: some: report: root may read everything"], "0 passed, 0 failed, 1 skipped"),
    ("a script skips", SCRIPT.format(name="bench", script="echo 1; echo no printer here; exit 77"),
     ["skipped: some: bench: no printer here"], "0 passed, 0 failed, 1 skipped"),
    ("a script skips and says nothing", SCRIPT.format(name="bench", script="exit 77"),
     ["failed: some: bench: skipped, and does not say why"], "0 passed, 1 failed, 0 skipped"),
]


def tally(*arguments):
    ran = subprocess.run([os.path.join(HERE, "tally"), *arguments], text=True, stdout=subprocess.PIPE,
                         stderr=subprocess.PIPE, check=False)
    return ran.returncode, ran.stdout.splitlines()


class TallyTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarvo-tally-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def run_ctest(self, tests):
        with open(os.path.join(self.folder, "CTestTestfile.cmake"), "w", encoding="utf-8") as file:
            file.write(tests)
        path = os.path.join(self.folder, "run.xml")
        subprocess.run(["ctest", "--test-dir", self.folder, "--output-junit", path], check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return path

    def test_each_way_that_a_test_ends(self):
        for what, tests, said, counts in RUNS:
            with self.subTest(what):
                status, lines = tally("some=" + self.run_ctest(tests))
                self.assertEqual(lines, said + [counts])
                self.assertEqual(status, 0 if " 0 failed" in counts else 1)

    def test_the_rules_of_the_house_count_as_one(self):
        path = self.run_ctest(GOOD.format(name="good"))
        self.assertEqual(tally("--rules", "passed", "some=" + path), (0, ["2 passed, 0 failed, 0 skipped"]))
        self.assertEqual(tally("--rules", "failed", "some=" + path), (1, ["1 passed, 1 failed, 0 skipped"]))

    def test_runs_are_added(self):
        path = self.run_ctest(GOOD.format(name="good"))
        self.assertEqual(tally("one=" + path, "two=" + path), (0, ["2 passed, 0 failed, 0 skipped"]))

    def test_a_run_that_never_was_is_a_failure(self):
        status, lines = tally("some=" + os.path.join(self.folder, "absent.xml"))
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed, 0 skipped"))
        self.assertIn("failed: some: the tests did not run", lines[0])

    def test_a_run_of_too_few_tests_is_a_failure(self):
        path = self.run_ctest(GOOD.format(name="good"))
        status, lines = tally("release=" + path)
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed, 0 skipped"))
        self.assertIn("failed: release: 1 tests ran, there are to be ", lines[0])


if __name__ == "__main__":
    unittest.main()
