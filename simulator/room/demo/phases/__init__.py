"""The phases of a unit's day in a factory, in their order: a module each, with a TITLE and a run(day).

A phase does what a technician would do, waits for the evidence, and adds its rows to the day's table. One that only
units with a certain camera go through names it in CAMERA.
"""

from . import (
    autofocus, capture, connection, identity, light, live_view, magnification, mirrors, options, pages, pixel_shift,
    slide, slope, x_reference,
)

PHASES = [
    connection, live_view, slide, autofocus, mirrors, slope, pixel_shift, capture, magnification, x_reference, light,
    identity, options, pages,
]


def phases_of(camera):
    """What a unit with this camera, as the virtual instrument calls it, goes through."""
    return [phase for phase in PHASES if getattr(phase, "CAMERA", camera) == camera]
