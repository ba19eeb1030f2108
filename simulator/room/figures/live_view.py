"""Start of the window, and the way of a frame through the live view."""

import mmap
import statistics
import time

from . import process
from .figure import Figure
from .stage_set import PROGRAM, VIEW, camera_log, connect, furnished_room

EXPOSURE = 10  # ms
WATCHED = 5.0  # seconds of live view


def measure(build):
    with furnished_room(build, EXPOSURE, quick=True) as room:
        begin = time.time()
        room.launch(PROGRAM)
        room.wait_for("the call of the reset program", room.stub_calls, 20)
        reset = max(begin, (room.rig / "stubs.log").stat().st_mtime)
        room.wait_window("TAVO-QR9 Verifier", 15)
        yield Figure("window up after the end of the reset program", time.time() - reset, "s", at_most=2)

        hand = connect(room)
        of_program = process.of(room, PROGRAM)
        time.sleep(1)  # until the tabs are drawn and only the live view is at work
        cpu_before, begin = process.cpu_seconds(of_program), time.monotonic()
        changes = _changes_on_screen(room, hand)
        cpu = process.cpu_seconds(of_program) - cpu_before
        events = [(at, event) for at, event in camera_log(room) if at >= begin]
        frames = [at for at, event in events if event == "frame"]
        dead_times = [
            after - at
            for (at, event), (after, next_event) in zip(events, events[1:])
            if (event, next_event) == ("frame", "trigger")
        ]
        yield Figure(f"live view at {EXPOSURE} ms exposure", len(changes) / WATCHED, "frames/s", at_least=25)
        period = statistics.median(after - at for at, after in zip(frames, frames[1:]))
        dead_time = statistics.median(dead_times)
        yield Figure("period of the trigger loop, frame to frame, median", 1000 * period, "ms")
        yield Figure("  of it dead time, frame sent to next trigger, median", 1000 * dead_time, "ms", at_most=3)
        yield Figure("  its share", 100 * dead_time / period, "%")
        yield Figure(
            "way of a live frame, sent by the camera to seen on the screen, median",
            1000 * statistics.median(_delays(frames, changes)), "ms",
        )
        yield Figure("own processor time of all threads per live frame", 1000 * cpu / len(frames), "ms")


def _changes_on_screen(room, hand):
    """Times at which a strip of the live view was seen to have changed."""
    place = hand.form.place(VIEW)
    with open(room.rig / "screen" / "Xvfb_screen0", "rb") as file:
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as screen:
            x, y = place.centre
            pixels_begin = len(screen) - 4 * 1024 * 600
            strip = slice(pixels_begin + 4 * (y * 1024 + x), pixels_begin + 4 * (y * 1024 + x + 200))
            changes, last, end = [], screen[strip], time.monotonic() + WATCHED
            while time.monotonic() < end:
                now = screen[strip]
                if now != last:
                    changes.append(time.monotonic())
                    last = now
                time.sleep(0.0005)
    return changes


def _delays(frames, changes):
    """Seconds from the newest frame before each change to that change."""
    return [
        change - max(frame for frame in frames if frame <= change) for change in changes if change > frames[0]
    ]
