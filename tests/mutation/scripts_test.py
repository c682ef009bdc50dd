#!/usr/bin/env python3
"""What mutation changes in a script, and what it leaves alone."""
import textwrap
import unittest

import scripts
from mutants import mutants_of


def changes(language, script):
    """What each mutant has in the place of the lines that it changes, with its kind."""
    return [(mutant.after, mutant.kind) for mutant in
            mutants_of("script", textwrap.dedent(script), scripts.edits_of(language))]


class LanguageTest(unittest.TestCase):
    def test_is_known_by_name_or_first_line(self):
        for file, first, language in [
                ("a.py", "", "python"), ("a.cmake", "", "cmake"), ("a", "#!/usr/bin/env python3", "python"),
                ("a", "#!/bin/bash", "shell"), ("a", "#!/bin/sh", "shell"), ("a", "#!/usr/bin/awk -f", "awk"),
                ("a", "text", None), ("a.txt", "", None)]:
            self.assertEqual(scripts.language_of(file, first + "\n"), language, (file, first))


class PythonTest(unittest.TestCase):
    def test_statements_are_left_out(self):
        for statement in ("f(a)", "a = b", "a += b", "a.b: int = c", "return", "return a", "raise a", "del a",
                          "break", "continue", "assert a", "yield a", "f(a,\n       b)"):
            found = changes("python", f"def f():\n while a:\n    {statement}\n")
            self.assertIn(("pass", "statement"), found, statement)

    def test_definitions_imports_and_texts_are_left_alone(self):
        self.assertEqual(changes("python", '"""Text."""\nimport a\nfrom a import b\n\n\ndef f():\n    """Text."""\n'),
                         [])

    def test_conditions_are_turned(self):
        self.assertIn(("if not (a):", "condition"), changes("python", "if a:\n    f()\n"))
        self.assertIn(("elif not (b == 1):", "condition"),
                      changes("python", "if a:\n    f()\nelif b == 1:\n    g()\n"))
        self.assertIn(("while not (a):", "condition"), changes("python", "while a:\n    f()\n"))
        self.assertIn(("f(a if not (b) else c)", "condition"), changes("python", "f(a if b else c)\n"))
        self.assertIn(("f(a for a in b if not (c))", "condition"), changes("python", "f(a for a in b if c)\n"))

    def test_and_and_or_are_exchanged(self):
        self.assertIn(("f(a or b and c)", "operator"), changes("python", "f(a and b and c)\n"))
        self.assertIn(("f(a and b or c)", "operator"), changes("python", "f(a and b and c)\n"))
        self.assertIn(("f(a and b)", "operator"), changes("python", "f(a or b)\n"))
        self.assertIn(("f((a) and (b))", "operator"), changes("python", "f((a) or (b))\n"))

    def test_places_are_right_behind_letters_of_several_bytes(self):
        self.assertIn(('f("ä", a if not (b) else c)', "condition"), changes("python", 'f("ä", a if b else c)\n'))


class ShellTest(unittest.TestCase):
    def test_statements_are_left_out(self):
        for statement in ("set -e", "a=b", "local a=b", "exit 1", "shift 2", "f a | g", 'f "a;b" # text',
                          "f a \\\n  b", "f a &&\n  g", "cat <<END\na\nEND"):
            self.assertIn((":", "statement"), [(after.split(" # ")[0].split(" a END")[0], kind)
                          for after, kind in changes("shell", "if x; then\n  " + statement + "\nfi\n")], statement)

    def test_conditions_are_turned(self):
        self.assertIn(("if ! { [ a ] && b; }; then", "condition"),
                      changes("shell", "if [ a ] && b; then\n  f\nfi\n"))
        self.assertIn(("elif ! { [ a ]; }; then", "condition"),
                      changes("shell", "if b; then\n  f\nelif [ a ]; then\n  g\nfi\n"))
        self.assertIn(("while ! { read -r a; }; do", "condition"),
                      changes("shell", "while read -r a; do\n  f\ndone\n"))

    def test_and_and_or_are_exchanged_but_not_in_texts(self):
        self.assertEqual([after for after, kind in changes("shell", "a || b\n") if kind == "operator"], ["a && b"])
        self.assertEqual([kind for _, kind in changes("shell", 'f "a || b"\n')], ["statement"])

    def test_arms_of_a_case_are_left_out(self):
        self.assertIn(("a | b) : ;;", "statement"), changes("shell", "case $x in\n  a | b) f ;;\nesac\n"))

    def test_what_holds_commands_together_is_left_alone(self):
        script = "#!/bin/sh\n# Text.\nf() {\n}\nfor a in b; do\ndone\ncase $a in\n  x)\n    ;;\nesac\n"
        self.assertEqual(changes("shell", script), [])

    def test_what_is_written_in_place_is_text(self):
        self.assertEqual(changes("shell", "cat <<'END'\na=b\nEND\n")[0][1], "statement")
        self.assertEqual(len(changes("shell", "cat <<'END'\na=b\nEND\n")), 1)

    def test_several_lines_in_quotes_are_one_statement(self):
        self.assertEqual(changes("shell", "awk '\n  a\n  b\n' c\n"), [(":", "statement")])


class AwkTest(unittest.TestCase):
    def test_statements_are_left_out(self):
        self.assertIn((";", "statement"), changes("awk", "/a/ {\n  b = c\n}\n"))
        self.assertIn(("/a/ { ; }", "statement"), changes("awk", "/a/ { b = c }\n"))

    def test_a_statement_over_two_lines_is_left_alone(self):
        self.assertEqual([kind for _, kind in changes("awk", "END {\n  print a,\n        b\n}\n")], [])

    def test_patterns_and_conditions_are_turned(self):
        self.assertIn(("!(/a/) {", "condition"), changes("awk", "/a/ {\n  b = c\n}\n"))
        self.assertIn(("if (!(a)) b = c", "condition"), changes("awk", "/a/ {\n  if (a) b = c\n}\n"))

    def test_and_and_or_are_exchanged(self):
        self.assertIn(("a || b {", "operator"), changes("awk", "a && b {\n}\n"))

    def test_the_start_the_end_and_functions_stay(self):
        self.assertEqual(changes("awk", "BEGIN {\n}\nfunction f(a) {\n}\nEND {\n}\n"), [])


class CmakeTest(unittest.TestCase):
    def test_commands_are_left_out(self):
        self.assertEqual(changes("cmake", 'f(a\n  "b)" c)\n'), [("", "statement")])

    def test_conditions_are_turned(self):
        self.assertEqual(changes("cmake", "if(NOT a)\nendif()\n"), [("if(NOT (NOT a))", "condition")])

    def test_what_holds_commands_together_is_left_alone(self):
        self.assertEqual(changes("cmake", "foreach(a IN LISTS b)\nendforeach()\nfunction(f a)\nendfunction()\n"), [])


if __name__ == "__main__":
    unittest.main()
