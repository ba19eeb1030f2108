"""The cells of the slide are seen in the window, and the picture lives."""

from qr9room.errors import TooLate

TITLE = "Live picture"
VIEW = "BASLER_VIDEO_WIDGET"
LIMIT = 10  # seconds


def run(day):
    # The slide lies in the tray; the first field of its first channel comes under the objective, about in
    # focus.
    field = day.truth["derived"]["focusA1"]
    day.room.instrument.ask("set", key="slide", value="2ch")
    day.room.instrument.ask("set", key="x", value=field["x"])
    day.room.instrument.ask("set", key="z", value=round(field["bf"]))

    def textured():
        return day.hand.picture_of(VIEW).mean_and_deviation()[1] > 10

    try:
        day.room.wait_for("cells in the live view", textured, LIMIT)
    except TooLate:
        pass  # the row below tells
    day.screenshot("live-view")
    first = day.hand.picture_of(VIEW)
    mean, deviation = first.mean_and_deviation()
    day.table.within("brightness of the live view", mean, 60, 240, "grey values")
    day.table.within("texture of the live view", deviation, 10, 100, "grey values")

    def changed():
        return day.hand.picture_of(VIEW).greys() != first.greys()

    day.room.wait_for("the next frame in the live view", changed, LIMIT)
