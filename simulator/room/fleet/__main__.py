"""The driver of scripts/fleet: many virtual units through the whole day, side by side, and what came out of all."""

import argparse
import json
import os
import shutil
import sys
import time
from dataclasses import dataclass
from pathlib import Path
from statistics import median

ROOM = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOM))

from fleet import summary  # noqa: E402  (the path is set above)
from qr9room import children  # noqa: E402

CAMERAS = ("basler", "ar0134")  # in turn
LOOKS = 0.2  # seconds from one look at the running days to the next


@dataclass
class Unit:
    """One virtual unit and where its day is kept."""

    seed: int
    camera: str
    folder: Path

    def start(self, build):
        """Its day as a process of its own, with a room of its own. What it prints goes beside the folder."""
        with open(self.folder.with_suffix(".txt"), "wb") as log:
            return children.start(
                [sys.executable, "-B", ROOM / "demo", "--build", build, "--seed", self.seed, "--camera", self.camera,
                 "--out", self.folder],
                stdout=log, stderr=log,
            )

    def table(self, exit_code):
        """What the day left; a day that left nothing is one row that falls short."""
        file = self.folder / "table.json"
        if file.exists():
            return json.loads(file.read_text())
        why = f"no table, exit code {exit_code}; see {self.folder.with_suffix('.txt')}"
        row = {"what": "the day", "true": "", "found": why, "allowed": "", "verdict": "FALLS SHORT",
               "error": None, "tolerance": None}
        return {"seconds": None, "rows": [row]}


def main():
    arguments = _parse()
    out = arguments.build / "fleet"
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    units = [_unit(out, number, arguments.first + number) for number in range(arguments.count)]
    try:
        tables = _run(units, arguments)
    except KeyboardInterrupt:
        return 130
    days = {unit.folder.name: tables[unit.seed]["rows"] for unit in units}
    short = summary.shortfalls(days)
    lines = [summary.text(summary.summarise(days)), *short]
    seconds = [table["seconds"] for table in tables.values() if table["seconds"]]
    if seconds:
        lines.append(f"A day took {median(seconds):.0f} s in the median and {max(seconds):.0f} s at most, "
                     f"{arguments.jobs} side by side.")
    report = "\n".join(lines)
    (out / "summary.txt").write_text(report + "\n")
    print(f"\n{report}\n\nWhat each unit left: {out}")
    return 1 if short else 0


def _unit(out, number, seed):
    camera = CAMERAS[number % len(CAMERAS)]
    return Unit(seed, camera, out / f"unit-{seed}-{camera}")


def _run(units, arguments):
    """All days, so many side by side. Returns their tables by seed."""
    waiting, running, tables = list(units), [], {}
    while waiting or running:
        while waiting and len(running) < arguments.jobs:
            unit = waiting.pop(0)
            running.append((unit, unit.start(arguments.build)))
        for unit, process in [each for each in running if each[1].poll() is not None]:
            running.remove((unit, process))
            tables[unit.seed] = unit.table(process.returncode)
            _tell(unit, tables[unit.seed], f"[{len(tables)}/{len(units)}]")
        time.sleep(LOOKS)
    return tables


def _tell(unit, table, progress):
    short = len(summary.shortfalls({"": table["rows"]}))
    verdict = f"{short} of {len(table['rows'])} rows fall short, see {unit.folder}" if short else "good"
    took = f" in {table['seconds']:.0f} s" if table["seconds"] else ""
    print(f"{progress} seed {unit.seed}, {unit.camera}{took}: {verdict}", flush=True)


def _parse():
    parser = argparse.ArgumentParser(prog="scripts/fleet", description=__doc__)
    parser.add_argument("count", type=int, metavar="N", help="how many units; Basler and AR0134 in turn")
    parser.add_argument("--from", type=int, default=1, dest="first", metavar="SEED",
                        help="the first unit's seed, the others follow (default: 1)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), metavar="J",
                        help="rooms side by side (default: as many as the machine has cores)")
    parser.add_argument("--build", type=Path, required=True, metavar="DIR", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.count < 1 or arguments.jobs < 1:
        parser.error("at least one unit and one room")
    return arguments


sys.exit(main())
