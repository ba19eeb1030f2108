"""The program's own share of a focus run, at the stage's real speed."""

import statistics
import time

from .figure import Figure
from .stage_set import PROGRAM, SETTLING, connect, furnished_room

EXPOSURE = 35  # ms, what a unit without settings has
FRAMES = 15 + 7  # of the coarse and the fine walk


def measure(build):
    with furnished_room(build, EXPOSURE, quick=False) as room:
        room.launch(PROGRAM)
        hand = connect(room)
        hand.open_page("TAB_STAGE")
        time.sleep(1)  # until the page is drawn
        before = len(room.board_log())
        hand.click("pushButton_AUTOFOCUS")
        room.wait_window("Info", 120)
        events = [_event(line) for line in room.board_log()[before:]]

        work = [wait - EXPOSURE - SETTLING for wait in _waits_of_walks(events)]
        yield Figure("own work per frame of a focus walk, median", statistics.median(work), "ms", at_most=10)

        whole = events[-1][0] - events[0][0]
        stage = sum(
            after[0] - at[0] for at, after in zip(events, events[1:]) if (at[1], after[1]) == (">", "<")
        )
        stated = FRAMES * (EXPOSURE + SETTLING)
        yield Figure("focus run, first line to last reply", whole, "ms")
        yield Figure("  of it the board's: motions and replies", stage, "ms")
        yield Figure("  of it the frames': exposures and stated waits", stated, "ms")
        yield Figure("  of it the program's own", 100 * (whole - stage - stated) / whole, "%", at_most=2)
        hand.acknowledge("Info", 10)


def _event(line):
    """Milliseconds, direction and text of a line of the board's transcript."""
    ms, _, direction, text = line.split(" ", 3)
    return int(ms), direction, text


def _waits_of_walks(events):
    """Milliseconds from each RUN reply to the RUN line after it: frames have nothing else between them."""
    return [
        after[0] - before[0]
        for before, after in zip(events, events[1:])
        if before[1] == "<" and "$OK#Z#STAGE RUN" in before[2] and after[1:] == (">", "$Z#STAGE RUN")
    ]
