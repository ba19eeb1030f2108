"""What the tables of many days say together: per quantity how far off the units were, and which fell short.

Plain arithmetic on what the demonstration writes into table.json. No files, no processes.
"""

from dataclasses import dataclass, field
from statistics import median

from demo.table import GOOD, draw

HEADINGS = ("quantity", "number", "worst", "median", "allowed", "worst on", "short")


@dataclass
class Quantity:
    """All rows of one name."""

    what: str
    unit: str = ""
    digits: int = 0
    count: int = 0
    short: int = 0
    errors: list = field(default_factory=list)  # (size of the error, name of the unit)
    tolerances: list = field(default_factory=list)

    def add(self, row, name):
        self.count += 1
        self.short += row["verdict"] != GOOD
        if row["tolerance"] is not None:
            self.unit, self.digits = row["unit"], row["digits"]
            self.tolerances.append(row["tolerance"])
        if row["error"] is not None:
            self.errors.append((abs(row["error"]), name))

    def is_measured(self):
        """Whether it is a number with an allowed error, and not a value that must be the same."""
        return max(self.tolerances, default=0) > 0

    def cells(self):
        worst, name = max(self.errors, key=lambda error: error[0]) if self.errors else (None, "")
        middle = median(size for size, _ in self.errors) if self.errors else None
        return (self.what, str(self.count), self._number(worst), self._number(middle), self._allowed(), name,
                str(self.short))

    def _number(self, value):
        # One digit more than a single value has: the error of a whole number of steps is no whole number.
        return "" if value is None else f"{value:.{self.digits + 1}f}"

    def _allowed(self):
        least, most = (f"{value:.{self.digits}f}" for value in (min(self.tolerances), max(self.tolerances)))
        return f"{least if least == most else f'{least} to {most}'} {self.unit}".rstrip()


def summarise(days):
    """The quantities of {name of a unit: its rows}, in the order of the day.

    A row that only some units have stands behind the one that it followed there.
    """
    quantities = []
    for name, rows in days.items():
        place = 0
        for row in rows:
            known = next((at for at, each in enumerate(quantities) if each.what == row["what"]), None)
            if known is None:
                quantities.insert(place, Quantity(row["what"]))
                known = place
            quantities[known].add(row, name)
            place = known + 1
    return quantities


def text(quantities):
    """The measured quantities as a table, and a line for all that had to be equal or within a range."""
    measured = [each for each in quantities if each.is_measured()]
    others = [each for each in quantities if not each.is_measured()]
    count, short = sum(each.count for each in others), sum(each.short for each in others)
    lines = [draw([HEADINGS, *(each.cells() for each in measured)])] if measured else []
    lines.append(f"Values that had to be equal or within a range: {count} of {len(others)} kinds, {short} fell short.")
    return "\n\n".join(lines)


def shortfalls(days):
    """A line for each row that fell short, with its unit."""
    return [
        f"{name}: {row['what']}: true {row['true'] or '-'}, found {row['found']}, allowed {row['allowed'] or '-'}"
        for name, rows in days.items() for row in rows if row["verdict"] != GOOD
    ]
