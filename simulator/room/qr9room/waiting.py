"""Waiting for evidence, with a limit, and never for a fixed time."""

import time

from .errors import TooLate

PAUSE = 0.03  # seconds between two looks


def wait_for(what, probe, limit, still_hopeful=lambda: None):
    """Looks every PAUSE seconds until `probe()` gives something true, and returns that.

    `what` names the evidence in the error text. `still_hopeful()` is called between looks and raises when
    the evidence can no longer come, e.g. because the program has ended. Raises TooLate after `limit` seconds.
    """
    end = time.monotonic() + limit
    while True:
        found = probe()
        if found:
            return found
        if time.monotonic() > end:
            raise TooLate(f"waited {limit:g} s in vain for {what}")
        still_hopeful()
        time.sleep(PAUSE)
