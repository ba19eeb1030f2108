"""The target slide: two of its marks, clicked at by hand, give the magnification and the volume factors."""

from qr9room.single import single

from .. import tray
from ..focus import focus

TITLE = "Magnification"
VIEW = "CAPTURE_IMAGE_WIDGET"
LIVE_VIEW = "BASLER_VIDEO_WIDGET"
LIMIT = 10  # seconds
FRAME = (1280, 960)  # pixels
PITCH_MM = 0.00375  # of a camera pixel
DEPTH_MM = 0.1  # of the counting chamber
GRIP = 20  # pixels that a dragging hand keeps from the edge of the view
BESIDE = {"POINT_1": (5, -4), "POINT_2": (-6, 3)}  # pixels from a mark to the hand's click
CROSS = (255, 0, 0)  # colour
# Slides, by their keys in the settings file, and the fields counted for one sample.
SLIDES = {"1 Channel": 47, "2 Channel": 12, "3 Channel": 12, "8 Channel": 5, "Prisma": 5, "Prisma Max": 10}


def run(day):
    tray.load(day, "target")
    focus(day, "focus on the target slide", "target-in-focus")
    day.hand.open_page("TAB_QC1")
    _capture(day)
    view = None
    for point, mark in zip(BESIDE, _marks_one_millimetre_apart(day), strict=True):
        view = _set_point(day, point, mark, view)
        day.screenshot(point.lower().replace("_", "-"))
    day.hand.click("pushButton_MEASURE")
    day.room.wait_log("m_measure_info.volume_factor:", LIMIT)
    day.hand.click("pushButton_MEASURE_WRITE")
    day.room.wait_for("the last factor in the file", lambda: day.setting("Volume factor", "Prisma Max"), LIMIT)
    day.screenshot("measured")
    _add_rows(day)

    # For what follows a field of cells lies under the objective.
    day.hand.click("pushButton_QC_LIVE")
    tray.load(day, "2ch")
    tray.to_first_field(day)


def _capture(day):
    """Takes the still picture. It is seen to be there where it reaches beyond the live one."""
    still, live = day.hand.form.place(VIEW), day.hand.form.place(LIVE_VIEW)
    below = (live.x, live.y + live.height, live.width // 2, still.height - live.height)

    def strip():
        return day.room.screen.picture().part(*below).greys()

    before = strip()
    day.hand.click("pushButton_QC_CAPTURE")
    day.room.wait_for("the still picture", lambda: strip() != before, LIMIT)


def _marks_one_millimetre_apart(day):
    """Where the middles of two such marks are in the picture, in pixels."""
    marks = day.room.instrument.ask("inPicture")["targetMarks"]
    places = {(mark["row"], mark["column"]): (round(mark["x"]), round(mark["y"])) for mark in marks}
    return next((place, places[row, column + 2]) for (row, column), place in places.items()
                if (row, column + 2) in places)


def _set_point(day, point, mark, view):
    """Brings a mark into the middle as far as it goes, and has the point found near it.

    `view` is the pixel in the upper left corner of the view, None before the first point; returns the new one.
    """
    if view is None:
        view = (0, 0)
    else:
        day.hand.click("checkBox_TARGETING_MODE")  # the hand pans only outside of this mode
    place = day.hand.form.place(VIEW)
    size = (place.width, place.height)
    wanted = tuple(min(max(at - part // 2, 0), whole - part) for at, part, whole in zip(mark, size, FRAME))
    while view != wanted:
        view = _drag(day, place, view, wanted)
    day.hand.click("checkBox_TARGETING_MODE")
    on_screen = place.x + mark[0] - view[0], place.y + mark[1] - view[1]
    aside = BESIDE[point]
    day.room.screen.click(on_screen[0] + aside[0], on_screen[1] + aside[1])
    day.hand.click(f"radioButton_{point}")
    day.hand.click("pushButton_SET_POINT")
    day.room.wait_for(f"a cross at {point}", lambda: _has_cross(day, *on_screen), LIMIT)
    return view


def _drag(day, place, view, wanted):
    """Pans the view towards the wanted pixel by one movement of the hand; returns the view after it."""
    reach = (place.width - 2 * GRIP, place.height - 2 * GRIP)
    way = [min(max(new - old, -most), most) for old, new, most in zip(view, wanted, reach)]
    # The picture follows the hand: to see what is further right, the hand moves to the left.
    begin = [low + GRIP + max(step, 0) for low, step in zip((place.x, place.y), way)]
    day.room.screen.press(*begin)
    day.room.screen.move(*(at - step for at, step in zip(begin, way)))
    day.room.screen.release()
    return tuple(old + step for old, step in zip(view, way))


def _has_cross(day, x, y):
    """Whether a cross stands within 3 pixels of this place of the screen."""
    picture = day.room.screen.picture()
    return any(picture.pixel(x + dx, y + dy) == CROSS for dx in range(-3, 4) for dy in range(-3, 4))


def _add_rows(day):
    stored = {key: day.setting("TAVO-QR9", key) for key in ("Magnification", "Volume factor", "Volume offset")}
    true = day.truth["magnification"]
    volume = FRAME[0] * FRAME[1] * (PITCH_MM / true) ** 2 * DEPTH_MM
    # A hundredth of the magnification on either side, and what that makes in the volume.
    day.table.near("magnification", true, float(stored["Magnification"]), 0.01 + 1e-9, "", digits=2)
    found = float(stored["Volume factor"])
    day.table.near("volume factor", volume, found, volume * 2 * 0.0101 / true, "mm3", digits=5)
    day.table.same("volume offset", "1.10", stored["Volume offset"])
    for key, fields in SLIDES.items():
        day.table.same(f"factor {key}", _slide_factor(found, fields), day.setting("Volume factor", key))
    values = [*stored.values(), *(day.setting("Volume factor", key) for key in SLIDES)]
    day.table.same("values of the measurement stored", 9, sum(value is not None for value in values))


def _slide_factor(volume, fields):
    """Samples per millilitre, as the text that the file should hold; each operation in single precision."""
    counted = single(float(f"{single(single(volume) * fields):.5f}"))
    return f"{single(1000 / counted):.5f}"
