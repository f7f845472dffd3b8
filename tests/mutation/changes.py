"""Every change that is made to a source, one at a time."""

from dataclasses import dataclass

from cpp_tokens import tokens_of


@dataclass(frozen=True)
class Place:
    """Which part of a line is changed, and of a table's number, which number of which table. White
    space counts as one space."""

    head: str  # of the line, in front of what is changed
    old: str  # what is changed, "" where something is put in
    tail: str  # of the line, behind it
    table: str = ""  # the array that a number stands in
    number: int = 0  # counted from 1 in the table's row, in all braces of it


@dataclass(frozen=True)
class Change:
    file: str  # below the root of the tree
    line: int
    start: int
    end: int
    new: str
    kind: str
    before: str  # the line as it stands
    after: str  # the line as it becomes
    place: "Place"

    def apply(self, text):
        changed = text[: self.start] + self.new + text[self.end :]
        if changed == text:
            raise ValueError(f"changes nothing: {self.describe()}")
        return changed

    def describe(self):
        return f"{self.file}:{self.line}: [{self.kind}] {self.before}  =>  {self.after}"


_OPERATORS = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"],
    "<": ["<=", ">="], "<=": ["<"], ">": [">=", "<="], ">=": [">"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="], "^=": ["|="], "*=": ["+="],
}  # fmt: skip
_NAMES = {"true": "false", "false": "true", "min": "max", "max": "min"}
_NO_STATEMENT = {
    "return", "if", "for", "while", "switch", "case", "default", "using", "struct", "enum",
    "template", "inline", "constexpr", "static", "const", "constinit", "extern", "namespace",
    "else", "do", "auto", "typedef", "class", "union", "friend", "operator", "public", "private",
}  # fmt: skip
_ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}


def tidy(text):
    return " ".join(text.split())


def changes_of(file, text):
    """All changes of one source, in the order of the source."""
    found = []
    tokens = tokens_of(text)
    if file.startswith("include/"):
        # Declarations and records are the compiler's to check; the constants are data.
        tokens = [t for t in tokens if t.in_define]

    numbers = _table_numbers(tokens)

    def add(start, end, new, kind):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        head, old, tail = text[first:start], text[start:end], text[end:last]
        in_table = numbers.get(start, ("", 0)) if kind == "table" else ("", 0)
        place = Place(tidy(head), tidy(old), tidy(tail), *in_table)
        line = text.count("\n", 0, start) + 1
        before, after = tidy(head + old + tail), tidy(head + new + tail)
        found.append(Change(file, line, start, end, new, kind, before, after, place))

    for i, token in enumerate(tokens):
        _change_token(tokens, i, token, add)
    if not file.startswith("include/"):
        _change_conditions(text, tokens, add)
        _delete_statements(text, tokens, add)
        _delete_entries(text, tokens, add)
    return sorted(set(found), key=lambda c: (c.start, c.end, c.new))


def _table_numbers(tokens):
    """By where it starts, of each number in an array of rows: the array's name, and the how manieth
    of its row the number is. A row is what stands in braces inside the array's own."""
    found = {}
    for i, token in enumerate(tokens):
        if [t.text for t in tokens[i - 2 : i + 1]] != ["]", "=", "{"] or tokens[i - 2].match < 1:
            continue
        name = tokens[tokens[i - 2].match - 1].text
        row_end = number = 0
        for k in range(i + 1, token.match):
            if k >= row_end and tokens[k].text == "{":
                row_end, number = tokens[k].match, 0
            if k < row_end and tokens[k].kind == "number":
                number += 1
                found[tokens[k].start] = (name, number)
    return found


