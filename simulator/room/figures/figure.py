"""One row of the table of figures."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Figure:
    """What was measured, and its limit where one is wanted."""

    what: str
    value: float
    unit: str
    at_least: float | None = None
    at_most: float | None = None

    @property
    def is_good(self):
        above = self.at_least is None or self.value >= self.at_least
        return above and (self.at_most is None or self.value <= self.at_most)

    def __str__(self):
        limit = verdict = ""
        if self.at_least is not None:
            limit = f"at least {self.at_least:g}"
        elif self.at_most is not None:
            limit = f"at most {self.at_most:g}"
        if limit:
            verdict = "good" if self.is_good else "FALLS SHORT"
        return f"{self.what:<72} {self.value:8.1f} {self.unit:<9} {limit:<14} {verdict}".rstrip()
