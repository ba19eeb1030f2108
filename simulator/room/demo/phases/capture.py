"""A USB stick is plugged in, three channels of a field are saved to it, and it is released."""

import os
import subprocess

TITLE = "Capture to a stick"
LIMIT = 60  # seconds
LABEL = "FACTORY"
NAME = "unit"
# Of each channel: which parts of the colour picture carry the frame.
TINTS = {"BF": "red green blue", "GFP": "green", "RFP": "red"}


def run(day):
    _plug(day)
    for box in ("checkBox_CAPTURE_GFP", "checkBox_CAPTURE_RFP"):
        day.hand.click(box)
    day.hand.click("pushButton_CAPTURE")
    day.room.screen.wait_focus(day.room.wait_window("Save Image", LIMIT))
    day.room.screen.type(f"/media/{LABEL}/{NAME}")
    day.screenshot("save-dialog")
    day.room.screen.key("Return")
    day.room.wait_window("Info", LIMIT)
    day.screenshot("captured")
    day.hand.acknowledge("Info", 10)

    stick = day.room.rig / "stick"
    expected = [f"{NAME}_{channel}.tif" for channel in TINTS]
    day.table.same("files on the stick", " ".join(expected), " ".join(sorted(file.name for file in stick.iterdir())))
    for channel, tint in TINTS.items():
        day.table.same(f"tint of {channel}", tint, _tint(stick / f"{NAME}_{channel}.tif"))

    day.hand.click("pushButton_UNMOUNT")
    day.hand.acknowledge("Info", LIMIT)
    released = not _is_mounted(day) and not _folder(day).exists()
    day.table.same("stick after Unmount", "released", "released" if released else "still there")
    _unplug(day)
    _plug(day)
    day.table.same("second plug", "mounted", "mounted" if _is_mounted(day) else "not mounted")
    _unplug(day)


def _plug(day):
    """As udev does: the label first, since the program watches the other folder."""
    disk = day.room.rig / "disk"
    os.symlink("../../sdb1", disk / "by-label" / LABEL)
    os.symlink("../../sdb1", disk / "by-uuid" / "1234-ABCD")
    day.room.wait_for("the stick to be mounted", lambda: _is_mounted(day), LIMIT)


def _unplug(day):
    """A stick is out until the program has noticed: it releases what it has found gone, mounted or not."""
    disk = day.room.rig / "disk"
    released = _releases(day)
    (disk / "by-label" / LABEL).unlink()
    (disk / "by-uuid" / "1234-ABCD").unlink()
    day.room.wait_for("the program to drop the stick", lambda: _releases(day) > released, LIMIT)
    day.room.wait_for("the stick's folder to go", lambda: not _folder(day).exists(), LIMIT)


def _releases(day):
    """How often the program has released the device itself."""
    return day.room.stub_calls().count("umount /dev/sdb1")


def _folder(day):
    return day.room.rig / "root" / "media" / LABEL


def _is_mounted(day):
    """As the system lists it; the folder alone would be there before the mount."""
    return f"/dev/sdb1 /media/{LABEL} " in (day.room.rig / "mtab").read_text()


def _tint(picture):
    """The parts of a colour picture that are not black, read by another program than ours."""
    words = ["identify", "-format", "%[fx:mean.r] %[fx:mean.g] %[fx:mean.b]", str(picture)]
    means = subprocess.run(words, capture_output=True, text=True, check=False).stdout.split()
    return " ".join(part for part, mean in zip(("red", "green", "blue"), means) if float(mean) > 0.001)
