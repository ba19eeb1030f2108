"""Each light channel gets values of its own, which are stored and come back when the channel is chosen again."""

from .. import tray
from .live_view import VIEW, next_frame

TITLE = "Light"
LIMIT = 20  # seconds
FILTERS = {"GFP": 2, "RFP": 3, "BF": 1}
# Gain in dB, exposure in ms, LED level: as bright as the values that a unit comes with, and all of them others.
# Whole gains: the file keeps no tenths. What the program calls one dB is twice as much with the AR0134.
CHANNELS = {
    "basler": {"GFP": (6, 70, 310), "RFP": (4, 90, 340), "BF": (1, 33, 6)},
    "arducam": {"GFP": (3, 65, 295), "RFP": (1, 100, 345), "BF": (1, 30, 6)},
}


def run(day):
    tray.load(day, "2ch")
    tray.to_first_field(day)
    day.hand.open_page("TAB_LIGHT")
    for name, values in CHANNELS[day.truth["camera"]].items():
        gain, exposure, level = values
        _choose(day, name)
        day.hand.enter("doubleSpinBox_GAIN", str(gain))
        day.hand.enter("spinBox_EXPOSURE", str(exposure))
        day.hand.enter("spinBox_LED1", str(level))
        key = "LED1" if name == "BF" else "LED"
        day.hand.click("pushButton_ILLUMINATION_SET")
        stored = day.room.wait_for(
            f"the light of {name} to be stored",
            lambda group=f"Ch. {name}", key=key: day.setting(group, key), LIMIT,
        )
        # The fluorescence channels keep a gain for each kind of camera.
        gain_key = "Gain AR" if day.truth["camera"] == "arducam" and name != "BF" else "Gain"
        found = (*(day.setting(f"Ch. {name}", each) for each in (gain_key, "Exposure")), stored)
        day.table.same(f"light of {name} stored", _words(values), _words(found))
        # To another channel and back: now the values come from the file.
        _choose(day, "GFP" if name == "BF" else "BF")
        _choose(day, name)
        next_frame(day)
        day.screenshot(f"light-{name}")
        day.table.same(f"light of {name} recalled", _words(values), _light(day, name))
    mean, _ = day.hand.picture_of(VIEW).mean_and_deviation()
    day.table.within("brightness in the new light", mean, 120, 220, "grey values")


def _words(values):
    return "{} dB, {} ms, {}".format(*values)


def _choose(day, name):
    begin = len(day.room.program.log())
    day.hand.click(f"pushButton_ILLUMINATION_{name}")
    day.room.wait_log(f"$OK#A#FILTER GO {FILTERS[name]}", LIMIT, begin)


def _light(day, name):
    """What the virtual unit's camera and LED are set to."""
    state = day.room.instrument.ask("state")
    level = state["leds"]["bf1" if name == "BF" else name.lower()]
    camera = state["camera"]
    # What the program calls one dB with the AR0134 is 2 dB of the signal.
    gain = camera["gainDb"] / (2 if day.truth["camera"] == "arducam" else 1)
    return _words((f"{gain:.0f}", f"{camera['exposureUs'] / 1000:.0f}", level))
