"""The AF button finds the focus of the first field, and the height becomes the reference of all later searches."""

from .. import tray
from ..focus import focus
from .live_view import VIEW

TITLE = "Autofocus reference"
LIMIT = 10  # seconds


def run(day):
    tray.load(day, "2ch")
    tray.to_first_field(day)
    focus(day, "focus at the first field", "autofocus")
    _, deviation = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("texture of the live view", deviation, 10, 100, "grey values")

    z = str(day.room.instrument.ask("state")["z"])
    day.hand.click("pushButton_REFERENCE_AUTOFOCUS_SET")
    day.room.wait_for("the reference to be stored", lambda: day.setting("Calibration", "Z reference") == z, LIMIT)
    day.screenshot("autofocus-reference")
    day.table.same("autofocus reference stored", z, day.setting("Calibration", "Z reference"))
