"""docs/settings-file.md against the sources: the same keys, with the same defaults and formats, and no others."""

import re
import unittest

from sources import document, quoted, source, table_rows

APP = source("app/*.cpp", "app/*.h")
ARDUCAM = source("camera/ar0134_open.cpp")
NAME = r'"([^"]+)"'
NAME_OR_NULL = r'(nullptr|"[^"]+")'


def documented():
    """Group and key to the cells of the key's row."""
    rows = {}
    for section in re.split(r"^### ", document("settings-file.md"), flags=re.MULTILINE)[1:]:
        (group,) = quoted(section.splitlines()[0])
        for key, *cells in table_rows(section):
            rows[group, *quoted(key)] = cells
    return rows


def one(text, pattern):
    """The one name that a pattern gives in a text."""
    (found,) = set(re.findall(pattern, text))
    return found


def channels():
    """Of each light channel: group, default gain, that of the AR0134 or nullptr, default exposure."""
    commands = rf"{NAME}, {NAME}"
    row = rf"\{{ ILLUMINATION_\w+, \d, styles::\w+, {commands}, {NAME}, {NAME}, {NAME_OR_NULL}, {NAME} \}}"
    return [found[2:] for found in re.findall(row, APP)]


def read_in_sources():
    """Group and key to the defaults that the sources read them with."""
    found = {}

    def add(group, key, default):
        found.setdefault((group, key), set()).add(default)

    for match in re.findall(rf"settings::read(?:Int|Real|ToolInt)?\( ?{NAME}, {NAME}, {NAME}\)", APP):
        add(*match)
    for match in re.findall(rf"\{{ ui->\w+, {NAME}, {NAME}, {NAME} \}}", APP):
        add(*match)
    for key, default in re.findall(rf"\b(?:show|setBox)\(ui->\w+, {NAME}, {NAME}\)", APP):
        add("Calibration", key, default)
    shift = one(APP, rf'"Miscellaneous", key, {NAME}')
    for key in re.findall(rf"showShift\(ui->\w+, {NAME}\)", APP):
        add("Miscellaneous", key, shift)
    option = one(APP, rf'settings::read\("TAVO-QR9", key, {NAME}\)')
    for key in re.findall(rf"setOption\([^)]*, {NAME}\)", APP):
        add("TAVO-QR9", key, option)
    height = one(APP, rf'"Calibration", (?:slide->)?height\.referenceKey, {NAME}')
    row = rf"SlideHeight k\w+ = \{{ {NAME}, \w+, {NAME_OR_NULL}, {NAME_OR_NULL},"
    for key, offset, default in re.findall(row, APP):
        add("Calibration", key, height)
        if offset != "nullptr":
            add("Calibration", offset.strip('"'), default.strip('"'))
    for group, gain, gain_ar, exposure in channels():
        add(group, "Gain", gain)
        add(group, "Exposure", exposure)
        if gain_ar != "nullptr":
            add(group, "Gain AR", gain_ar.strip('"'))
    return found


def written_in_sources():
    """Group and key to the format that the sources write them with."""
    found = {}
    for group, key in re.findall(rf"settings::writeInt\({NAME}, {NAME}", APP):
        found[group, key] = "%d"
    for group, key, form in re.findall(rf"(?:settings::writeReal|\bwrite)\({NAME}, {NAME}, {NAME}", APP):
        found[group, key] = form
    for group, key in re.findall(rf"writeFlag\({NAME}, {NAME}", APP):
        found[group, key] = "Yes/No"
    for group, key in re.findall(rf"settings::write\({NAME}, {NAME}", APP):
        found[group, key] = "text"
    for key in re.findall(rf"\{{ {NAME}, \d+, &measure_info::", APP):
        found["Volume factor", key] = one(APP, rf'write\("Volume factor", slide\.key, {NAME}')
    for key in re.findall(rf"\{{ {NAME}, (?:-kMarkOffset|[-+]\d+) \}}", APP):
        found["Start position", key] = "%d"
    for key in re.findall(NAME, one(APP, r"kShiftKeys\[\] = \{ (.*?) \}")):
        found["Miscellaneous", key] = one(APP, rf'settings::writeReal\("Miscellaneous", kShiftKeys\[i\], {NAME}')
    # Which of the LED keys a channel has is decided by a condition on the channel; the gain by the kind of camera.
    of_each_channel = set(re.findall(rf"settings::writeInt\(channel\.group, {NAME}", APP)) - {"LED", "LED1", "LED2"}
    for group, _, gain_ar, _ in channels():
        leds = ["LED1", "LED2"] if group == "Ch. BF" else ["LED"]
        for key in ["Gain", *leds, *of_each_channel, *(["Gain AR"] if gain_ar != "nullptr" else [])]:
            found[group, key] = "%d"
    return found


class SettingsDocument(unittest.TestCase):
    maxDiff = None

    def test_keysThatTheToolReads_haveTheDefaultsOfTheSources(self):
        told = {name: quoted(cells[0])[0] for name, cells in documented().items() if cells[0] != "none"}
        self.assertEqual(told, {name: defaults.pop() for name, defaults in read_in_sources().items()})

    def test_everyKeyHasOneDefault_alsoWhereItIsReadTwice(self):
        self.assertEqual([name for name, defaults in read_in_sources().items() if len(defaults) > 1], [])

    def test_keysThatTheToolWrites_haveTheFormatsOfTheSources(self):
        told = {name: cells[1].replace("`", "") for name, cells in documented().items() if cells[3] != "nobody"}
        texts = {"as reported", "%s-%s-%s"}
        self.assertEqual({name: "text" if form in texts else form for name, form in told.items()},
                         written_in_sources())

    def test_mirrors_areReadByTheDriverWithNoForBoth(self):
        self.assertEqual(re.findall(rf'mirrorSetting\(settings, {NAME}\)', ARDUCAM),
                         ["ArduCAM/Hor. Mirror", "ArduCAM/Ver. Mirror"])
        self.assertIn('settings.value(key, "No")', ARDUCAM)


if __name__ == "__main__":
    unittest.main(verbosity=2)
