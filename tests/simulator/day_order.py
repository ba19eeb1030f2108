"""Which phases a unit's day has, and where the fields of the slides are that it walks to."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "simulator/room"))

from demo.phases import name_of, phases_of  # noqa: E402  (the path is set above)
from demo.slide_types import SLIDE_TYPES  # noqa: E402

DAY = [
    "connection", "live_view", "x_reference", "autofocus", "slope", "slides", "light", "pixel_shift", "magnification",
    "options", "mirrors", "identity", "capture", "pages", "leave", "restart",
]


def names(*arguments, **named):
    return [name_of(phase) for phase in phases_of(*arguments, **named)]


class Phases(unittest.TestCase):
    def test_unitWithTheAr0134_hasThemAllInTheOrderOfTheFactory(self):
        self.assertEqual(names("arducam"), DAY)

    def test_unitWithABaslerCamera_hasNoMirrors(self):
        self.assertEqual(names("basler"), [name for name in DAY if name != "mirrors"])

    def test_only_keepsTheOrderAndTheConnection(self):
        self.assertEqual(names("basler", only=["slope", "x_reference"]), ["connection", "x_reference", "slope"])

    def test_until_endsWithThatPhase(self):
        self.assertEqual(names("basler", until="autofocus"), DAY[:4])

    def test_untilAPhaseThatTheUnitDoesNotHave_endsBeforeIt(self):
        self.assertEqual(names("basler", until="mirrors"), DAY[: DAY.index("mirrors")])


class SlideTypes(unittest.TestCase):
    def kind(self, name):
        return next(kind for kind in SLIDE_TYPES if kind.name == name)

    def test_types_areThoseOfTheBox(self):
        entries = [kind.name for kind in sorted(SLIDE_TYPES, key=lambda kind: kind.index)]
        self.assertEqual(entries, ["1-Channel", "2-Channel", "3-Channel", "8-Channel", "Reusable", "Validation",
                                   "Prisma Max"])

    def test_fields_lieWhereTheSlideHasThem(self):
        for name, channel, field, x in (
            ("1-Channel", 0, 46, 1000 + 22080), ("2-Channel", 0, 11, 1000 - 5280),
            ("2-Channel", 1, 11, 1000 - 20799 + 5280), ("3-Channel", 0, 11, 1000 + 5280),
            ("3-Channel", 2, 11, 1000 - 24692 + 5280), ("8-Channel", 7, 4, 1000 - 33600 - 1920),
            ("Reusable", 0, 11, 1000 - 5280), ("Validation", 0, 11, 1000 - 5280), ("Prisma Max", 0, 4, 1000 - 1920),
        ):
            with self.subTest(slide=name, channel=channel):
                self.assertEqual(self.kind(name).x(1000, channel, field), x)

    def test_heights_followTheSlopeAndTheOffsets(self):
        calibration = {"Z reference": "30000", "Z ref 1ch": "29360", "Z ref 2ch": "31920", "Z ref 3ch": "29361",
                       "Z ref 8ch": "29362", "Z ref slope": "-2.500", "Prisma offset": "40"}
        for name, channel, z in (
            ("1-Channel", 0, 29360), ("2-Channel", 1, 31822), ("3-Channel", 2, 29245), ("8-Channel", 7, 29204),
            ("Reusable", 0, 31920 + 5676), ("Validation", 0, 30000 - 1280), ("Prisma Max", 0, 31920 - 40),
        ):
            with self.subTest(slide=name, channel=channel):
                self.assertEqual(self.kind(name).z(calibration, channel), z)


if __name__ == "__main__":
    unittest.main(verbosity=2)
