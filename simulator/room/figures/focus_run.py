"""The program's own share of a focus run, at the stage's real speed."""

import statistics
import time

from .figure import Figure
from .stage_set import PROGRAM, SETTLING, connect, furnished_room

EXPOSURE = 35  # ms, what a unit without settings has
FRAMES = 15 + 7  # of the coarse and the fine walk
RUNS = 5


def measure(build):
    with furnished_room(build, EXPOSURE, quick=False) as room:
        room.launch(PROGRAM)
        hand = connect(room)
        hand.open_page("TAB_STAGE")
        time.sleep(1)  # until the page is drawn
        runs = [_focus(room, hand) for _ in range(RUNS)]

    path = statistics.median(wait for run in runs for wait in _waits_of_walks(run))
    work = path - EXPOSURE - SETTLING
    yield Figure("path of a focus frame, reply to next command, median", path, "ms")
    yield Figure("  of it the exposure and the settling time", EXPOSURE + SETTLING, "ms")
    yield Figure("  of it the program's own work: timer, grab, measure", work, "ms", at_most=10)
    yield Figure("  its share", 100 * work / path, "%")
    whole = statistics.median(run[-1][0] - run[0][0] for run in runs)
    stage = statistics.median(_time_of_the_board(run) for run in runs)
    frames = FRAMES * (EXPOSURE + SETTLING)
    yield Figure(f"focus run, first line to last reply, median of {RUNS}", whole, "ms")
    yield Figure("  of it the board's: motions and replies", stage, "ms")
    yield Figure("  of it the frames': exposures and settling times", frames, "ms")
    own = whole - stage - frames
    yield Figure("  of it the program's own, per frame with all between them", own / FRAMES, "ms", at_most=10)
    yield Figure("  its share", 100 * own / whole, "%")


def _focus(room, hand):
    """Presses AF; returns the events of the board's transcript from then on."""
    before = len(room.board_log())
    hand.click("pushButton_AUTOFOCUS")
    room.wait_window("Info", 120)
    events = [_event(line) for line in room.board_log()[before:]]
    hand.acknowledge("Info", 10)
    return events


def _event(line):
    """Milliseconds, direction and text of a line of the board's transcript."""
    ms, _, direction, text = line.split(" ", 3)
    return int(ms), direction, text


def _time_of_the_board(events):
    """Milliseconds from each line to its reply, all together."""
    return sum(
        after[0] - before[0]
        for before, after in zip(events, events[1:])
        if (before[1], after[1]) == (">", "<")
    )


def _waits_of_walks(events):
    """Milliseconds from each RUN reply to the RUN line after it: frames have nothing else between them."""
    return [
        after[0] - before[0]
        for before, after in zip(events, events[1:])
        if before[1] == "<" and "$OK#Z#STAGE RUN" in before[2] and after[1:] == (">", "$Z#STAGE RUN")
    ]
