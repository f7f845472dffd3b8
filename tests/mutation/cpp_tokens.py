"""C++ sources as tokens that know where they stand and what they stand in."""

import re
from dataclasses import dataclass

_TOKEN = re.compile(
    r"""
    (?P<space>\s+|\\\n)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<string>"(?:\\.|[^"\\\n])*")
  | (?P<char>'(?:\\.|[^'\\\n])*')
  | (?P<number>0[xX][0-9a-fA-F']+[uUlL]*|[0-9][0-9']*[uUlL]*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||
             \+=|-=|\*=|/=|%=|&=|\|=|\^=|\#\#|.)
    """,
    re.VERBOSE | re.DOTALL,
)

_CLOSING = {"(": ")", "{": "}", "[": "]"}
# What stands in these brackets is checked or told at compile time and is no behaviour.
_SILENT_CALLS = {"static_assert", "alignas", "__asm__", "asm", "sizeof", "decltype"}


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    spaced: bool = False  # white space on both sides: how the formatter writes binary operators
    in_table: bool = False  # inside the initialiser of an array: data, not a rule
    in_define: bool = False
    match: int = -1  # of a bracket: the other one's index


def tokens_of(text):
    """The tokens that may be changed, without comments, directives and silent calls."""
    tokens = _scan(text)
    _match_brackets(tokens)
    _mark_tables(tokens)
    silent = _silent_ranges(tokens)
    kept = [t for i, t in enumerate(tokens) if not any(a <= i <= b for a, b in silent)]
    _match_brackets(kept)
    for token in kept:
        before = text[token.start - 1 : token.start]
        after = text[token.end : token.end + 1]
        token.spaced = before.isspace() and after.isspace()
    return kept


def _scan(text):
    tokens = []
    position = 0
    define_end = -1
    while position < len(text):
        if text[position] == "#" and text[: position].rsplit("\n", 1)[-1].strip() == "":
            end = _directive_end(text, position)
            define = re.match(r"#\s*define\s+\w+(\([^)]*\))?", text[position:end])
            if define is None:
                position = end
                continue
            position += define.end()
            define_end = end
            continue
        found = _TOKEN.match(text, position)
        kind = found.lastgroup
        if kind not in ("space", "comment"):
            token = Token(kind, found.group(), found.start(), found.end())
            token.in_define = position < define_end
            tokens.append(token)
        position = found.end()
    return tokens


def _directive_end(text, start):
    end = start
    while True:
        end = text.find("\n", end)
        if end < 0:
            return len(text)
        if text[end - 1] != "\\":
            return end
        end += 1


def _match_brackets(tokens):
    opened = []
    for i, token in enumerate(tokens):
        token.match = -1
        if token.kind != "sign":
            continue
        if token.text in _CLOSING:
            opened.append(i)
        elif token.text in _CLOSING.values() and opened:
            j = opened.pop()
            token.match = j
            tokens[j].match = i


def _mark_tables(tokens):
    for i in range(2, len(tokens)):
        if [t.text for t in tokens[i - 2 : i + 1]] == ["]", "=", "{"]:
            for token in tokens[i : tokens[i].match]:
                token.in_table = True


def _silent_ranges(tokens):
    ranges = []
    for i, token in enumerate(tokens[:-1]):
        if token.text in _SILENT_CALLS:
            j = i + 1
            while tokens[j].text == "volatile":
                j += 1
            if tokens[j].text == "(":
                ranges.append((i, tokens[j].match))
        elif token.text == "[" and tokens[i + 1].text == "[":
            ranges.append((i, token.match))
    return ranges
