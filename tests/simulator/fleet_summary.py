"""The arithmetic that makes one table of many days."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "simulator/room"))

from demo.table import Table  # noqa: E402  (the path is set above)
from fleet.summary import shortfalls, summarise, text  # noqa: E402


def rows(*measured):
    """The records of a day; `measured` are (what, true, found, allowed)."""
    table = Table()
    for what, true, found, allowed in measured:
        table.near(what, true, found, allowed, "steps")
    return table.records()


def cells(days, what):
    """number, worst, median, allowed, worst on, short of one quantity."""
    return next(each.cells()[1:] for each in summarise(days) if each.what == what)


class Summary(unittest.TestCase):
    def test_errorsOfEitherSign_countBySize(self):
        days = {"a": rows(("focus", 100, 90, 115)), "b": rows(("focus", 100, 103, 115))}
        self.assertEqual(cells(days, "focus"), ("2", "10.0", "6.5", "115 steps", "a", "0"))

    def test_oddNumberOfUnits_medianIsTheMiddleOne(self):
        days = {name: rows(("focus", 0, error, 9)) for name, error in (("a", 1), ("b", -8), ("c", 2))}
        self.assertEqual(cells(days, "focus"), ("3", "8.0", "2.0", "9 steps", "b", "0"))

    def test_errorBeyondTheAllowed_fallsShort(self):
        days = {"a": rows(("focus", 100, 110, 10)), "b": rows(("focus", 100, 111, 10))}
        self.assertEqual(cells(days, "focus")[-1], "1")
        self.assertEqual(shortfalls(days), ["b: focus: true 100, found 111, allowed 10 steps"])

    def test_valueThatWasNotFound_fallsShortAndHasNoError(self):
        days = {"a": rows(("focus", 100, None, 10)), "b": rows(("focus", 100, 104, 10))}
        self.assertEqual(cells(days, "focus"), ("2", "4.0", "4.0", "10 steps", "b", "1"))

    def test_noUnitFoundAnything_leavesTheErrorsOpen(self):
        self.assertEqual(cells({"a": rows(("focus", 100, None, 10))}, "focus"), ("1", "", "", "10 steps", "", "1"))

    def test_allowedErrorThatDiffers_isGivenAsARange(self):
        days = {"a": rows(("volume", 0, 0, 10)), "b": rows(("volume", 0, 0, 12))}
        self.assertEqual(cells(days, "volume")[3], "10 to 12 steps")

    def test_rowOfSomeUnitsOnly_standsWhereItStoodThere(self):
        days = {
            "a": rows(("first", 0, 0, 0), ("last", 0, 0, 0)),
            "b": rows(("first", 0, 0, 0), ("mirror", 0, 0, 0), ("last", 0, 0, 0)),
        }
        self.assertEqual([each.what for each in summarise(days)], ["first", "mirror", "last"])
        self.assertEqual([each.count for each in summarise(days)], [2, 1, 2])

    def test_equalValues_areCountedInOneLine(self):
        good, bad = Table(), Table()
        good.same("serial", "1", "1")
        good.within("brightness", 170, 120, 220, "")
        bad.same("serial", "1", "2")
        days = {"a": good.records(), "b": bad.records()}
        self.assertEqual(text(summarise(days)),
                         "Values that had to be equal or within a range: 3 of 2 kinds, 1 fell short.")
        self.assertEqual(shortfalls(days), ["b: serial: true 1, found 2, allowed equal"])

    def test_numberThatMayNotDiffer_isNoMeasuredQuantity(self):
        self.assertEqual(text(summarise({"a": rows(("place", 5, 5, 0))})),
                         "Values that had to be equal or within a range: 1 of 1 kinds, 0 fell short.")

    def test_phaseThatFailed_isAShortfallWithItsReason(self):
        table = Table()
        table.failed("Capture", "waited in vain\nfor long")
        self.assertEqual(shortfalls({"a": table.records()}),
                         ["a: Capture: true -, found waited in vain, allowed -"])

    def test_table_hasAHeadingARuleAndALineForEachQuantity(self):
        days = {"a": rows(("focus", 100, 90, 115), ("slope", 1, 1, 2))}
        lines = text(summarise(days)).splitlines()
        self.assertEqual(lines[0].split(" | ")[0].strip(), "quantity")
        self.assertEqual([line.split(" | ")[0].strip() for line in lines[2:4]], ["focus", "slope"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
