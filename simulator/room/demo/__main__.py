"""The driver of scripts/demo: a virtual unit through a technician's day, and a table of what came out."""

import argparse
import json
import os
import shutil
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

from demo.day import Day  # noqa: E402  (the path is set above)
from demo.phases import phases_of  # noqa: E402
from qr9room.errors import RoomError  # noqa: E402
from qr9room.options import Options  # noqa: E402
from qr9room.room import Room  # noqa: E402
from qr9room.technician import Technician  # noqa: E402

PROGRAM = "app/VerifierQR9"
CAMERAS = {"basler": "basler", "ar0134": "arducam", "arducam": "arducam"}  # by the sensor or by its board


def main():
    arguments = _parse()
    out = arguments.build / "demo"
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    options = Options(
        build=arguments.build / "dev", seed=arguments.seed, camera=CAMERAS[arguments.camera], silent_ports=1,
        desk=arguments.interactive,
    )
    try:
        with Room(options) as room:
            truth = room.instrument.ask("truth")["truth"]
            (out / "truth.json").write_text(json.dumps(truth, indent=4) + "\n")
            try:
                good = _watch(room) if arguments.interactive else _drive(room, truth, out)
            finally:
                room.keep(out)
                if arguments.keep:
                    room.move_rig(out / "room")
            print(f"\nScreenshots, log, board transcript and settings file: {out}")
            return 0 if good else 1
    except RoomError as reason:
        print(f"demo: {reason}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130


def _drive(room, truth, out):
    """Goes through the phases; returns whether every row is good."""
    room.launch(PROGRAM)
    day = Day(room, Technician(room), truth, out)
    phases = phases_of(truth["camera"])
    for number, phase in enumerate(phases, 1):
        print(f"[{number}/{len(phases)}] {phase.TITLE} ...", end=" ", flush=True)
        begin = time.monotonic()
        try:
            phase.run(day)
        except RoomError as reason:
            print("failed", flush=True)
            day.table.failed(phase.TITLE, str(reason))
            day.screenshot("failed")
            break
        print(f"{time.monotonic() - begin:.1f} s", flush=True)
    print("\n" + day.table.text())
    (out / "table.txt").write_text(day.table.text() + "\n")
    return day.table.is_good()


def _watch(room):
    """Leaves the window to the user; returns whether the program ended well."""
    room.launch(PROGRAM)
    print('The window is on your desk. The button "X" at its upper right ends the program.', flush=True)
    return room.program.wait() == 0


def _parse():
    parser = argparse.ArgumentParser(prog="scripts/demo", description=__doc__)
    parser.add_argument("--seed", type=int, default=1, metavar="N", help="the virtual unit (default: 1)")
    parser.add_argument("--camera", choices=list(CAMERAS), default="basler",
                        help="what the unit sees with (default: basler)")
    parser.add_argument("--keep", action="store_true", help="keep the whole room in build/demo/room")
    parser.add_argument("--interactive", action="store_true",
                        help="open the window on this desk and leave the technician's part to the user")
    parser.add_argument("--build", type=Path, required=True, metavar="DIR", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.interactive and not os.environ.get("DISPLAY"):
        parser.error("--interactive needs a display")
    return arguments


sys.exit(main())
