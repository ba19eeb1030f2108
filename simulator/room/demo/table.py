"""The table of a demonstration: what was true, what the program found, and whether that is good enough."""

from dataclasses import asdict, dataclass

HEADINGS = ("what", "true", "found", "allowed", "verdict")
GOOD = "good"
SHORT = "FALLS SHORT"


@dataclass
class Row:
    """One line: its texts as a person reads them, and the numbers behind them where it has any."""

    what: str
    true: str
    found: str
    allowed: str
    verdict: str
    error: float | None = None  # found less true
    tolerance: float | None = None  # what the error may be, of either sign
    unit: str = ""  # of both
    digits: int = 0  # that make sense in them

    def cells(self):
        return self.what, self.true, self.found, self.allowed, self.verdict


class Table:
    """Rows in the order in which they were measured."""

    def __init__(self):
        self._rows = []

    def same(self, what, true, found):
        """A row whose values must be equal."""
        self._add(true == found, what, true, found, "equal")

    def near(self, what, true, found, allowed, unit, digits=0):
        """A row whose numbers may differ by `allowed`; a `found` of None falls short."""
        shown = "nothing" if found is None else f"{found:.{digits}f}"
        error = None if found is None else found - true
        self._add(
            found is not None and abs(error) <= allowed,
            what, f"{true:.{digits}f}", shown, f"{allowed:.{digits}f} {unit}",
            error=error, tolerance=allowed, unit=unit, digits=digits,
        )

    def within(self, what, found, low, high, unit, digits=0):
        """A row whose number must lie in a range."""
        allowed = f"{low:.{digits}f} to {high:.{digits}f} {unit}".rstrip()
        self._add(low <= found <= high, what, "", f"{found:.{digits}f}", allowed)

    def failed(self, what, reason):
        """A row for something that did not come about."""
        self._add(False, what, "", reason.splitlines()[0], "")

    def is_good(self):
        """Whether there are rows and none falls short."""
        return bool(self._rows) and all(row.verdict == GOOD for row in self._rows)

    def text(self):
        return draw([HEADINGS, *(row.cells() for row in self._rows)])

    def records(self):
        """The rows as plain dictionaries, for a file."""
        return [asdict(row) for row in self._rows]

    def _add(self, good, what, true, found, allowed, **numbers):
        self._rows.append(Row(what, str(true), str(found), allowed, GOOD if good else SHORT, **numbers))


def draw(lines):
    """Lines of as many cells each, the first one the headings, as columns of text."""
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    rule = "-+-".join("-" * width for width in widths)
    cells = [[cell.ljust(width) for cell, width in zip(line, widths)] for line in lines]
    drawn = [" | ".join(line).rstrip() for line in cells]
    return "\n".join([drawn[0], rule, *drawn[1:]])
