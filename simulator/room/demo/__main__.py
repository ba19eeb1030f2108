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
from demo.phases import PHASES, name_of, phases_of  # noqa: E402
from qr9room.errors import RoomError  # noqa: E402
from qr9room.options import Options  # noqa: E402
from qr9room.room import Room  # noqa: E402
from qr9room.technician import Technician  # noqa: E402

HASTE = 4  # the stage's motions that are waited for tell nothing new
CAMERAS = {"basler": "basler", "ar0134": "arducam", "arducam": "arducam"}  # by the sensor or by its board


def main():
    arguments = _parse()
    out = arguments.out or arguments.build / "demo"
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
            day = Day(room, Technician(room), truth, out)
            try:
                good = _watch(day) if arguments.interactive else _drive(day, arguments)
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


def _drive(day, arguments):
    """Goes through the phases; returns whether every row is good."""
    day.room.instrument.ask("set", key="speed", value=HASTE)
    day.launch()
    morning = time.monotonic()
    phases = phases_of(day.truth["camera"], arguments.only, arguments.until)
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
    seconds = time.monotonic() - morning
    print(f"\n{day.table.text()}\n\nThe day took {seconds:.0f} s.")
    (day.out / "table.txt").write_text(day.table.text() + "\n")
    table = {"seed": arguments.seed, "camera": day.truth["camera"], "seconds": round(seconds, 1),
             "rows": day.table.records()}
    (day.out / "table.json").write_text(json.dumps(table, indent=1) + "\n")
    return day.table.is_good()


def _watch(day):
    """Leaves the window to the user; returns whether the program ended well."""
    day.launch()
    print('The window is on your desk. The button "X" at its upper right ends the program.', flush=True)
    return day.room.program.wait() == 0


def _parse():
    names = [name_of(phase) for phase in PHASES]
    parser = argparse.ArgumentParser(
        prog="scripts/demo", description=__doc__, epilog=f"Phases, in their order: {', '.join(names)}.")
    parser.add_argument("--seed", type=int, default=1, metavar="N", help="the virtual unit (default: 1)")
    parser.add_argument("--camera", choices=list(CAMERAS), default="basler",
                        help="what the unit sees with (default: basler)")
    parser.add_argument("--until", choices=names, metavar="PHASE", help="end the day with this phase")
    parser.add_argument("--only", type=lambda text: text.split(","), metavar="A,B",
                        help="the connection and these phases alone, which then miss what others would have stored")
    parser.add_argument("--keep", action="store_true", help="keep the whole room in build/demo/room")
    parser.add_argument("--interactive", action="store_true",
                        help="open the window on this desk and leave the technician's part to the user")
    parser.add_argument("--build", type=Path, required=True, metavar="DIR", help=argparse.SUPPRESS)
    parser.add_argument("--out", type=Path, metavar="DIR", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    unknown = [name for name in arguments.only or () if name not in names]
    if unknown:
        parser.error(f"no phase is called {', '.join(unknown)}; there are {', '.join(names)}")
    if arguments.interactive and not os.environ.get("DISPLAY"):
        parser.error("--interactive needs a display")
    return arguments


sys.exit(main())
