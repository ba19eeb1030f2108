"""docs/wire-protocol.md against the sources: commands, replies, and the records of the camera socket."""

import re
import unittest

from sources import document, quoted, source, table_rows

PRODUCT = source("app/*.cpp", "app/illumination_channels.h", "link/*.cpp")
REPLIES = source("app/reply_table.cpp")
BOARD = source("simulator/board/BoardCommands.cpp")
WIRE = source("platform/camera_wire.h")
DOCUMENT = document("wire-protocol.md")


def section(heading):
    """The text below a heading up to the next one of any depth."""
    return re.split(r"^#+ ", DOCUMENT.split(f" {heading}\n", 1)[1], flags=re.MULTILINE)[0]


def documented_commands():
    """Commands without "$" and arguments."""
    cells = [row[0] for row in table_rows(section("Commands"))]
    return {re.sub(r"( [nab])+$", "", command)[1:] for cell in cells for command in quoted(cell)}


def words_of(line):
    """The words of a line as the sources compose it, without arguments; a number in a word stands for all of them."""
    text = line.replace("\\n", "").strip()
    text = re.sub(r"(READ|COR)%1", r"\g<1>1", text).replace("DIR %1", "DIR PLUS")
    return re.sub(r"( (%\d|\d+))+$", "", text)


class WireDocument(unittest.TestCase):
    def test_commandsOfTheBoard_areThoseOfTheDocument(self):
        board = set(re.findall(r'BoardCommand \{ "([^"]+)"', BOARD))
        self.assertEqual(documented_commands(), board)

    def test_everyLineThatTheProductSends_isInTheDocument(self):
        lines = set(re.findall(r'"\$([AXZ]#[^"]*)"', PRODUCT))
        self.assertGreater(len(lines), 20)
        self.assertEqual([line for line in lines if words_of(line) not in documented_commands()], [])

    def test_rowsOfTheParser_areThoseOfTheDocument(self):
        cells = [row[0] for row in table_rows(section("Replies"))]
        told = {re.sub(r"(#\d[\d.]*| BRT2 100| \d+)$", "", reply) for cell in cells for reply in quoted(cell)}
        self.assertEqual(told, set(re.findall(r'\{ "(\$OK#[^"]+)"', REPLIES)))

    def test_kindsAndErrorsOfTheCameraSocket_haveTheirNumbers(self):
        told = {(row[0], row[1]) for row in table_rows(section("The camera socket")) if re.match(r"-?\d+$", row[1])}
        enumerators = set()
        for body in re.findall(r"enum class \w+ : [\w:]+ \{ (.*?) \};", WIRE):
            enumerators |= set(re.findall(r"(\w+) = (-?\d+),", body))
        self.assertEqual(told, enumerators - {("None", "0")})

    def test_sizesOfTheRecords_areThoseOfTheHeader(self):
        for name, size in re.findall(r"sizeof\((\w+)\) == (\d+)", WIRE):
            what = "one record" if name == "Message" else f"`{name}` is"
            self.assertRegex(" ".join(DOCUMENT.split()), rf"{what}( of)? {size} bytes")


if __name__ == "__main__":
    unittest.main(verbosity=2)
