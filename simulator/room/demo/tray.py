"""The technician's hand on the tray: slides come out and in by the buttons of the Stage page."""

from .slide_types import REFERENCE

LIMIT = 20  # seconds
TRAY_OUT = 80000  # X at which the virtual unit has its tray out


def load(day, slide):
    """Brings the tray out, puts another slide of the virtual unit on it, and brings it in to X = 0."""
    eject(day)
    day.room.instrument.ask("set", key="slide", value=slide)
    insert(day)


def eject(day):
    day.hand.open_page("TAB_STAGE")
    begin = len(day.room.program.log())
    day.hand.click("pushButton_EJECT")
    day.room.wait_log("$OK#X#STAGE EJECT", LIMIT, begin)


def insert(day):
    day.hand.open_page("TAB_STAGE")
    move(day, lambda: day.hand.click("pushButton_INSERT"), 0)


def to_first_field(day):
    """From before the first field of the 2-channel slide to the field itself, and near its focus."""
    press(day, "pushButton_FIELD_NEXT", int(day.setting("Start position", "2 Channel") or 30931))
    to_height(day, "Z reference")


def to_height(day, key):
    """Z by hand to a height of the group "Calibration". Every slide of the virtual unit has its cells at the first
    field's focus."""
    z = day.setting("Calibration", key) or REFERENCE
    begin = len(day.room.program.log())
    day.hand.enter("lineEdit_ABS_Z", str(z))
    day.hand.click("pushButton_ABS_Z")
    day.room.wait_log("$OK#Z#STAGE ABS", LIMIT, begin)


def press(day, button, x):
    """Presses a button that moves the tray, and waits until it has arrived at this X."""
    move(day, lambda: day.hand.click(button), x)


def move(day, act, x):
    """Does something that moves the tray, and waits until it has arrived at this X."""
    begin = len(day.room.program.log())
    act()
    # The log writes the reply's line end as an escape.
    day.room.wait_log(f"$OK#X#STAGE ABS {x}\\r", LIMIT, begin)
