"""Each light channel gets values of its own, which are stored and come back when the channel is chosen again."""

TITLE = "Light"
LIMIT = 20  # seconds

# Filter position, gain in dB, exposure in ms, LED level. Whole gains: the file keeps no tenths.
CHANNELS = {"GFP": (2, 6, 90, 310), "RFP": (3, 4, 70, 340), "BF": (1, 1, 40, 8)}


def run(day):
    day.hand.open_page("TAB_LIGHT")
    for name, (filter_position, gain, exposure, level) in CHANNELS.items():
        _choose(day, name, filter_position)
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
        values = (*(day.setting(f"Ch. {name}", each) for each in (gain_key, "Exposure")), stored)
        day.table.same(f"light of {name} stored", f"{gain} dB, {exposure} ms, {level}",
                       "{} dB, {} ms, {}".format(*values))
        # To another channel and back: now the values come from the file.
        _choose(day, *_another(name))
        _choose(day, name, filter_position)
        day.screenshot(f"light-{name}")
        day.table.same(f"light of {name} recalled", f"{gain} dB, {exposure} ms, {level}", _light(day, name))


def _another(name):
    other = "GFP" if name == "BF" else "BF"
    return other, CHANNELS[other][0]


def _choose(day, name, filter_position):
    begin = len(day.room.program.log())
    day.hand.click(f"pushButton_ILLUMINATION_{name}")
    day.room.wait_log(f"$OK#A#FILTER GO {filter_position}", LIMIT, begin)


def _light(day, name):
    """What the virtual unit's camera and LED are set to."""
    state = day.room.instrument.ask("state")
    level = state["leds"]["bf1" if name == "BF" else name.lower()]
    camera = state["camera"]
    # What the program calls one dB with the AR0134 is 2 dB of the signal.
    gain = camera["gainDb"] / (2 if day.truth["camera"] == "arducam" else 1)
    return f"{gain:.0f} dB, {camera['exposureUs'] / 1000:.0f} ms, {level}"
