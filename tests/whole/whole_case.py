"""What the tests of the whole program share."""

import os
import sys
import tempfile
import unittest
from contextlib import contextmanager
from pathlib import Path

ROOM = Path(__file__).resolve().parents[2] / "simulator/room/room"  # the launcher
sys.path.insert(0, str(ROOM.parent))

from qr9room import bubble  # noqa: E402  (the path is set above)
from qr9room.errors import NoRooms  # noqa: E402
from qr9room.inifile import read_ini  # noqa: E402, F401  (for the tests)
from qr9room.options import Options  # noqa: E402
from qr9room.room import Room  # noqa: E402
from qr9room.technician import Technician  # noqa: E402
from qr9room.waiting import wait_for  # noqa: E402, F401  (for the tests)

SKIPPED = 77
PATIENCE = 60  # seconds for what usually takes one or two
CONNECTED = "CAMERA connected..."

# What the program sends on the way to a lit unit whose settings file is missing, and on the way out.
BRING_UP = [
    "$A#VER",
    "$X#STAGE ORIGIN",
    "$Z#STAGE ORIGIN",
    "$A#FILTER ORIGIN",
    "$Z#STAGE STEP 115",
    "$Z#STAGE SPEED 100",
    "$X#STAGE EJECT",
    "$Z#STAGE ABS 32000",
    "$A#LED BRT1 7 6",
    "$A#FILTER GO 1",
]
WAY_OUT = ["$A#LED OFF1", "$X#STAGE ORIGIN"]


class WholeCase(unittest.TestCase):
    """A test that launches the program in rooms of its own."""

    @contextmanager
    def program_in_room(self, furnish=lambda room: None, **wishes):
        """A room in which the program has just been launched, and a technician's hand on it.

        `furnish` gets the room before the program is launched; `wishes` are fields of Options. When the block fails
        its evidence is kept, and its place printed.
        """
        options = Options(build=Path(os.environ["QR9_BUILD"]), quick=True, **wishes)
        with Room(options) as room:
            try:
                furnish(room)
                room.launch("app/VerifierQR9")
                yield room, Technician(room)
            except BaseException:
                place = tempfile.mkdtemp(prefix=f"qr9-failed.{self._testMethodName}.")
                print(f"evidence: {room.keep(place)}", file=sys.stderr)
                raise

    def leave(self, room, hand):
        """Presses the exit button as soon as it is there; the program must end well."""
        hand.wait_shown("pushButton_EXIT", PATIENCE)
        hand.click("pushButton_EXIT")
        self.assertEqual(room.program.wait(PATIENCE), 0)


def main():
    """Runs the tests of the calling module; exit code 77 where no room can be had."""
    try:
        bubble.probe()
    except NoRooms as reason:
        print(reason, file=sys.stderr)
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)
