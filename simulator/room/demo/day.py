"""What the phases of a demonstration share."""

from dataclasses import dataclass, field
from pathlib import Path

from qr9room.bubble import SOURCE
from qr9room.inifile import read_ini
from qr9room.room import Room
from qr9room.technician import Technician

from .table import Table

PROGRAM = "/run/prog/app/VerifierQR9"  # in the room
SERVICE = f"{SOURCE}/simulator/room/demo/service"


@dataclass
class Day:
    """One unit's way through the phases."""

    room: Room
    hand: Technician
    truth: dict  # the unit's true constants
    out: Path  # folder for what is to be kept
    table: Table = field(default_factory=Table)
    pictures: int = 0

    def launch(self):
        """Starts the program as the instrument does."""
        self.room.launch(SERVICE, [PROGRAM])

    def setting(self, group, key):
        """A value of the settings file as it stands now; None when it is not there."""
        return read_ini(self.room.home / "TAVO_QR9.ini").get(group, {}).get(key)

    def screenshot(self, name):
        """Keeps a picture of the screen, numbered in the order of the day."""
        self.pictures += 1
        self.room.screen.picture().save(self.out / f"{self.pictures:02}-{name}.png")
