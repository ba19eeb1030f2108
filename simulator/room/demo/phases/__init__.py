"""The phases of a unit's day in a factory, in their order: a module each, with a TITLE and a run(day).

A phase does what a technician would do, waits for the evidence, and adds its rows to the day's table. It builds on
what those before it have stored. One that only units with a certain camera go through names it in CAMERA.
"""

from . import (
    autofocus, capture, connection, identity, leave, light, live_view, magnification, mirrors, options, pages,
    pixel_shift, restart, slides, slope, x_reference,
)

PHASES = [
    connection, live_view, x_reference, autofocus, slope, slides, light, pixel_shift, magnification, options, mirrors,
    identity, capture, pages, leave, restart,
]


def name_of(phase):
    """What a phase is called on the command line."""
    return phase.__name__.rpartition(".")[2]


def phases_of(camera, only=None, until=None):
    """What a unit with this camera, as the virtual instrument calls it, goes through.

    `only`, a list of names, leaves the others out, but never the connection; `until` ends the day with that phase.
    """
    phases = [phase for phase in PHASES if getattr(phase, "CAMERA", camera) == camera]
    if only:
        phases = [phase for phase in phases if phase is connection or name_of(phase) in only]
    if until:
        # The named phase may be one that this unit does not have.
        last = [name_of(phase) for phase in PHASES].index(until)
        phases = [phase for phase in phases if PHASES.index(phase) <= last]
    return phases
