"""The stage is driven to the tray's reference mark, as the picture tells, and the place is stored."""

from qr9room.errors import RoomError

from .. import tray
from ..focus import focus
from .live_view import VIEW, next_frame

TITLE = "X reference mark"
LIMIT = 20  # seconds
NOMINAL = 12000  # X at which the mark is looked for first
STEPS_PER_PIXEL = 1.19  # of the fitted picture, at a magnification of 4.00
DARK = 0.8  # of the picture's mean grey value
# Distances of the first fields from the mark, motor steps.
STARTS = {"1 Channel": -2107, "2 Channel": 18931, "3 Channel": 18505, "8 Channel": 26291, "Prisma": 16580}


def run(day):
    instrument = day.room.instrument
    tray.load(day, "empty")  # nothing but the tray with its mark
    day.hand.open_page("TAB_QC2")
    tray.press(day, "pushButton_START_X_REF", NOMINAL)
    focus(day, "focus on the reference mark", "mark-in-focus")
    day.hand.open_page("TAB_QC2")
    driven = NOMINAL
    offset = _offset(day)
    sense = 1  # a picture that is turned over moves the other way
    for _ in range(8):
        steps = round(sense * offset * STEPS_PER_PIXEL)
        if steps == 0:
            break
        before = offset
        driven += _step(day, steps)
        offset = _offset(day)
        if abs(offset) > abs(before):
            sense = -sense
    day.hand.click("checkBox_CROSS_LINE")
    next_frame(day)
    day.screenshot("x-reference")
    day.hand.click("checkBox_CROSS_LINE")

    day.hand.click("pushButton_START_X_CALIBRATION")
    day.room.wait_for(
        "the last start position to be stored", lambda: day.setting("Start position", "Prisma"), LIMIT
    )
    mark = int(day.setting("Start position", "Calibration")) + NOMINAL
    day.table.near("X stored for the mark", driven, mark, 0, "steps")
    day.table.near("X of the reference mark", day.truth["markX"], mark, 1, "step")
    stored = {key: int(day.setting("Start position", key)) for key in STARTS}
    expected = {key: mark + distance for key, distance in STARTS.items()}
    day.table.same("start positions stored", len(STARTS), sum(stored[key] == expected[key] for key in STARTS))

    tray.press(day, "pushButton_START_X_REF", mark)
    day.table.same("X after Reference", mark, instrument.ask("state")["x"])


def _offset(day):
    """How far right of the middle of the live picture the mark stands, in pixels of the screen."""
    next_frame(day)
    picture = day.hand.picture_of(VIEW)
    greys = picture.greys()
    limit = DARK * sum(greys) / len(greys)
    columns = [at % picture.width for at, grey in enumerate(greys) if grey < limit]
    if not columns:
        raise RoomError("no mark is seen in the live picture")
    return sum(columns) / len(columns) - (picture.width - 1) / 2


def _step(day, steps):
    """Drives by so many steps, signed, and returns them."""
    begin = len(day.room.program.log())
    day.hand.enter("lineEdit_STEP_X", str(abs(steps)))
    day.hand.click("pushButton_STEP_X")
    day.room.wait_log("$OK#X#STAGE STEP", LIMIT, begin)
    begin = len(day.room.program.log())
    day.hand.click("pushButton_MVP_X" if steps > 0 else "pushButton_MVN_X")
    day.room.wait_log("$OK#X#STAGE RUN#", LIMIT, begin)
    return steps
