"""The program comes up, finds the board on the second port, homes it and starts the camera, all by itself."""

import re

TITLE = "Connection"
LIMIT = 120  # seconds: homing at the true speed of the stage is long


def run(day):
    day.hand.wait_window()
    day.screenshot("window")
    day.room.wait_log("CAMERA connected...", LIMIT)
    port = re.search(r'^"?\[Controller\] : "? *"?(\w+)', day.room.program.log(), re.MULTILINE)
    day.table.same("port found", "ttyUSB1", port and port.group(1))
    day.table.same("firmware stored", day.truth["firmware"], day.setting("Software", "Version FW"))
