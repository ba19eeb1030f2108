"""A slide comes in, and its picture lives in the window; the focus is still to be found."""

from .. import tray

TITLE = "Live picture"
VIEW = "BASLER_VIDEO_WIDGET"
LIMIT = 10  # seconds


def run(day):
    tray.load(day, "2ch")
    tray.to_first_field(day)
    next_frame(day)
    day.screenshot("live-view")
    mean, _ = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("brightness of the live view", mean, 120, 220, "grey values")


def next_frame(day):
    """Waits for a frame that was begun after the call, and returns its grey values."""
    # Sensor noise makes every frame another one. The one that comes first had been begun before, and one that is
    # caught while it is painted counts twice.
    for _ in range(3):
        # A tinted picture may have nothing but black in one of its colours.
        before = day.hand.picture_of(VIEW).colours()
        day.room.wait_for("the next frame", lambda before=before: day.hand.picture_of(VIEW).colours() != before, LIMIT)
    return day.hand.picture_of(VIEW).greys()
