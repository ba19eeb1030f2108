"""A slide lies under the objective, and its picture lives in the window."""

TITLE = "Live picture"
VIEW = "BASLER_VIDEO_WIDGET"
LIMIT = 10  # seconds


def run(day):
    # The first field of the first channel comes under the objective; the focus is still to be found.
    instrument = day.room.instrument
    instrument.ask("set", key="slide", value="2ch")
    instrument.ask("set", key="x", value=day.truth["derived"]["focusA1"]["x"])
    next_frame(day)
    day.screenshot("live-view")
    mean, _ = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("brightness of the live view", mean, 120, 220, "grey values")


def next_frame(day):
    """Waits for a frame that was begun after the call, and returns its grey values."""
    # Sensor noise makes every frame another one. The one that comes first had been begun before, and one that is
    # caught while it is painted counts twice.
    for _ in range(3):
        before = day.hand.picture_of(VIEW).greys()
        day.room.wait_for("the next frame", lambda: day.hand.picture_of(VIEW).greys() != before, LIMIT)
    return day.hand.picture_of(VIEW).greys()
