"""A room with the program connected and cells under its objective, as every part of the figures needs it."""

import contextlib
import tempfile
from pathlib import Path

from qr9room.options import Options
from qr9room.room import Room
from qr9room.technician import Technician

PROGRAM = "app/VerifierQR9"
VIEW = "BASLER_VIDEO_WIDGET"
SETTLING = 50  # ms beyond the exposure that the program waits on purpose before each frame of a focus walk


@contextlib.contextmanager
def furnished_room(build, exposure, quick):
    """A room whose bright field has an exposure of `exposure` ms. No program runs in it yet."""
    with tempfile.NamedTemporaryFile("w", suffix=".ini") as settings:
        settings.write(f"[Ch.%20BF]\nExposure={exposure}\nGain=0\nLED1=20\nLED2=20\n")
        settings.flush()
        with Room(Options(build=build, quick=quick, ini=Path(settings.name))) as room:
            yield room


def connect(room):
    """Waits until the launched program is connected and brings cells into focus. Returns its hand."""
    hand = Technician(room)
    hand.wait_window()
    room.wait_log("CAMERA connected...", 30)
    field = room.instrument.ask("truth")["truth"]["derived"]["focusA1"]
    room.instrument.ask("set", key="slide", value="2ch")
    room.instrument.ask("set", key="x", value=field["x"])
    room.instrument.ask("set", key="z", value=round(field["bf"]))
    room.wait_for("a picture in the live view", lambda: not hand.picture_of(VIEW).is_black(), 10)
    return hand


def frames_sent(room):
    """Number of frames that the camera has sent so far."""
    return sum(event == "frame" for _, event in camera_log(room))


def camera_log(room):
    """The camera's transcript: seconds of the monotonic clock and "trigger" or "frame" each."""
    lines = (room.rig / "camera.log").read_text().split("\n")[:-1]
    return [(int(us) / 1e6, event) for us, event, _ in (line.split() for line in lines)]
