#!/usr/bin/env python3
"""What the compiler and linker did to harden a program: hardening_test.py [--soft] PROGRAM PROPERTY...

Looks at the program itself with readelf, nm and objdump, whatever the build says it did, and exits 1
if it lacks a PROPERTY. With --soft, exits 1 if it has one: for a program that is built to have none.
"""
import re
import subprocess
import sys


def read(*command):
    return subprocess.run(command, text=True, capture_output=True, check=True).stdout


class Program:
    def __init__(self, path):
        self.header = read("readelf", "-hW", path)
        self.dynamic = read("readelf", "-dW", path)
        self.imports = read("nm", "-D", "--undefined-only", path)
        self.code = read("objdump", "-d", "--no-show-raw-insn", path)
        # Name and flags of each segment: "LOAD  0x0000 0x0000 0x0000 0x0b1c 0x0b1c R E 0x1000".
        self.segments = re.findall(r"^ +([A-Z_]+)(?: +0x[0-9a-f]+){5} ([RWE ]{3}) ",
                                   read("readelf", "-lW", path), re.M)

    def dynamic_flags(self, name):
        return re.findall(rf"\({name}\) +(?:Flags: )?(.*)$", self.dynamic, re.M)


def pie(program):
    """Loaded at another address each time."""
    return "DYN (" in program.header and "PIE" in "".join(program.dynamic_flags("FLAGS_1"))


def relro(program):
    """The tables of addresses can be made read-only."""
    return ("GNU_RELRO", "R  ") in program.segments


def now(program):
    """... and are, all of them, before the program begins."""
    return "BIND_NOW" in "".join(program.dynamic_flags("FLAGS")) and \
        "NOW" in "".join(program.dynamic_flags("FLAGS_1"))


def stack(program):
    """The stack holds no code; a program that does not say so gets one that may."""
    return ("GNU_STACK", "RW ") in program.segments


def segments(program):
    """Nothing can be both written and run."""
    loaded = [flags for name, flags in program.segments if name == "LOAD"]
    return loaded and not any("W" in flags and "E" in flags for flags in loaded)


def protector(program):
    """A stack that was written past is noticed before a function returns."""
    return "__stack_chk_fail" in program.imports


def fortify(program):
    """The C library checks what it fills and prints."""
    return re.search(r"__\w*printf_chk\b", program.imports)


def landing(program):
    """Jumps that are computed can only lead to places made for it."""
    # The C library's own start of every program has two.
    return program.code.count("endbr64") > 10


PROPERTIES = {check.__name__: check
              for check in (pie, relro, now, stack, segments, protector, fortify, landing)}


def main(arguments):
    soft = arguments[:1] == ["--soft"]
    path, *names = arguments[soft:]
    program = Program(path)
    wrong = 0
    for name in names:
        found = bool(PROPERTIES[name](program))
        print(f"{name:10} {'yes' if found else 'no '}  {PROPERTIES[name].__doc__}")
        wrong += found == soft
    return 1 if wrong or not names else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
