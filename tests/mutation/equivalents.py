"""The checked-in list of changes that change nothing."""


class Equivalents:
    """An entry is a file, the line as it stands, the line as it becomes (or * for every change of
    the line), and below them the reason. Matched by text: entries outlive moved lines."""

    def __init__(self, path):
        self.entries = {}
        block = []
        for line in path.read_text().splitlines() + [""]:
            if line.startswith("#"):
                continue
            if line.strip():
                block.append(line)
                continue
            if block:
                file, before, *afters_and_reason = block
                *afters, reason = afters_and_reason
                for after in afters:
                    self.entries[(file.strip(), self._tidy(before), self._tidy(after))] = reason
            block = []

    @staticmethod
    def _tidy(line):
        return " ".join(line.removeprefix("-").removeprefix("+").split())

    def reason(self, change):
        for after in (change.after, "*"):
            found = self.entries.get((change.file, change.before, after))
            if found:
                return found
        return None

    def stale(self, build):
        """Entries whose line is not in their file any more."""
        stale = []
        for file, before, _ in self.entries:
            lines = build.text(file).splitlines() if file in build.files else []
            if before not in (" ".join(line.split()) for line in lines):
                stale.append(f"{file}: {before}")
        return sorted(set(stale))
