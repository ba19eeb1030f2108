"""Each row of docs/bad-days.md names the test that plays it, and that test exists."""

import re
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
TABLE = TOP / "docs/bad-days.md"


def rows():
    """The cells of each row of the tables, without heads and rules."""
    lines = [line for line in TABLE.read_text().splitlines() if line.startswith("| ")]
    cells = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines]
    return [row for row in cells if row[0] != "what goes wrong"]


class BadDays(unittest.TestCase):
    def test_everyRow_namesATest(self):
        self.assertGreater(len(rows()), 20)
        for row in rows():
            with self.subTest(row[0]):
                self.assertEqual(len(row), 4)
                self.assertRegex(row[3], r"^`\w+(::|\.)\w+`")

    def test_everyNamedTest_isThere(self):
        for name in re.findall(r"`(\w+(?:::|\.)\w+)`", TABLE.read_text()):
            if name.startswith("TAVO_QR9."):
                continue
            with self.subTest(name):
                self.assertTrue(self.exists(name), f"no test is called {name}")

    def exists(self, name):
        if "::" in name:
            program = name.split("::")[0]
            sources = list(TOP.glob(f"tests/*/{program}.cpp"))
            return any(f"void {name}()" in source.read_text() for source in sources)
        group, test = name.split(".")
        sources = [source.read_text() for source in TOP.glob("tests/whole/*.py")]
        return any(f"class {group}(" in text and f"def {test}(" in text for text in sources)


if __name__ == "__main__":
    unittest.main(verbosity=2)
