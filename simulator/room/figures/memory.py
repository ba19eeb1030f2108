"""Resident memory of the program through long work."""

from . import process
from .figure import Figure
from .stage_set import PROGRAM, connect, frames_sent, furnished_room

EXPOSURE = 10  # ms
WARM_UP = 100  # frames
FRAMES = 2000
# The allocator gives and takes a little; a frame that is lost is 1.2 MiB.
NO_GROWTH = 1.0  # MiB


def measure(build):
    with furnished_room(build, EXPOSURE, quick=True) as room:
        room.launch(PROGRAM)
        hand = connect(room)
        program = process.of(room, PROGRAM)
        yield Figure("resident memory after the start", process.resident(program), "MiB")

        _let_live_frames_pass(room, WARM_UP)
        before = process.resident(program)
        _let_live_frames_pass(room, FRAMES)
        after = process.resident(program)
        yield Figure(f"resident memory after {FRAMES} live frames", after, "MiB")
        yield Figure(f"  growth over the {FRAMES} live frames", after - before, "MiB", at_most=NO_GROWTH)

        _insert_slide(room, hand)
        hand.open_page("TAB_QC2")
        _run_pixel_shift(room, hand)
        yield Figure(
            "resident memory after a pixel shift run, with its 36 pictures", process.resident(program), "MiB"
        )
        # The second run still finds room for what the first one left on show.
        _run_another_pixel_shift(room, hand)
        before = process.resident(program)
        _run_another_pixel_shift(room, hand)
        after = process.resident(program)
        yield Figure("resident memory after a third pixel shift run", after, "MiB")
        yield Figure("  growth over the third run", after - before, "MiB", at_most=NO_GROWTH)


def _let_live_frames_pass(room, count):
    end = frames_sent(room) + count
    room.wait_for(f"{count} live frames", lambda: frames_sent(room) >= end, 120)


def _insert_slide(room, hand):
    """Without a slide in, the run's moves from field to field go nowhere."""
    hand.open_page("TAB_STAGE")
    hand.click("pushButton_INSERT")
    room.wait_for("the slide to be in", lambda: room.board_lines()[-1] == "$X#STAGE ABS 0", 20)


def _run_another_pixel_shift(room, hand):
    hand.click("pushButton_PIXEL_SHIFT")  # back to the live view
    _run_pixel_shift(room, hand)


def _run_pixel_shift(room, hand):
    hand.click("pushButton_PIXEL_SHIFT")
    hand.acknowledge("Info", 180)
