"""The phases of a unit's day in a factory, in their order: a module each, with a TITLE and a run(day).

A phase does what a technician would do, waits for the evidence, and adds its rows to the day's table.
"""

from . import autofocus, capture, connection, live_view, pixel_shift

PHASES = [connection, live_view, autofocus, pixel_shift, capture]
