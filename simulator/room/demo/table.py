"""The table of a demonstration: what was true, what the program found, and whether that is good enough."""

HEADINGS = ("what", "true", "found", "allowed", "verdict")
GOOD = "good"
SHORT = "FALLS SHORT"


class Table:
    """Rows in the order in which they were measured."""

    def __init__(self):
        self._rows = []

    def same(self, what, true, found):
        """A row whose values must be equal."""
        self._add(what, true, found, "equal", true == found)

    def near(self, what, true, found, allowed, unit, digits=0):
        """A row whose numbers may differ by `allowed`; a `found` of None falls short."""
        shown = "nothing" if found is None else f"{found:.{digits}f}"
        good = found is not None and abs(found - true) <= allowed
        self._add(what, f"{true:.{digits}f}", shown, f"{allowed:.{digits}f} {unit}", good)

    def within(self, what, found, low, high, unit, digits=0):
        """A row whose number must lie in a range."""
        allowed = f"{low:.{digits}f} to {high:.{digits}f} {unit}".rstrip()
        self._add(what, "", f"{found:.{digits}f}", allowed, low <= found <= high)

    def failed(self, what, reason):
        """A row for something that did not come about."""
        self._add(what, "", reason.splitlines()[0], "", False)

    def is_good(self):
        """Whether there are rows and none falls short."""
        return bool(self._rows) and all(row[-1] == GOOD for row in self._rows)

    def text(self):
        lines = [HEADINGS, *self._rows]
        widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
        rule = "-+-".join("-" * width for width in widths)
        cells = [[cell.ljust(width) for cell, width in zip(line, widths)] for line in lines]
        drawn = [" | ".join(line).rstrip() for line in cells]
        return "\n".join([drawn[0], rule, *drawn[1:]])

    def _add(self, what, true, found, allowed, good):
        self._rows.append((what, str(true), str(found), allowed, GOOD if good else SHORT))
