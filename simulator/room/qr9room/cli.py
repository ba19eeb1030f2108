"""The command line of the launcher."""

import argparse
import signal
import sys
import tempfile
from pathlib import Path

from . import bubble
from .errors import NoRooms, RoomError
from .options import REPOSITORY, Options
from .room import Room

SKIPPED = 77  # what ctest takes for "could not be run here"
BROKEN = 125  # the room failed, not the program
TIMED_OUT = 124


def main():
    arguments = _parse(sys.argv[1:])
    # A stopped launcher tidies up like any other.
    for request in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(request, lambda number, _: sys.exit(128 + number))
    try:
        return arguments.run(arguments)
    except NoRooms as reason:
        print(f"room: {reason}", file=sys.stderr)
        return SKIPPED
    except RoomError as reason:
        print(f"room: {reason}", file=sys.stderr)
        return BROKEN
    except KeyboardInterrupt:
        return 128 + signal.SIGINT


def _probe(_):
    bubble.probe()
    return 0


def _run(arguments):
    with Room(_options(arguments)) as room:
        program = room.launch(arguments.program, arguments.arguments, echo=sys.stdout.buffer)
        code = program.wait(arguments.timeout)
        if code is None:
            print(f"room: the program did not end within {arguments.timeout:g} s", file=sys.stderr)
            code = TIMED_OUT
        if arguments.keep or code != 0:
            name = Path(arguments.program).name
            place = room.keep(arguments.keep or tempfile.mkdtemp(prefix=f"qr9-failed.{name}."))
            print(f"room: log, transcript and screenshot are kept in {place}", file=sys.stderr)
        return code


def _options(arguments):
    return Options(
        build=arguments.build.resolve(),
        seed=arguments.seed,
        unit=arguments.unit and arguments.unit.resolve(),
        camera=arguments.camera,
        silent_ports=arguments.silent_ports,
        board=not arguments.no_board,
        unopenable_port=arguments.unopenable_port,
        quick=arguments.quick,
        reset_program=not arguments.no_reset_program,
        ini=arguments.ini,
        environment=dict(pair.split("=", 1) for pair in arguments.env),
        instrument_arguments=arguments.instrument_arg,
    )


def _parse(words):
    parser = argparse.ArgumentParser(prog="room", description="Private rooms with a virtual instrument each.")
    commands = parser.add_subparsers(required=True, metavar="COMMAND")

    probe = commands.add_parser("probe", help="exit code 0 where rooms can be had, 77 where not")
    probe.set_defaults(run=_probe)

    run = commands.add_parser(
        "run",
        help="run a program in a room",
        description="Runs a program in a room of its own and passes its exit code on. Exit code 77: no room "
        "can be had here; 124: --timeout; 125: the room itself failed. The log, the board's transcript and a "
        "screenshot of a failed run are kept, and their place is printed.",
    )
    run.set_defaults(run=_run)
    run.add_argument("--build", type=Path, default=REPOSITORY / "build/dev", metavar="DIR",
                     help="build folder, /run/prog in the room (default: build/dev)")
    unit = run.add_mutually_exclusive_group()
    unit.add_argument("--seed", type=int, default=1, metavar="N", help="the unit of this seed (default: 1)")
    unit.add_argument("--unit", type=Path, metavar="FILE", help="the unit of this file")
    run.add_argument("--camera", choices=["basler", "arducam", "none"], default="basler")
    run.add_argument("--silent-ports", type=int, default=0, metavar="N",
                     help="serial ports that never answer, listed before the board's")
    run.add_argument("--no-board", action="store_true", help="the board's port is not there")
    run.add_argument("--unopenable-port", action="store_true",
                     help="a port that cannot be opened, listed between the silent ones and the board's")
    run.add_argument("--quick", action="store_true", help="motions take no noticeable time")
    run.add_argument("--no-reset-program", action="store_true", help="Reset_BaslerCamera is missing")
    run.add_argument("--ini", type=Path, metavar="FILE", help="becomes TAVO_QR9.ini (default: no such file)")
    run.add_argument("--env", action="append", default=[], metavar="K=V", help="a variable of the program")
    run.add_argument("--instrument-arg", action="append", default=[], metavar="ARG",
                     help="one more argument of VirtualInstrument")
    run.add_argument("--keep", type=Path, metavar="DIR", help="keep the evidence there, also of a good run")
    run.add_argument("--timeout", type=float, metavar="SECONDS", help="end the program after this time")
    run.add_argument("program", metavar="PROGRAM",
                     help="below the build folder, or an absolute path in the room")
    run.add_argument("arguments", nargs=argparse.REMAINDER, metavar="ARGS")
    return parser.parse_args(words)
