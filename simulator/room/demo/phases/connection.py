"""The program comes up, finds the board on the second port, homes it and starts the camera, all by itself."""

import re

from .live_view import next_frame

TITLE = "Connection"
LIMIT = 120  # seconds


def run(day):
    wait_connected(day)
    next_frame(day)
    day.screenshot("connected")
    port = re.search(r'^"?\[Controller\] : "? *"?(\w+)', day.room.program.log(), re.MULTILINE)
    day.table.same("port found", "ttyUSB1", port and port.group(1))
    day.table.same("firmware stored", day.truth["firmware"], day.setting("Software", "Version FW"))


def wait_connected(day, begin=0):
    """Waits for the window and for the end of the connection in the log from position `begin` on."""
    day.hand.wait_window()
    day.room.wait_for("the connection to begin", lambda: _is_busy(day), LIMIT)
    day.screenshot("connecting")
    day.room.wait_log("CAMERA connected...", LIMIT, begin)


def _is_busy(day):
    """The button is orange while it connects."""
    button = day.hand.form.place("pushButton_CONNECT")
    red, _, blue = day.room.screen.picture().pixel(button.x + 10, button.y + 10)
    return red - blue > 60