def _change_token(tokens, i, token, add):
    if token.kind == "sign" and token.spaced:
        for new in _OPERATORS.get(token.text, []):
            add(token.start, token.end, new, "operator")
    if token.kind == "sign" and token.text in "!~" and not token.spaced:
        add(token.start, token.end, "", "operator")
    if token.text == "?" and token.kind == "sign":
        add(token.start, token.start, "|| true ", "condition")
        add(token.start, token.start, "&& false ", "condition")
    if token.text in ("++", "--"):
        add(token.start, token.end, "--" if token.text == "++" else "++", "operator")
    if token.kind == "name" and token.text in _NAMES:
        called = i + 1 < len(tokens) and tokens[i + 1].text in "(<"
        if token.text in ("true", "false") or called:
            add(token.start, token.end, _NAMES[token.text], "constant")
    if token.kind == "number":
        for new in _other_numbers(token.text):
            add(token.start, token.end, new, "table" if token.in_table else "constant")
    if token.kind == "string" and len(token.text) > 2 and tokens[i - 1].text != "extern":
        add(token.start + 1, token.start + 1, "~", "message")


def _other_numbers(text):
    digits = text.rstrip("uUlL")
    suffix = text[len(digits) :]
    value = int(digits.replace("'", ""), 0)
    others = [value + 1] + ([value - 1] if value > 0 else []) + ([0] if value > 1 else [])
    return [(hex(n) if digits[:2] in ("0x", "0X") else str(n)) + suffix for n in others]


def _change_conditions(text, tokens, add):
    for i, token in enumerate(tokens):
        if token.text in ("if", "while"):
            j = i + 1 + (tokens[i + 1].text == "constexpr")
            if tokens[j].text != "(":
                continue
            start, end = tokens[j].end, tokens[tokens[j].match].start
            add(start, end, f"false && ({text[start:end]})", "condition")
            if token.text == "if":
                add(start, end, f"true || ({text[start:end]})", "condition")
        if token.text == "for" and tokens[i + 1].text == "(":
            close = tokens[i + 1].match
            stops = [k for k in range(i + 2, close) if tokens[k].text == ";"]
            if len(stops) == 2:
                start, end = tokens[stops[0]].end, tokens[stops[1]].start
                add(start, end, f" false && ({text[start:end]})", "condition")
        if token.text == "return" and tokens[i + 1].text not in ("{", ";"):
            end = next(t for t in tokens[i:] if t.text == ";")
            start = tokens[i + 1].start
            if text[start : end.start] not in ("0", "true", "false", "nullptr"):
                add(start, end.start, "{}", "result")


def _delete_statements(text, tokens, add):
    for i, token in enumerate(tokens):
        if i == 0 or tokens[i - 1].text not in (";", "{", "}", ")", "else"):
            continue
        if token.kind != "name" and token.text not in ("*", "++", "--"):
            continue
        end = _statement_end(tokens, i)
        if end is None:
            continue
        words = [t.text for t in tokens[i:end]]
        if words in (["break"], ["continue"], ["return"]) or _is_effect(tokens[i:end]):
            # Line breaks stay: messages carry the line that they are reported from.
            gone = text[token.start : tokens[end].start]
            add(token.start, tokens[end].start, "\n" * gone.count("\n"), "statement")


def _statement_end(tokens, i):
    k = i
    while k < len(tokens):
        t = tokens[k]
        if t.kind == "sign":
            if t.text == ";":
                return k
            if t.text in ")}]":
                return None
            if t.text in "({[":
                if t.match < 0:
                    return None
                k = t.match
        k += 1
    return None


def _is_effect(statement):
    """An assignment, or a call for its own sake; no declaration."""
    if not statement or statement[0].text in _NO_STATEMENT:
        return False
    if statement[0].text in ("++", "--"):
        return True
    previous = None
    for token in statement:
        if token.text in _ASSIGNMENTS or token.text == "(":
            return previous is not None
        if token.text in ("++", "--"):
            return True
        if token.kind == "name" and previous is not None and previous.kind == "name":
            return False
        if token.kind == "name" and previous is not None and previous.text in (">", "*", "&"):
            if previous is not statement[0]:
                return False
        previous = token
    return False


def _delete_entries(text, tokens, add):
    """Rows of tables, and entries of the lists in them."""
    for token in tokens:
        if token.text != "{" or not token.in_table or token.match < 0:
            continue
        close = tokens[token.match]
        opening = tokens.index(token)
        if opening > 0 and tokens[opening - 1].text == "=":
            continue
        end = close.end
        if text[end : end + 1] == ",":
            end += 1
        gone = text[token.start : end]
        add(token.start, end, "\n" * gone.count("\n"), "entry")
