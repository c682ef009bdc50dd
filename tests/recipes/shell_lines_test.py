"""Every shell line of the documents is run by tests/recipes/run_lines, or has a reason why not."""
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import shell_lines  # noqa: E402

DOCUMENT = """
Then `inline --code`.

```
one
two --long \\
    --option

three
```

```ini
[four]
```

```
$ five | six
seven
eight
```
"""


class ShellLinesTest(unittest.TestCase):
    maxDiff = None

    def test_every_line_is_accounted_for(self):
        for document, lines in shell_lines.LINES.items():
            with self.subTest(document):
                self.assertEqual([line for line, _ in shell_lines.shell_lines(shell_lines.read(document))],
                                 [line for line, _ in lines],
                                 f"{document} has other lines than tests/recipes/shell_lines.py: run the new "
                                 "ones there, or say why not")

    def test_how_lines_are_found(self):
        self.assertEqual(shell_lines.shell_lines(DOCUMENT),
                         [("one", []), ("two --long --option", []), ("three", []), ("[four]", []),
                          ("$ five | six", ["seven", "eight"])])

    def test_what_is_said_to_be_run_already_is(self):
        run = set()
        for lines in shell_lines.LINES.values():
            for line, way in lines:
                if isinstance(way, shell_lines.Run):
                    run.add((way.phase, line))
                elif isinstance(way, shell_lines.Again):
                    self.assertIn((way.phase, line), run)
                else:
                    self.assertTrue(way.reason, line)

    def test_every_phase_has_a_root(self):
        phases = {way.phase for lines in shell_lines.LINES.values() for _, way in lines
                  if isinstance(way, shell_lines.Run)}
        self.assertEqual(phases, {phase for phases in shell_lines.ROOTS.values() for phase in phases})


if __name__ == "__main__":
    unittest.main()
