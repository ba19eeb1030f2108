"""The part of scripts/bench that needs the whole program: figures of the unchanged VerifierQR9 in a room.

Measured from outside: the window's appearance on the screen, changes of the picture in the live view, and the
time from the board's reply to the program's next line during a focus walk.
"""

import argparse
import mmap
import statistics
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

from qr9room.errors import RoomError  # noqa: E402  (the path is set above)
from qr9room.options import Options  # noqa: E402
from qr9room.room import Room  # noqa: E402
from qr9room.technician import Technician  # noqa: E402

PROGRAM = "app/VerifierQR9"
VIEW = "BASLER_VIDEO_WIDGET"
EXPOSURE = 10  # ms, of the settings file below
SETTLING = 50  # ms beyond the exposure that the program waits on purpose before each frame of a walk
WATCHED = 5.0  # seconds of live view
SETTINGS = f"[Ch.%20BF]\nExposure={EXPOSURE}\nGain=0\nLED1=20\nLED2=20\n"


def main():
    parser = argparse.ArgumentParser(prog="figures", description=__doc__)
    parser.add_argument("--build", type=Path, required=True, metavar="DIR")
    build = parser.parse_args().build
    with tempfile.NamedTemporaryFile("w", suffix=".ini") as settings:
        settings.write(SETTINGS)
        settings.flush()
        try:
            with Room(Options(build=build, quick=True, ini=Path(settings.name))) as room:
                figures = list(_measure(room))
        except RoomError as reason:
            print(f"figures: {reason}", file=sys.stderr)
            return 1
    good = True
    line = "| {:<45} | {:>8} | {:<8} | {:<11} | {:<11} |"
    print(line.format("figure", "measured", "unit", "wanted", "verdict"))
    print("|" + "|".join("-" * (width + 2) for width in (45, 8, 8, 11, 11)) + "|")
    for what, value, unit, at_least, at_most in figures:
        wanted = f"at least {at_least:g}" if at_least is not None else f"at most {at_most:g}"
        kept = value >= at_least if at_least is not None else value <= at_most
        good = good and kept
        print(line.format(what, f"{value:.1f}", unit, wanted, "good" if kept else "falls short"))
    return 0 if good else 1


def _measure(room):
    """Rows of what, value, unit, least and most."""
    begin = time.time()
    room.launch(PROGRAM)
    hand = Technician(room)
    room.wait_for("the call of the reset program", room.stub_calls, 20)
    reset = max(begin, (room.rig / "stubs.log").stat().st_mtime)
    hand.wait_window()
    yield "window up after the end of the reset program", time.time() - reset, "s", None, 2
    room.wait_log("CAMERA connected...", 30)

    field = room.instrument.ask("truth")["truth"]["derived"]["focusA1"]
    room.instrument.ask("set", key="slide", value="2ch")
    room.instrument.ask("set", key="x", value=field["x"])
    room.instrument.ask("set", key="z", value=round(field["bf"]))
    room.wait_for("a picture in the live view", lambda: not hand.picture_of(VIEW).is_black(), 10)
    yield f"live view at {EXPOSURE} ms exposure", _frames_per_second(room, hand), "frames/s", 25, None

    hand.open_page("TAB_STAGE")
    hand.click("pushButton_AUTOFOCUS")
    room.wait_window("Info", 120)
    work = _work_per_frame(room.board_log())
    yield "own work per frame of a focus walk, median", statistics.median(work), "ms", None, 10
    hand.acknowledge("Info", 10)


def _frames_per_second(room, hand):
    """Counts the changes of a strip of the live view."""
    place = hand.form.place(VIEW)
    with open(room.rig / "screen" / "Xvfb_screen0", "rb") as file:
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as screen:
            x, y = place.centre
            pixels_begin = len(screen) - 4 * 1024 * 600
            strip = slice(pixels_begin + 4 * (y * 1024 + x), pixels_begin + 4 * (y * 1024 + x + 200))
            frames, last, end = 0, screen[strip], time.monotonic() + WATCHED
            while time.monotonic() < end:
                now = screen[strip]
                if now != last:
                    frames, last = frames + 1, now
                time.sleep(0.002)
    return frames / WATCHED


def _work_per_frame(board_log):
    """Milliseconds from a RUN reply to the next RUN line, less the wait that the walk makes on purpose.

    Frames of a walk follow each other with nothing but RUN lines between them.
    """
    events = [line.split(" ", 3) for line in board_log]
    work = []
    for before, after in zip(events, events[1:]):
        if before[2] == "<" and "$OK#Z#STAGE RUN" in before[3] and after[2:] == [">", "$Z#STAGE RUN"]:
            work.append(int(after[0]) - int(before[0]) - EXPOSURE - SETTLING)
    return work


sys.exit(main())
