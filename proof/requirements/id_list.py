"""Lists of ids as a person writes them, "2-4, 10, 12", read into sets."""


def id_list(text):
    """The ids of a list; a pair joined by a hyphen is a range with both ends. Each id once."""
    ids = []
    for item in text.split(","):
        first, _, last = item.strip().partition("-")
        ids.extend(range(int(first), int(last or first) + 1))
    if len(set(ids)) != len(ids) or any(item < 0 for item in ids):
        raise ValueError(f"an id stands twice in the list, or is none: {text}")
    return frozenset(ids)


def as_text(ids):
    """The list of a set of ids: ascending, neighbours joined to ranges, without spaces."""
    ranges = []
    for item in sorted(ids):
        if ranges and ranges[-1][1] == item - 1:
            ranges[-1][1] = item
        else:
            ranges.append([item, item])
    return ",".join(str(a) if a == b else f"{a}-{b}" for a, b in ranges)
