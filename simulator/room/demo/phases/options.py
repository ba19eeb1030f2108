"""The Option page, as far as the form leaves it to the technician."""

TITLE = "Options"
LIMIT = 10  # seconds
OFFSETS = {"REUSABLE": ("Reusable offset", 5700), "VALIDATION": ("Validation offset", 1300),
           "PRISMA": ("Prisma offset", 40)}
FLAGS = {"VATLINE": "Vatline", "TALLYLINK": "TallyLink", "QLPK": "QLPK"}
MIRRORS = ("checkBox_HOR_MIRROR", "checkBox_VER_MIRROR")
INDICATOR = 8  # pixels from the left edge of a box to the middle of its indicator


def run(day):
    day.hand.open_page("TAB_OPTION")
    # The form keeps the three flags closed: a press on them must not reach the file.
    for flag in FLAGS:
        _tick(day, f"radioButton_{flag}_YES")
    for box, (key, value) in OFFSETS.items():
        day.hand.enter(f"spinBox_{box}_OFFSET", str(value))
        day.room.wait_for(
            f'"{key}" to be stored',
            lambda key=key, value=value: day.setting("Calibration", key) == str(value), LIMIT,
        )
        day.table.same(f"{key} stored", str(value), day.setting("Calibration", key))
    stored = [key for key in FLAGS.values() if day.setting("TAVO-QR9", key) is not None]
    day.table.same("closed option flags that a press stored", "none", ", ".join(stored) or "none")
    day.screenshot("options")

    if day.truth["camera"] == "basler":
        # A unit with this camera has no mirrors.
        deviations = [day.hand.picture_of(box).mean_and_deviation()[1] for box in MIRRORS]
        day.table.same("mirror boxes that are seen", 0, sum(deviation > 0 for deviation in deviations))


def _tick(day, widget):
    place = day.hand.form.place(widget)
    day.room.screen.click(place.x + INDICATOR, place.centre[1])
