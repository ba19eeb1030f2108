"""A slide lies under the objective, and its picture lives in the window."""

TITLE = "Live picture"
VIEW = "BASLER_VIDEO_WIDGET"
LIMIT = 10  # seconds


def run(day):
    # The first field of the first channel comes under the objective; the focus is still to be found.
    instrument = day.room.instrument
    before = day.hand.picture_of(VIEW).greys()
    instrument.ask("set", key="slide", value="2ch")
    instrument.ask("set", key="x", value=day.truth["derived"]["focusA1"]["x"])

    # Sensor noise makes every frame another one. The second change comes from a frame of the new field.
    for _ in range(2):
        day.room.wait_for("the next frame", lambda: day.hand.picture_of(VIEW).greys() != before, LIMIT)
        before = day.hand.picture_of(VIEW).greys()
    day.screenshot("live-view")
    mean, _ = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("brightness of the live view", mean, 120, 220, "grey values")
