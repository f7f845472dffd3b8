"""The checked-in list of changes that change nothing."""


def _tidy(line):
    return " ".join(line.split())


def _fits(pattern, text):
    """* in a pattern stands for any text."""
    first, *rest = pattern.split("*")
    if not rest:
        return pattern == text
    if not text.startswith(first) or not text.endswith(rest[-1]):
        return False
    at = len(first)
    for piece in rest[:-1]:
        at = text.find(piece, at)
        if at < 0:
            return False
        at += len(piece)
    return at <= len(text) - len(rest[-1])


class Equivalents:
    """A paragraph is a file, "- " the line as it stands, "+ " the lines that it may become, and the
    reason, which is the last line. Matched by text: entries outlive moved lines."""

    def __init__(self, path):
        self.entries = []
        for paragraph in path.read_text().split("\n\n"):
            lines = [l for l in paragraph.splitlines() if l and not l.startswith("#")]
            if not lines:
                continue
            before = [_tidy(l[2:]) for l in lines if l.startswith("- ")]
            afters = [_tidy(l[2:]) for l in lines if l.startswith("+ ")]
            if len(before) < 1 or not afters or lines[-1][:2] in ("- ", "+ "):
                raise ValueError(f"{path.name}: not an entry: {lines[0]}")
            for line in before:
                self.entries.append((lines[0].strip(), line, afters, lines[-1].strip()))

    def reason(self, change):
        for file, before, afters, reason in self.entries:
            if file == change.file and _fits(before, change.before):
                if any(_fits(after, change.after) for after in afters):
                    return reason
        return None

    def stale(self, changes):
        """Entries that name no possible change: their file, their line or what it becomes is not
        there."""
        stale = []
        for file, before, afters, _ in self.entries:
            fitting = [c for c in changes if c.file == file and _fits(before, c.before)]
            if not any(_fits(after, c.after) for c in fitting for after in afters):
                stale.append(f"{file}: {before}")
        for file, after in {(file, after) for file, _, afters, _ in self.entries for after in afters}:
            befores = [b for f, b, afters, _ in self.entries if f == file and after in afters]
            fitting = [c for c in changes if c.file == file and _fits(after, c.after)]
            if not any(_fits(before, c.before) for c in fitting for before in befores):
                stale.append(f"{file}: {after}")
        return stale
