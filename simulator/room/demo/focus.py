"""A focus search by the AF button, held against the truth."""

import re

LIMIT = 180  # seconds
FINE_STEP = 115  # motor steps


def focus(day, row, picture):
    """Presses the AF button, waits for the end and compares the result with the truth in a row of this name.

    `picture` names the screenshot of the end, with its box.
    """
    day.hand.open_page("TAB_STAGE")
    begin = len(day.room.program.log())
    day.hand.click("pushButton_AUTOFOCUS")
    day.room.wait_window("Info", LIMIT)
    day.screenshot(picture)
    day.hand.acknowledge("Info", 10)

    state = day.room.instrument.ask("state")
    true = day.room.instrument.ask("bestFocus", x=state["x"])["bf"]
    results = re.findall(r"\[2\] m_AutofocusingRef:\D*\d+ +(\d+)", day.room.program.log()[begin:])
    found = int(results[-1]) if results else None
    day.table.near(row, true, found, FINE_STEP, "steps")
    if found is not None:
        day.table.near(f"{row}: stage a fine step below it", found - FINE_STEP, state["z"], 0, "steps")
