"""The boxes of the AR0134 turn its picture over, at once, and stand in the settings file."""

from .live_view import VIEW, next_frame

TITLE = "Mirrors"
CAMERA = "arducam"
LIMIT = 5  # seconds
LIKE = 0.8  # correlation of two frames that show the same
FRAME = (540, 405)  # the live view
BOXES = {"Hor.": "checkBox_HOR_MIRROR", "Ver.": "checkBox_VER_MIRROR"}
# The indicator of a check box stands at its left, in its middle.
INDICATOR = 10


def run(day):
    for name, box in BOXES.items():
        shown = day.hand.picture_of(box).mean_and_deviation()[1] > 0
        day.table.same(f"box of the {name} mirror", "shown", "shown" if shown else "hidden")
    upright = day.hand.picture_of(VIEW).greys()

    # Without a word in the file the form ticks the vertical box, while the camera starts upright: the first
    # click on it takes the tick away and changes nothing.
    _click(day, "Ver.", "No", upright, "as it was")
    _click(day, "Hor.", "Yes", _columns_turned(upright), "left and right turned")
    day.screenshot("mirrored")
    _click(day, "Ver.", "Yes", _rows_turned(_columns_turned(upright)), "both turned")
    _click(day, "Hor.", "No", _rows_turned(upright), "top and bottom turned")
    _click(day, "Ver.", "No", upright, "as it was at first")


def _click(day, name, word, expected, what):
    """One click on a box, and two rows: what is then in the file, and what the next frame looks like."""
    place = day.hand.form.place(BOXES[name])
    day.room.screen.click(place.x + INDICATOR, place.centre[1])
    try:
        day.room.wait_for(
            f"{name} mirror to be stored", lambda: day.setting("ArduCAM", f"{name} Mirror") == word, LIMIT)
    finally:
        day.table.same(f"{name} mirror stored", word, day.setting("ArduCAM", f"{name} Mirror"))
    likeness = _likeness(expected, next_frame(day))
    day.table.within(f"likeness of the picture, {what}", likeness, LIKE, 1.0, "", digits=2)


def _columns_turned(greys):
    width, height = FRAME
    return b"".join(greys[row * width : (row + 1) * width][::-1] for row in range(height))


def _rows_turned(greys):
    width, height = FRAME
    return b"".join(greys[row * width : (row + 1) * width] for row in reversed(range(height)))


def _likeness(one, other):
    """The correlation of two frames: 1 for the same, 0 for frames that have nothing in common."""
    count = len(one)
    mean_one, mean_other = sum(one) / count, sum(other) / count
    both = sum(a * b for a, b in zip(one, other)) / count - mean_one * mean_other
    spread_one = sum(a * a for a in one) / count - mean_one**2
    spread_other = sum(b * b for b in other) / count - mean_other**2
    return both / (spread_one * spread_other) ** 0.5 if spread_one > 0 and spread_other > 0 else 0.0
