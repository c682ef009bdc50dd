"""The changes that mutation makes to a script: a statement left out, a condition turned.

Python is read by its own parser. Shell, awk and CMake are read by lines, as far as their layout here
goes: what comes out and is no script any more is refused by the shell before any test is asked.
"""
import ast
import re

STARTS = re.compile(r"#!.*\b(python3|bash|sh|awk)\b")
SHELL_WORDS = {"if", "elif", "then", "else", "fi", "for", "while", "until", "do", "done", "case", "esac",
               "in", "function", "{", "}", "(", ")", ";;", "!", "[[", "local", "declare"}
CMAKE_WORDS = {"if", "elseif", "else", "endif", "foreach", "endforeach", "function", "endfunction"}


def language_of(file, content):
    """"python", "shell", "awk" or "cmake"; nothing for any other file."""
    if file.endswith(".py"):
        return "python"
    if file.endswith(".cmake"):
        return "cmake"
    match = STARTS.match(content)
    return {"python3": "python", "bash": "shell", "sh": "shell", "awk": "awk"}[match[1]] if match else None


def edits_of(language):
    """What yields (start, end, replacement, kind) for each change of a script."""
    return {"python": python_edits, "shell": shell_edits, "awk": awk_edits, "cmake": cmake_edits}[language]


def python_edits(content):
    lines = content.encode().splitlines(keepends=True)
    starts = [0]
    for line in lines:
        starts.append(starts[-1] + len(line.decode()))

    def place(line, column):
        return starts[line - 1] + len(lines[line - 1][:column].decode())

    def span(node):
        return place(node.lineno, node.col_offset), place(node.end_lineno, node.end_col_offset)

    def turned(node):
        start, end = span(node)
        # In parentheses of its own, so that a condition over several lines stays one.
        return start, end, "not (" + content[start:end] + ")", "condition"

    left_out = (ast.Assign, ast.AugAssign, ast.AnnAssign, ast.Return, ast.Raise, ast.Delete, ast.Break,
                ast.Continue, ast.Assert)
    for node in ast.walk(ast.parse(content)):
        is_text = isinstance(node, ast.Expr) and isinstance(node.value, ast.Constant)
        if isinstance(node, left_out) or (isinstance(node, ast.Expr) and not is_text):
            yield *span(node), "pass", "statement"
        if isinstance(node, (ast.If, ast.While, ast.IfExp)):
            yield turned(node.test)
        if isinstance(node, ast.comprehension):
            for condition in node.ifs:
                yield turned(condition)
        if isinstance(node, ast.BoolOp):
            other = "or" if isinstance(node.op, ast.And) else "and"
            for left, right in zip(node.values, node.values[1:]):
                start, end = span(left)[1], span(right)[0]
                between = content[start:end]
                yield start, end, re.sub(r"\b(and|or)\b", other, between, count=1), "operator"


def logical_lines(content):
    """(start, end) of each command line of a shell script, with what it goes on in, without comments
    and without what is written in place (<<END)."""
    position = 0
    while position < len(content):
        start = position
        quote = None
        here = []
        while position < len(content):
            character = content[position]
            if quote:
                if character == "\\" and quote == '"':
                    position += 1
                elif character == quote:
                    quote = None
            elif character in "'\"":
                quote = character
            elif character == "\\":
                position += 1
            elif character == "#" and (position == start or content[position - 1].isspace()):
                while position < len(content) and content[position] != "\n":
                    position += 1
                continue
            elif content.startswith("<<<", position):
                position += 2
            elif content.startswith("<<", position):
                match = re.compile(r"<<-?\s*['\"]?(\w+)['\"]?").match(content, position)
                if match:
                    here.append(match[1])
                    position = match.end()
                    continue
            elif character == "\n":
                if not re.search(r"(&&|\|\|?)\s*$", content[start:position]):
                    break
            position += 1
        end = min(position, len(content))
        position = end + 1
        for word in here:
            match = re.compile(r"^" + word + r"$", re.M).search(content, position)
            position = match.end() + 1 if match else len(content)
        text = content[start:end]
        lead = len(text) - len(text.lstrip())
        if text.strip() and not text.strip().startswith("#"):
            yield start + lead, start + len(text.rstrip())


def shell_edits(content):
    for start, end in logical_lines(content):
        text = content[start:end]
        condition = re.match(r"(if|elif|while|until)\s+(.*?);\s*(then|do)\b", text, re.S)
        if condition:
            yield start + condition.start(2), start + condition.end(2), \
                "! { " + condition[2] + "; }", "condition"
        arm = re.match(r"\(?[^\s()]+(?: \| [^\s()]+)*\)\s+(\S.*?)\s*;;$", text, re.S)
        if arm:
            yield start + arm.start(1), start + arm.end(1), ":", "statement"
        elif is_command(text):
            yield start, end, ":", "statement"
        for match in re.finditer(r"\s(&&|\|\|)\s", text):
            if not in_quotes(text, match.start(1)):
                other = "||" if match[1] == "&&" else "&&"
                yield start + match.start(1), start + match.end(1), other, "operator"


def is_command(text):
    """A line that is a command and no part of a larger one: an assignment, a call, a jump."""
    first = text.split()[0]
    if first.rstrip(";") in SHELL_WORDS - {"local", "declare", "[["} or re.match(r"[\w-]+\(\)", first):
        return False
    return not re.search(r"(\b(do|then|in)|[{(]|;;)$", text) and not re.match(r"[^\s()'\"$]+\)", text) \
        and first not in ("#!/bin/bash", "#!/bin/sh", ":")


def in_quotes(text, position):
    quote = None
    for at, character in enumerate(text[:position]):
        if quote is None and character in "'\"" and text[at - 1:at] != "\\":
            quote = character
        elif character == quote and not (quote == '"' and text[at - 1] == "\\"):
            quote = None
    return quote is not None


def awk_edits(content):
    position = 0
    depth = 0
    code = ""
    for line in content.splitlines(keepends=True):
        goes_on = code.endswith(",")
        text = line.split("  #")[0].rstrip()
        code = text.strip()
        start = position + len(text) - len(text.lstrip())
        position += len(line)
        if not code or code.startswith("#"):
            continue
        pattern = re.match(r"(?!BEGIN|END|function|if|for|while|else|printf)(\S.*?) \{", code)
        if depth == 0 and pattern:
            yield start, start + pattern.end(1), "!(" + pattern[1] + ")", "condition"
        inside = re.search(r"\{ (.*) \}$", code)
        condition = re.search(r"\bif \((.*?)\) (?=\S)", code)
        if condition:
            yield start + condition.start(1), start + condition.end(1), "!(" + condition[1] + ")", \
                "condition"
        if depth == 0 and inside:
            at = start + inside.start(1)
            yield at, at + len(inside[1]), ";", "statement"
        elif depth > 0 and code[-1] not in "{}," and not goes_on:
            yield start, start + len(code), ";", "statement"
        for match in re.finditer(r" (&&|\|\|) ", code):
            yield start + match.start(1), start + match.end(1), \
                "||" if match[1] == "&&" else "&&", "operator"
        depth += code.count("{") - code.count("}")


def cmake_edits(content):
    for match in re.finditer(r"^[ \t]*(\w+)\(((?:[^()\"]|\"[^\"]*\"|\([^()]*\))*)\)", content, re.M):
        start = match.start(1)
        if match[1] in ("if", "elseif"):
            yield match.start(2), match.end(2), "NOT (" + match[2] + ")", "condition"
        elif match[1] not in CMAKE_WORDS:
            yield start, match.end(), "", "statement"
