"""The part of scripts/bench that needs the whole program: figures of the unchanged VerifierQR9 in a room.

Measured from outside: how the window and the picture on the screen change, the transcripts of the board and
the camera, and what the system tells about the process. `--only live` takes one of its parts.
"""

import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

from figures import focus_run, live_view, memory  # noqa: E402  (the path is set above)
from qr9room.errors import RoomError  # noqa: E402

PARTS = {"live": live_view, "focus": focus_run, "memory": memory}


def main():
    parser = argparse.ArgumentParser(prog="figures", description=__doc__)
    parser.add_argument("--build", type=Path, required=True, metavar="DIR")
    parser.add_argument("--only", choices=PARTS)
    arguments = parser.parse_args()
    good = True
    try:
        for name, part in PARTS.items():
            if arguments.only in (None, name):
                for figure in part.measure(arguments.build):
                    print(figure, flush=True)
                    good = good and figure.is_good
    except RoomError as reason:
        print(f"figures: {reason}", file=sys.stderr)
        return 1
    return 0 if good else 1


sys.exit(main())
