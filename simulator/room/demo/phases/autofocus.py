"""The AF button walks the stage to the focus of the field under the objective."""

import re

from .live_view import VIEW

TITLE = "Autofocus"
LIMIT = 180  # seconds
FINE_STEP = 115  # motor steps


def run(day):
    focus(day, "focus found")
    _, deviation = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("texture of the live view", deviation, 10, 100, "grey values")
    day.screenshot("in-focus")


def focus(day, row):
    """Presses the AF button, waits for the end and compares the result with the truth in a row of this name."""
    day.hand.open_page("TAB_STAGE")
    day.hand.click("pushButton_AUTOFOCUS")
    day.room.wait_window("Info", LIMIT)
    day.screenshot("autofocus")
    day.hand.acknowledge("Info", 10)

    state = day.room.instrument.ask("state")
    true = day.room.instrument.ask("bestFocus", x=state["x"])["bf"]
    results = re.findall(r"\[2\] m_AutofocusingRef:\D*\d+ +(\d+)", day.room.program.log())
    found = int(results[-1]) if results else None
    day.table.near(row, true, found, FINE_STEP, "steps")
    if found is not None:
        day.table.near("stage left below it", found - FINE_STEP, state["z"], 0, "steps")
