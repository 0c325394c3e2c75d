"""Mutants of a C++ source: one operator, constant or statement changed at a time.

Works on tokens, not on a syntax tree: a change that makes no sense to the compiler is dropped when it
does not compile. It relies on the layout that clang-format gives: binary operators stand between
blanks, the angle brackets of templates do not.
"""

import hashlib
import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
  | (?P<raw>[uUL]?8?R"(?P<fence>[^()\\\s]*)\(.*?\)(?P=fence)")
  | (?P<string>[uUL]?8?"(?:[^"\\\n]|\\.)*")
  | (?P<char>[uUL]?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:[eEpP][+-]|[\w.]|'\d)*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<punct><<=|>>=|<=>|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\S)
  | (?P<space>\s+)
""", re.X | re.M | re.S)

BINARY = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "+": "-", "-": "+",
    "*": "/", "/": "*", "%": "*", "&&": "||", "||": "&&", "&": "|", "|": "&", "+=": "-=", "-=": "+=",
    "*=": "/=", "/=": "*=", "|=": "&=", "&=": "|=",
}
NAMES = {"true": "false", "false": "true", "min": "max", "max": "min"}
NOT_A_STATEMENT = set("""using namespace typedef template struct class enum union public private protected
    static_assert const constexpr static auto if for while do switch case default else extern inline
    explicit virtual friend operator return""".split())


@dataclass(frozen=True)
class Mutant:
    path: str
    start: int
    end: int
    replacement: str
    line: int
    kind: str  # operator, constant or statement
    before: str
    key: str  # the same as long as its line stays the same

    def apply(self, text):
        return text[:self.start] + self.replacement + text[self.end:]

    def __str__(self):
        return f"{self.path}:{self.line}: {self.kind} {self.before!r} -> {self.replacement.strip()!r}"


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int


def tokens_of(text):
    for match in TOKEN.finditer(text):
        kind = match.lastgroup if match.lastgroup != "fence" else "raw"
        if kind not in ("comment", "directive", "space"):
            yield Token(kind, match.group(), match.start(), match.end())


def other_number(text):
    """An integer plus one, a real number a tenth larger; None for what is no number of ours."""
    match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9.']+(?:[eE][+-]?\d+)?)([uUlLfFzZ]*)", text)
    if not match:
        return None
    digits, suffix = match.group(1).replace("'", ""), match.group(2)
    if re.fullmatch(r"0[xX].*|0[bB].*|\d+", digits):
        return str(int(digits, 0 if digits[:2].lower() in ("0x", "0b") else 10) + 1) + suffix
    value = float(digits) * 1.1 if float(digits) else 1.0
    return f"{value:.17g}" + ("" if re.search(r"[.e]", f"{value:.17g}") else ".0") + suffix


def other_char(text):
    quote = text.index("'")
    return text[:quote] + ("'b'" if text.endswith("'a'") else "'a'")


def other_string(text):
    quote = text.index('"')
    return text[:quote + 1] + "X" + text[quote + 1:]


def single_changes(text, tokens):
    for i, token in enumerate(tokens):
        before = tokens[i - 1] if i else None
        blanks = text[token.start - 1:token.start] in (" ", "\n") and text[token.end:token.end + 1] in (" ", "\n")
        if token.kind == "punct":
            if blanks and token.text in BINARY:
                yield token, BINARY[token.text], "operator"
            elif token.text in ("++", "--"):
                yield token, "--" if token.text == "++" else "++", "operator"
            elif token.text == "!" and text[token.end:token.end + 1] not in ("", " ", "="):
                yield token, "", "operator"
        elif token.kind == "number":
            yield token, other_number(token.text), "constant"
        elif token.kind == "char":
            yield token, other_char(token.text), "constant"
        elif token.kind == "string" and not (before and before.text in ("extern", "operator")):
            yield token, other_string(token.text), "constant"
        elif token.kind == "name" and token.text in NAMES:
            yield token, NAMES[token.text], "constant" if token.text in ("true", "false") else "operator"


def ends_a_statement(tokens, i, openings):
    """Whether a statement may begin after token i."""
    token = tokens[i]
    if token.text in (";", "{", "}", "else") or (token.text == ":" and "case" in [t.text for t in tokens[max(0, i - 4):i]]):
        return True
    if token.text != ")":
        return False
    opening = openings.get(i)
    return opening is not None and opening > 0 and tokens[opening - 1].text in ("if", "for", "while", "constexpr")


def statements(text, tokens):
    openings, stack, inside = {}, [], set()
    for i, token in enumerate(tokens):
        if token.text in ("(", "[", "{") and token.kind == "punct":
            stack.append(i)
        elif token.text in (")", "]", "}") and token.kind == "punct" and stack:
            openings[i] = stack.pop()
        if stack and tokens[stack[-1]].text != "{":
            inside.add(i)  # of parentheses: the parts of a loop's head are no statements
    for i in range(len(tokens) - 1):
        if i in inside or not ends_a_statement(tokens, i, openings):
            continue
        first, second = tokens[i + 1], tokens[i + 2] if i + 2 < len(tokens) else None
        if first.kind == "name" and first.text in NOT_A_STATEMENT and first.text != "return":
            continue
        if first.text in ("}", ";", "{", ")") or not second:
            continue
        if first.kind == "name" and second.kind == "name" and first.text not in ("return", "delete", "throw"):
            continue  # a declaration
        depth, j = 0, i + 1
        while j < len(tokens):
            if tokens[j].kind == "punct":
                depth += tokens[j].text in ("(", "[", "{")
                depth -= tokens[j].text in (")", "]", "}")
            if depth < 0 or (depth == 0 and tokens[j].text == ";"):
                break
            j += 1
        if j >= len(tokens) or depth < 0:
            continue
        whole = Token("statement", text[first.start:tokens[j].end], first.start, tokens[j].end)
        if first.text != "return":
            yield whole, ";", "statement"
        elif second.text not in (";", "{"):
            yield whole, "return {};", "statement"


def mutants_of(path, text):
    tokens = list(tokens_of(text))
    found = list(single_changes(text, tokens)) + list(statements(text, tokens))
    found = [(token, new, kind) for token, new, kind in found
             if new is not None and "static_assert" not in text[text.rfind("\n", 0, token.start) + 1:token.start]]
    seen = {}  # how often a line of the same text came before
    number_of_line = {}
    for number, line in enumerate(text.split("\n"), 1):
        seen[line.strip()] = seen.get(line.strip(), 0) + 1
        number_of_line[number] = (line.strip(), seen[line.strip()])
    for token, new, kind in sorted(found, key=lambda change: (change[0].start, change[1])):
        line = text.count("\n", 0, token.start) + 1
        column = token.start - text.rfind("\n", 0, token.start) - 1
        indent = len(text.split("\n")[line - 1]) - len(text.split("\n")[line - 1].lstrip())
        key = hashlib.sha1(repr((path, number_of_line[line], column - indent, kind, new)).encode()).hexdigest()[:12]
        # What is taken out keeps its line ends, so that the lines after it keep their numbers.
        padding = "\n" * (text.count("\n", token.start, token.end) - new.count("\n"))
        yield Mutant(path, token.start, token.end, new + padding, line, kind,
                     " ".join(token.text.split())[:90], key)
