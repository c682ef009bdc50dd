#!/usr/bin/env python3
"""What mutation changes in a line, and what it leaves alone."""
import unittest

from mutants import mutants_of


def changes(line):
    """The line as each of its mutants has it."""
    return [mutant.after for mutant in mutants_of("f.cc", line + "\n")]


class MutantsTest(unittest.TestCase):
    def test_comparisons_move_by_one_and_turn(self):
        self.assertEqual(changes("bool b = x < y;"), ["bool b = x <= y;", "bool b = x > y;"])
        self.assertEqual(changes("bool b = x >= y;"), ["bool b = x > y;"])
        self.assertEqual(changes("bool b = x == y;"), ["bool b = x != y;"])

    def test_arithmetic_and_logic_are_exchanged(self):
        self.assertEqual(changes("int a = x + y;"), ["int a = x - y;"])
        self.assertEqual(changes("int a = x << y;"), ["int a = x >> y;"])
        self.assertEqual(changes("bool b = x && !y;"), ["bool b = x || !y;", "bool b = x && y;"])
        self.assertEqual(changes("for (;; ++i) g;"), ["for (;; --i) g;"])

    def test_numbers_become_their_neighbours(self):
        self.assertEqual(changes("int a = 7;"), ["int a = 8;", "int a = 6;"])
        self.assertEqual(changes("int a = 0;"), ["int a = 1;"])
        self.assertEqual(changes("int a = 0xFFu;"), ["int a = 0x100u;", "int a = 0xFEu;"])
        self.assertEqual(changes("int a = 1'000;"), ["int a = 1001;", "int a = 999;"])
        self.assertEqual(changes("float a = 2.0f;"), ["float a = 2.002f;"])
        self.assertEqual(changes("float a = 0.0f;"), ["float a = 1.0f;"])

    def test_levels_of_the_log_become_one_that_shows(self):
        self.assertIn("tarvoLogCommon(2, a);", changes("tarvoLogCommon(0, a);"))
        self.assertNotIn("tarvoLogCommon(1, a);", changes("tarvoLogCommon(0, a);"))

    def test_texts_and_truths_change(self):
        self.assertEqual(changes('auto a = "ab";'), ['auto a = "@ab";'])
        self.assertEqual(changes('auto a = "";'), ['auto a = "@";'])
        self.assertEqual(changes(r"auto a = '\'';"), ["auto a = '@';"])
        self.assertEqual(changes("bool a = true;"), ["bool a = false;"])

    def test_a_raw_text_is_one_text_whatever_it_holds(self):
        self.assertEqual(changes('auto a = R"(1 < "2")";'), ['auto a = R"(@1 < "2")";'])
        self.assertEqual(changes('auto a = R"x(b)c)x";'), ['auto a = R"x(@b)c)x";'])

    def test_what_a_condition_guards_is_left_out(self):
        self.assertEqual(changes("if (a) return b;"), ["if (false && (a)) return b;"])
        self.assertEqual(changes("if (int a = f()) g;"), [])

    def test_calls_assignments_and_jumps_are_left_out(self):
        for statement in ("f(a);", "a.b->c(d)(e);", "a[i] = b;", "*p = b;", "return;", "break;"):
            self.assertIn("{ ; }", changes("{ " + statement + " }"), statement)
        for statement in ("int a(b);", "T<int> a = b;", "T& a = b;", "return a;", "A(const A&) = delete;"):
            self.assertNotIn("{ ; }", changes("{ " + statement + " }"), statement)

    def test_templates_references_and_pointers_are_left_alone(self):
        self.assertEqual(changes("template <typename T> void f(T&& a, T* b, const A<B>& c);"), [])

    def test_what_does_not_run_is_left_alone(self):
        self.assertEqual(changes("// a < 1"), [])
        self.assertEqual(changes("/* 1 */"), [])
        self.assertEqual(changes("#include <a/b.h>"), [])
        self.assertEqual(changes("static_assert(a == 1);"), [])
        self.assertEqual(changes("~Type();"), [])

    def test_a_mutant_is_known_by_its_line_wherever_that_moves(self):
        early = mutants_of("f.cc", "int a = 1;\n")[0]
        late = mutants_of("f.cc", "\n\n  int a = 1;\n")[0]
        self.assertEqual(early.key, late.key)
        self.assertEqual(late.line, 3)

    def test_equal_lines_are_told_apart(self):
        keys = {mutant.key for mutant in mutants_of("f.cc", "{\na = 0;\na = 0;\n}\n")}
        self.assertEqual(len(keys), 4)


if __name__ == "__main__":
    unittest.main()
