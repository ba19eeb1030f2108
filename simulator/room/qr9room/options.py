"""What a room is to be like."""

from dataclasses import dataclass, field
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[3]


@dataclass
class Options:
    """One field per wish; the defaults give seed 1, a Basler camera and the board on the only port."""

    build: Path = REPOSITORY / "build" / "dev"  # seen as /run/prog in the room
    seed: int = 1
    unit: Path | None = None  # a unit's file, instead of the seed
    camera: str = "basler"  # basler, arducam or none
    silent_ports: int = 0  # ports that never answer, listed before the board
    board: bool = True  # False: the board's port is not there
    unopenable_port: bool = False  # a port before the board's that is listed and cannot be opened
    quick: bool = False  # motions take no noticeable time
    reset_program: bool = True  # False: Reset_BaslerCamera is missing
    ini: Path | None = None  # becomes TAVO_QR9.ini
    environment: dict = field(default_factory=dict)  # more variables of the program
    instrument_arguments: list = field(default_factory=list)  # more arguments of VirtualInstrument
    desk: bool = False  # show the window on the user's own display
