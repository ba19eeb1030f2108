"""The slide types as a technician knows them: where their fields lie, and from what their height comes."""

from dataclasses import dataclass

from qr9room.single import single

FIELD_PITCH = 480  # motor steps along X
NEXT, PREV = "pushButton_FIELD_NEXT", "pushButton_FIELD_PREV"
REFERENCE = 32000  # Z of a unit that has not been calibrated


@dataclass(frozen=True)
class SlideType:
    """One entry of the slide type box."""

    index: int  # in the box
    name: str  # in the box
    slide: str  # what the virtual unit calls a slide of this type
    start: str  # key of the first field's X
    default: int  # for that key
    height: str  # key of the Z reference
    fields: int  # of a channel
    sense: int = -1  # +1: X rises with the field's number
    out: str = NEXT  # button towards the last field, on the first channel
    offset: tuple | None = None  # key, default and sign of what comes on top of the reference
    channels: int = 1
    pitch: int = 0  # motor steps along X from channel to channel
    pitch_mm: float = 0.0

    def x(self, start, channel, field):
        """X of a field with the first one at `start`; channel and field count from 0."""
        return start - self.pitch * channel + self.sense_of(channel) * FIELD_PITCH * field

    def sense_of(self, channel):
        # The 2-channel slide is walked as a serpentine: out along one channel, back along the other.
        return -self.sense if self.slide == "2ch" and channel else self.sense

    def button(self, channel):
        """What leads towards the last field of a channel."""
        return PREV if self.slide == "2ch" and channel else self.out

    def z(self, calibration, channel):
        """The height that the tool must give a channel, from the settings of the group "Calibration"."""
        slope = single(float(calibration.get("Z ref slope", "0")))
        height = int(slope * (channel * self.pitch_mm) + int(calibration.get(self.height, REFERENCE)))
        if self.offset:
            key, default, sign = self.offset
            height += sign * int(calibration.get(key, default))
        return height


# The 2-channel slide comes last: the rest of the day goes on with it.
SLIDE_TYPES = [
    SlideType(0, "1-Channel", "1ch", "1 Channel", 9893, "Z ref 1ch", 47, sense=+1),
    SlideType(2, "3-Channel", "3ch", "3 Channel", 30505, "Z ref 3ch", 12, sense=+1, out=PREV,
              channels=3, pitch=12346, pitch_mm=23.15),
    SlideType(3, "8-Channel", "8ch", "8 Channel", 38291, "Z ref 8ch", 5, channels=8, pitch=4800, pitch_mm=9.0),
    SlideType(4, "Reusable", "reusable", "2 Channel", 30931, "Z ref 2ch", 12, offset=("Reusable offset", 5676, +1)),
    SlideType(5, "Validation", "validation", "2 Channel", 30931, "Z reference", 12,
              offset=("Validation offset", 1280, -1)),
    SlideType(6, "Prisma Max", "prisma", "Prisma", 28580, "Z ref 2ch", 5, offset=("Prisma offset", 0, -1)),
    SlideType(1, "2-Channel", "2ch", "2 Channel", 30931, "Z ref 2ch", 12, channels=2, pitch=20799, pitch_mm=39.0),
]
