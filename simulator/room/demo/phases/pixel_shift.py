"""The twelve-field run measures the shifts of the fluorescence channels; they are stored, zeroed and stored again."""

import re

from .. import tray

TITLE = "Pixel shift"
RUN_LIMIT = 240  # seconds, for twelve fields
MOVE_LIMIT = 60
FIELDS = 12
ALLOWED = 0.25  # pixels
OVERLAY = "CAPTURE_IMAGE_WIDGET"
CHANNELS = ("GFP X", "GFP Y", "RFP X", "RFP Y")


def run(day):
    # The focus of each field is searched around the autofocus reference, which was found on the first one.
    tray.load(day, "2ch")
    tray.to_first_field(day)

    day.hand.open_page("TAB_QC2")
    begin = len(day.room.program.log())
    first_line = len(day.room.board_lines())
    day.hand.click("pushButton_PIXEL_SHIFT")
    for field in range(1, FIELDS + 1):
        day.room.wait_for(
            f"field {field} of {FIELDS}", lambda: _log(day, begin).count("time.elapsed():") >= field, RUN_LIMIT)
        print(f"{field}/{FIELDS}", end=" ", flush=True)
        if field == FIELDS // 2:
            day.screenshot("pixel-shift-under-way")
    day.room.wait_window("Info", MOVE_LIMIT)
    lines = day.room.board_lines()[first_line:]
    day.hand.acknowledge("Info", 10)
    day.screenshot("overlay-corrected")

    found = _averages(day, begin)
    for channel, true, value in zip(CHANNELS, _true_corrections(day), found):
        day.table.near(f"pixel shift {channel}", true, value, ALLOWED, "px", digits=2)
    day.table.same("fields that end at their focus height", FIELDS, _fields_back_in_focus(lines))

    day.hand.click("pushButton_PIXEL_SHIFT_SET")
    _expect_stored(day, "stored by Set", found)
    overlay = day.hand.picture_of(OVERLAY).greys()
    day.hand.click("pushButton_PIXEL_SHIFT_RESET")
    _expect_stored(day, "stored by Reset", [0.0] * len(CHANNELS))
    # The values are stored before the overlay is drawn anew.
    day.room.wait_for("the overlay without corrections", lambda: day.hand.picture_of(OVERLAY).greys() != overlay, 10)
    day.screenshot("overlay-uncorrected")

    # The unit keeps what was measured.
    for channel, value in zip(CHANNELS, found):
        day.hand.enter(f"lineEdit_SHIFT_{channel.replace(' ', '_')}", f"{value:.2f}")
    day.hand.click("pushButton_PIXEL_SHIFT_SET")
    _expect_stored(day, "stored again", found)
    day.hand.click("pushButton_PIXEL_SHIFT")
    day.hand.wait_shown("BASLER_VIDEO_WIDGET", 10)


def _log(day, begin):
    return day.room.program.log()[begin:]


def _averages(day, begin):
    """The four values that the run shows."""
    found = re.findall(r"avg\. pixel shift: (\S+) (\S+) (\S+) (\S+)", _log(day, begin))
    return [float(value) for value in found[-1]]


def _true_corrections(day):
    """What must be measured: against the shift of the picture as the camera delivers it."""
    truth = day.room.instrument.ask("inPicture")
    return [-value for value in (*truth["gfpShift"], *truth["rfpShift"])]


def _fields_back_in_focus(lines):
    """How many of the fields go up for the fluorescence and back down by as much."""
    heights = [int(re.search(r"\d+$", line).group()) for before, line in zip(lines, lines[1:])
               if before == "$Z#STAGE POS" and line.startswith("$Z#STAGE ABS")]
    focus = _heights_of_focus(lines)
    pairs = zip(heights[0::2], heights[1::2], focus)
    return sum(1 for up, down, best in pairs if up - down == 3 * 115 and down == best)


def _heights_of_focus(lines):
    """Where each search left the stage: one fine step below the target of its final approach."""
    found = []
    for line, then, step_line, direction in zip(lines, lines[1:], lines[2:], lines[3:]):
        if line.startswith("$Z#STAGE ABS") and then == "$Z#STAGE POS" \
                and step_line.startswith("$Z#STAGE STEP"):
            start = int(line.rsplit(" ", 1)[1])
            step = int(step_line.rsplit(" ", 1)[1])
            up = direction.endswith("PLUS")
            found.append(start + (step if up else -step) - 115)
    return found


def _expect_stored(day, what, values):
    """A row on the four keys of the settings file, once they are there."""
    expected = [f"{value:.2f}" for value in values]

    def stored():
        return [day.setting("Miscellaneous", f"Pixel shift {channel}") for channel in CHANNELS]
    try:
        day.room.wait_for(what, lambda: stored() == expected, 10)
    finally:
        day.table.same(what, " ".join(expected), " ".join(str(value) for value in stored()))
