"""A 2-channel slide: brought in, walked field by field along both channels, ejected and brought in again."""

TITLE = "Slide"
LIMIT = 20  # seconds
LAST_FIELD = 11  # index
FIELD_PITCH = 480  # motor steps
CHANNEL_PITCH = 20799
START = 30931  # X of the first field before any calibration
TRAY_OUT = 80000  # X at which the virtual unit has its tray out


def run(day):
    day.hand.open_page("TAB_STAGE")
    _insert(day)
    day.screenshot("slide-inserted")

    # Out with rising fields and back again; the way along channel 2 runs the other way round.
    channel_1 = [START - FIELD_PITCH * field for field in _out_and_back(from_home=True)]
    _walk(day, "along channel 1", channel_1, out="pushButton_FIELD_NEXT", back="pushButton_FIELD_PREV")
    first = START - CHANNEL_PITCH
    _choose_channel(day, 2, first)
    day.screenshot("channel-2")
    channel_2 = [first + FIELD_PITCH * field for field in _out_and_back(from_home=False)]
    _walk(day, "along channel 2", channel_2, out="pushButton_FIELD_PREV", back="pushButton_FIELD_NEXT")
    _choose_channel(day, 1, 0)

    begin = len(day.room.program.log())
    day.hand.click("pushButton_EJECT")
    day.room.wait_log("$OK#X#STAGE EJECT", LIMIT, begin)
    day.table.same("X with the tray out", TRAY_OUT, day.room.instrument.ask("state")["x"])
    day.screenshot("slide-ejected")

    # For what follows a field of cells lies under the objective.
    _insert(day)
    _press(day, "pushButton_FIELD_NEXT", START)


def _out_and_back(from_home):
    """Field indices in the order of a walk to the last field and back to the first."""
    return [*range(0 if from_home else 1, LAST_FIELD + 1), *range(LAST_FIELD - 1, -1, -1)]


def _insert(day):
    begin = len(day.room.program.log())
    day.hand.click("pushButton_INSERT")
    _wait_reply(day, 0, begin)


def _choose_channel(day, number, x):
    """Double click on a cell of the map."""
    begin = len(day.room.program.log())
    day.hand.double_click_cell("tableWidget_SLIDE", number - 1, 2)
    _wait_reply(day, x, begin)


def _walk(day, where, positions, out, back):
    lines = len(day.room.board_lines())
    for number, x in enumerate(positions):
        _press(day, out if number < len(positions) - LAST_FIELD else back, x)
    expected = [f"$X#STAGE ABS {x}" for x in positions]
    right = sum(sent == line for sent, line in zip(day.room.board_lines()[lines:], expected))
    day.table.same(f"moves {where} to the right field", len(positions), right)
    day.table.same(f"X after the walk {where}", positions[-1], day.room.instrument.ask("state")["x"])


def _press(day, button, x):
    begin = len(day.room.program.log())
    day.hand.click(button)
    _wait_reply(day, x, begin)


def _wait_reply(day, x, begin):
    # The log writes the reply's line end as an escape.
    day.room.wait_log(f"$OK#X#STAGE ABS {x}\\r", LIMIT, begin)
