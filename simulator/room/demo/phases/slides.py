"""Each slide type is chosen and brought in, and walked field by field along its channels."""

from qr9room.inifile import read_ini

from .. import tray
from ..slide_types import NEXT, SLIDE_TYPES
from .live_view import next_frame

TITLE = "Slide types"
LIMIT = 10  # seconds


def run(day):
    day.hand.open_page("TAB_STAGE")
    for kind in SLIDE_TYPES:
        _bring_in(day, kind)
        _walk(day, kind)
    _walk_back(day, SLIDE_TYPES[-1])

    tray.eject(day)
    state = day.room.instrument.ask("state")
    day.table.same("X with the tray out", tray.TRAY_OUT, state["x"])
    day.table.same("light with the tray out", 0, sum(state["leds"].values()))
    day.screenshot("slide-ejected")


def _bring_in(day, kind):
    """The box moves the stage at once, with the slide of before; then that one is changed for the right one."""
    tray.move(day, lambda: _choose(day, kind), 0)
    tray.load(day, kind.slide)
    state = day.room.instrument.ask("state")
    day.table.same(f"{kind.name} slide: height when it is in", kind.z(_calibration(day), 0), state["z"])


def _choose(day, kind):
    """By the list that opens under the hand; its first entry is the first slide type."""
    before = _beside_box(day)
    day.hand.click("comboBox_SLIDE")
    day.room.wait_for("the list of slide types", lambda: _beside_box(day) != before, LIMIT)
    if kind is SLIDE_TYPES[0]:
        day.screenshot("slide-types")
    day.room.screen.key("Home", *["Down"] * kind.index, "Return")


def _beside_box(day):
    """What is seen above and below the slide type box; its list opens over the one or the other."""
    place = day.hand.form.place("comboBox_SLIDE")
    picture = day.room.screen.picture()
    return [picture.part(place.x, y, place.width, place.height).colours()
            for y in (place.y - place.height, place.y + place.height)]


def _walk(day, kind):
    """Out along every channel, to the last field of each. The picture is taken at the first field."""
    start = _start(day, kind)
    lines = len(day.room.board_lines())
    expected = []
    heights = []
    for channel in range(kind.channels):
        fields = range(kind.fields)
        if channel:
            # A channel that is chosen on the map begins at its first field.
            tray.move(day, lambda channel=channel: day.hand.double_click_cell(
                "tableWidget_SLIDE", channel, kind.channels), kind.x(start, channel, 0))
            heights.append(day.room.instrument.ask("state")["z"])
            expected.append(kind.x(start, channel, 0))
            fields = fields[1:]
        for field in fields:
            tray.press(day, kind.button(channel), kind.x(start, channel, field))
            expected.append(kind.x(start, channel, field))
            if field == channel == 0:
                tray.to_height(day, "Z reference")
                next_frame(day)
                day.screenshot(f"slide-{kind.slide}")
    sent = [line for line in day.room.board_lines()[lines:] if line.startswith("$X#STAGE ABS")]
    right = sum(line == f"$X#STAGE ABS {x}" for line, x in zip(sent, expected))
    day.table.same(f"{kind.name} slide: fields at their places", kind.channels * kind.fields, right)
    if heights:
        true = [kind.z(_calibration(day), channel) for channel in range(1, kind.channels)]
        day.table.same(f"{kind.name} slide: heights of the further channels", _words(true), _words(heights))


def _walk_back(day, kind):
    """From the last field of the 2-channel slide to the first of the first channel."""
    start = _start(day, kind)
    for field in reversed(range(kind.fields - 1)):
        tray.press(day, NEXT, kind.x(start, 1, field))
    tray.to_height(day, "Z ref B1")
    next_frame(day)
    day.screenshot("channel-2")
    tray.move(day, lambda: day.hand.double_click_cell("tableWidget_SLIDE", 0, kind.channels), 0)
    tray.press(day, NEXT, kind.x(start, 0, 0))
    day.table.same("X of the first field again", start, day.room.instrument.ask("state")["x"])


def _start(day, kind):
    return int(day.setting("Start position", kind.start) or kind.default)


def _calibration(day):
    return read_ini(day.room.home / "TAVO_QR9.ini").get("Calibration", {})


def _words(numbers):
    return " ".join(map(str, numbers))
