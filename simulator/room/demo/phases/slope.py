"""The 2-channel slide comes in, and the program finds out how far its carrier is tilted along X."""

from .. import tray

TITLE = "Z slope calibration"
LIMIT = 400  # seconds: two coarse and fine runs
FINE_STEP = 115  # motor steps
DISTANCE_MM = 39.0  # of the two fields along X
# Heights of the slides above the first field of the 2-channel slide, motor steps.
HEIGHTS = {"Z reference": 0, "Z ref 1ch": -640, "Z ref 2ch": 1920, "Z ref 3ch": -640, "Z ref 8ch": -640,
           "Z ref Validation": 0}


def run(day):
    tray.load(day, "2ch")
    before = len(day.room.board_lines())
    day.hand.click("pushButton_REFERENCE_Z_SLOPE")
    day.room.wait_window("Info", LIMIT)
    day.screenshot("slope-finished")
    day.hand.acknowledge("Info", 10)

    fields = [int(line.split()[-1]) for line in day.room.board_lines()[before:] if line.startswith("$X#STAGE ABS")]
    true = [day.room.instrument.ask("bestFocus", x=x)["bf"] for x in fields]
    names = [f"Z ref {name}" for name in ("A1", "B1")]
    found = [int(day.setting("Calibration", name) or 0) for name in names]
    for name, *values in zip(names, true, found, strict=True):
        day.table.near(name, *values, FINE_STEP, "steps")
    slope = float(day.setting("Calibration", "Z ref slope") or "nan")
    # Each of the two may be off by a fine step.
    allowed = 2 * FINE_STEP / DISTANCE_MM
    day.table.near("Z ref slope", (true[1] - true[0]) / DISTANCE_MM, slope, allowed, "steps/mm", digits=3)
    for key, height in HEIGHTS.items():
        day.table.same(key, str(found[0] + height), day.setting("Calibration", key))
