"""The stage is driven to the tray's reference mark, as the picture tells, and the place is stored."""

from qr9room.errors import RoomError

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
    instrument.ask("set", key="slide", value="empty")  # nothing but the tray with its mark
    day.hand.open_page("TAB_QC1")
    day.hand.click("pushButton_QC_LIVE")  # in case a still picture is on view
    day.hand.open_page("TAB_LIGHT")
    _press(day, "pushButton_ILLUMINATION_BF", "$OK#A#FILTER GO 1")
    day.hand.open_page("TAB_QC2")
    _press(day, "pushButton_START_X_REF", f"$OK#X#STAGE ABS {NOMINAL}\\r")
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
    day.screenshot("x-reference")

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

    _press(day, "pushButton_START_X_REF", f"$OK#X#STAGE ABS {mark}\\r")
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
    _press(day, "pushButton_MVP_X" if steps > 0 else "pushButton_MVN_X", "$OK#X#STAGE RUN#")
    return steps


def _press(day, button, reply):
    begin = len(day.room.program.log())
    day.hand.click(button)
    day.room.wait_log(reply, LIMIT, begin)
