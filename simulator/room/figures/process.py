"""What the system tells about the program's process."""

import os
from pathlib import Path

from qr9room.errors import RoomError


def of(room, program):
    """The process number, outside of the room, of a program of the build folder that runs in it."""
    name = Path(program).name
    for entry in Path("/proc").iterdir():
        if entry.name.isdigit() and _is(entry, name) and room.program.holds(int(entry.name)):
            return int(entry.name)
    raise RoomError(f"{name} does not run in the room")


def resident(process):
    """Resident memory in MiB."""
    pages = int(Path(f"/proc/{process}/statm").read_text().split()[1])
    return pages * os.sysconf("SC_PAGE_SIZE") / 2**20


def cpu_seconds(process):
    """Processor time that all threads of the process have taken so far."""
    words = Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    return (int(words[11]) + int(words[12])) / os.sysconf("SC_CLK_TCK")


def _is(entry, name):
    try:
        return entry.joinpath("comm").read_text() == name[:15] + "\n"
    except OSError:  # it has ended meanwhile
        return False
