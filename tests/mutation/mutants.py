"""The changes that mutation makes to a C++ file: one constant, operator, condition or statement each.
What it makes of scripts is in scripts.py.

Works on tokens. That the sources are laid out by clang-format is what tells a comparison (blanks on
both sides) from the bracket of a template, and a product from a pointer.
"""
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<raw>R"(?P<delimiter>[^()\s]*)\(.*?\)(?P=delimiter)")
  | (?P<text>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
  | (?P<character>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\.?[0-9](?:[eEpP][+-]|'[0-9a-fA-F]|[0-9a-zA-Z_.])*)
  | (?P<word>[A-Za-z_][A-Za-z0-9_]*)
  | (?P<sign><<=|>>=|<=>|\.\.\.|->\*|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\sA-Za-z0-9_])
    """, re.VERBOSE | re.MULTILINE | re.DOTALL)

# Between blanks, as only operators with two operands stand.
BINARY = {
    "<": ["<=", ">"], "<=": ["<"], ">": [">=", "<"], ">=": [">"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["|"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="],
    "&=": ["|="], "|=": ["&="], "^=": ["|="], "<<=": [">>="], ">>=": ["<<="],
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
STEP = {"++": "--", "--": "++"}
WORDS = {"true": "false", "false": "true"}
# What stands in the parentheses after these is no code that runs.
NOT_RUN = {"static_assert", "alignas", "decltype", "__attribute__", "noexcept"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutant:
    """One changed copy of a file."""
    file: str
    line: int
    before: str   # the changed lines as they are in the file, blanks collapsed; which of equal ones
    after: str    # and as they are in the mutant
    content: str  # all of the mutant
    kind: str     # what was changed: "constant", "comparison", "operator", "condition", "statement"
    first: bool   # whether it is the first of those that change this place

    @property
    def key(self):
        """What the mutant is known by from run to run, wherever its line has moved to."""
        return (self.file, self.before, self.after)


def tokens_of(content):
    """The tokens of C++ code, without comments, directives, and what is not run."""
    found = [Token("text" if match["raw"] else match.lastgroup, match.group(), match.start())
             for match in TOKEN.finditer(content)]
    found = [token for token in found if token.kind not in ("comment", "directive")]
    kept = []
    index = 0
    while index < len(found):
        token = found[index]
        if token.text in NOT_RUN and index + 1 < len(found) and found[index + 1].text == "(":
            index = closing(found, index + 1) + 1
            continue
        if token.text == "extern" and found[index + 1].kind == "text":
            index += 2
            continue
        kept.append(token)
        index += 1
    return kept


def closing(tokens, index):
    """The index of the bracket that closes the one at `index`."""
    pairs = {"(": ")", "[": "]", "{": "}"}
    opened, closed = tokens[index].text, pairs[tokens[index].text]
    depth = 0
    for at in range(index, len(tokens)):
        if tokens[at].text == opened:
            depth += 1
        elif tokens[at].text == closed:
            depth -= 1
            if depth == 0:
                return at
    return len(tokens) - 1


def changed_number(text):
    """What a number is changed to: its neighbours; of a fraction, a number a thousandth larger."""
    match = re.fullmatch(r"(0[xXbB][0-9a-fA-F']+|[0-9][0-9']*)([uUlLzZ]*)", text)
    if match:
        digits, suffix = match[1].replace("'", "").lower(), match[2]
        base = {"0x": 16, "0b": 2}.get(digits[:2], 8 if digits[0] == "0" else 10)
        value = int(digits, base)
        shown = "0x{:X}" if base == 16 else "{}"
        return [shown.format(n) + suffix for n in (value + 1, value - 1) if n >= 0]
    match = re.fullmatch(r"([0-9.]+(?:[eE][+-]?[0-9]+)?)([fFlL]?)", text)
    if not match:
        return []
    value = float(match[1])
    return [repr(value * 1.001 if value else 1.0) + match[2]]


def changed_text(text):
    """A text, or a character, that differs in its first place."""
    quote = text.index("(" if text[0] == "R" else text[-1])
    prefix, inner = text[:quote + 1], text[quote + 1:]
    if text[-1] == '"':
        return prefix + ("@" if inner[0] != "@" else "#") + inner
    return prefix + ("@" if inner[0] != "@" else "#") + "'"


def spaced(content, token):
    return content[token.start - 1].isspace() and content[token.end:token.end + 1].isspace()


def edits_of(content):
    """Yields (start, end, replacement, kind) for each change."""
    tokens = tokens_of(content)
    for index, token in enumerate(tokens):
        before = tokens[index - 1].text if index else ""
        if token.text == "0" and index > 1 and tokens[index - 2].text == "tarvoLogCommon":
            yield token.start, token.end, "2", "constant"  # 1 has the same prefix as 0
        elif token.kind == "number":
            for number in changed_number(token.text):
                yield token.start, token.end, number, "constant"
        elif token.kind in ("text", "character"):
            yield token.start, token.end, changed_text(token.text), "constant"
        elif token.kind == "word" and token.text in WORDS:
            yield token.start, token.end, WORDS[token.text], "constant"
        elif token.text == "if":
            yield from never(content, tokens, index)
        elif token.text in STEP:
            yield token.start, token.end, STEP[token.text], "operator"
        elif token.text in BINARY and spaced(content, token) and before not in ("operator", "auto"):
            for other in BINARY[token.text]:
                yield token.start, token.end, other, \
                    "comparison" if token.text in COMPARISONS else "operator"
        elif token.text in ("!", "-", "~") and before != "operator" and not is_destructor(tokens, index):
            yield token.start, token.end, "", "operator"
        if before in (";", "{", "}", ")", ":", "else"):
            yield from without(content, tokens, index)


def is_destructor(tokens, index):
    return tokens[index].text == "~" and tokens[index + 2].text == "(" and \
        tokens[index + 1].text[:1].isupper()


def never(content, tokens, index):
    """A condition that does not come true: what it guards is left out."""
    opening = index + (2 if tokens[index + 1].text == "constexpr" else 1)
    if tokens[opening].text != "(":
        return
    end = closing(tokens, opening)
    inside = [token.text for token in tokens[opening + 1:end]]
    if ";" in inside or "=" in inside:
        return
    yield tokens[opening].start, tokens[end].end, \
        "(false && (" + content[tokens[opening].end:tokens[end].start] + "))", "statement"


def without(content, tokens, index):
    """A call, an assignment or a jump left out."""
    end = index
    while end < len(tokens) and tokens[end].text not in (";", "{", "}"):
        end = closing(tokens, end) + 1 if tokens[end].text in ("(", "[") else end + 1
    if end == len(tokens) or tokens[end].text != ";" or end == index:
        return
    statement = tokens[index:end]
    texts = [token.text for token in statement]
    if texts in (["return"], ["break"], ["continue"]) or is_call_or_assignment(statement, texts):
        yield statement[0].start, tokens[end].start, "", "statement"


def is_call_or_assignment(statement, texts):
    """As against a declaration, whose name follows on a type, and against a jump with a value."""
    if texts[-2:] in (["=", "default"], ["=", "delete"], ["=", "0"]) and ")" in texts:
        return False
    if statement[0].kind != "word" or texts[0] in ("return", "using", "case", "throw", "goto"):
        return statement[0].text in ("*", "(") and "=" in texts
    assigned = [at for at, text in enumerate(texts)
                if text == "=" or (text in BINARY and text[:-1] in BINARY and text.endswith("="))]
    target = statement[:assigned[0]] if assigned else statement
    depth = 0
    for at, token in enumerate(target):
        depth += (token.text in "([") - (token.text in ")]")
        if depth == 0 and at and token.kind == "word" and \
                (target[at - 1].kind == "word" or target[at - 1].text in (">", "&", "*", "&&")):
            return False
    return bool(assigned) or texts[-1] == ")"


def collapsed(text):
    return " ".join(text.split())


def mutants_of(file, content, edits=edits_of):
    """All mutants of a file in the order of its lines, each once. `edits`: what changes it."""
    equal = {}
    for number, line in enumerate(content.splitlines(), 1):
        equal.setdefault(collapsed(line), []).append(number)
    seen = set()
    places = set()
    found = []
    for start, end, replacement, kind in edits(content):
        first = content.rfind("\n", 0, start) + 1
        last = (content + "\n").find("\n", end)
        line = content.count("\n", 0, start) + 1
        before = collapsed(content[first:last])
        if content.count("\n", start, end) == 0 and equal[before][0] != line:
            before += f"  (line {equal[before].index(line) + 1} of those)"
        mutant = Mutant(file=file, line=line, before=before,
                        after=collapsed(content[first:start] + replacement + content[end:last]),
                        content=content[:start] + replacement + content[end:], kind=kind,
                        first=(start, end) not in places)
        if mutant.content != content and mutant.content not in seen:
            seen.add(mutant.content)
            places.add((start, end))
            found.append(mutant)
    return sorted(found, key=lambda mutant: mutant.line)
