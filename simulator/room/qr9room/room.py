"""One room: a rig folder, a screen, a virtual instrument, and a program between them."""

import shutil
from pathlib import Path

from . import bubble, fittings
from .errors import RoomError
from .instrument import Instrument
from .program import Program
from .rig_folder import RigFolder
from .screen import Screen
from .waiting import wait_for


class Room:
    """A room of its own, beside any number of others; use it in a `with` block.

    Must be started from the main thread: see children.
    """

    def __init__(self, options):
        self.options = options
        self._folder = None
        self.screen = None
        self.instrument = None
        self.program = None

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *error):
        self.stop()

    def start(self):
        """Builds the room up to the point where a program can be launched in it."""
        bubble.probe()
        self._folder = RigFolder()
        try:
            fittings.furnish(self.rig, self.options)
            self.instrument = Instrument(self.options.build, self.rig, self._instrument_arguments())
            if not self.options.desk:
                self.screen = Screen(self.rig)
        except BaseException:
            self.stop()
            raise

    def launch(self, program, arguments=(), echo=None):
        """Starts a program of the build folder, or of the room where its path is absolute.

        `echo` is a binary stream that gets the program's output besides the log.
        """
        if not program.startswith("/"):
            if not (Path(self.options.build) / program).exists():
                raise RoomError(f"{Path(self.options.build) / program} is not built")
            program = f"/run/prog/{program}"
        words = bubble.command(self.rig, self.options, self.screen, self._ports(), [program, *arguments])
        self.program = Program(words, self.rig / "program.log", echo, self._keep_failed_check)
        return self.program

    def stop(self):
        """Ends everything and removes the rig folder."""
        self._end_parts()
        if self._folder:
            self._folder.remove()
            self._folder = None

    def move_rig(self, place):
        """Ends everything and moves the rig folder to `place`, without its sockets."""
        self._end_parts()
        for socket in self.rig.glob("*.sock"):
            socket.unlink()
        shutil.move(self.rig, place)

    def _end_parts(self):
        for part in (self.program, self.screen, self.instrument):
            if part:
                part.stop()
        self.program = self.screen = self.instrument = None

    @property
    def rig(self):
        """The room's folder outside, /run/rig inside."""
        return self._folder.path

    # What the program left and shows.

    @property
    def home(self):
        """The program's /root/TAVO_QR9, as seen from outside."""
        return self.rig / "root" / fittings.HOME

    def stub_calls(self):
        """The lines that the stand-ins of the system's programs have recorded."""
        return (self.rig / "stubs.log").read_text().splitlines()

    def board_log(self):
        """The lines of the board's transcript: milliseconds, port index, direction and text each."""
        return (self.rig / "board.log").read_text(errors="replace").splitlines()

    def board_lines(self):
        """The texts alone that the program has sent to the board (not those to silent ports), in order."""
        index = str(self.instrument.ports.index(self.instrument.board_port))
        words = (line.split(" ", 3) for line in self.board_log())
        return [word[3] for word in words if len(word) == 4 and word[1] == index and word[2] == ">"]

    def wait_for(self, what, probe, limit):
        """Waits for evidence while the program runs; see waiting.wait_for."""
        return wait_for(what, probe, limit, self.program.must_run)

    def wait_log(self, text, limit, begin=0):
        """Waits until the log holds `text` from position `begin` on; returns the position behind it."""
        def behind():
            at = self.program.log().find(text, begin)
            return at + len(text) if at >= 0 else None
        return self.wait_for(f'the log line "{text}"', behind, limit)

    def wait_window(self, title, limit=10):
        """Waits until a window with this title is visible and returns its identifier."""
        return self.screen.wait_window(title, limit, self.program.must_run)

    def keep(self, folder):
        """Copies what tells the story of the run into `folder`, which may exist. Returns it as a path."""
        folder = Path(folder)
        folder.mkdir(parents=True, exist_ok=True)
        for name in ("program.log", "board.log", "camera.log", "instrument.log", "xvfb.log", "stubs.log"):
            if (self.rig / name).exists():
                shutil.copyfile(self.rig / name, folder / name)
        for ini in self.home.glob("*.ini"):
            if ini.is_file():  # a test may have put something else there
                shutil.copyfile(ini, folder / ini.name)
        shutil.copytree(self.rig / "evidence", folder, dirs_exist_ok=True)
        if any((self.rig / "stick").iterdir()):
            shutil.copytree(self.rig / "stick", folder / "stick", dirs_exist_ok=True)
        look = self.screen and self.screen.last_look()
        if look:
            look.save(folder / "screen.png")
        return folder

    def _keep_failed_check(self):
        look = self.screen and self.screen.last_look()
        if look:
            look.save(self.rig / "evidence" / "failed-check.png")

    def _instrument_arguments(self):
        options = self.options
        arguments = ["--unit", options.unit] if options.unit else ["--seed", options.seed]
        arguments += ["--camera", options.camera, "--silent-ports", options.silent_ports]
        if options.quick:
            arguments.append("--quick")
        return arguments + options.instrument_arguments

    def _ports(self):
        instrument = self.instrument
        ports = [port for port in instrument.ports if port != instrument.board_port]
        if self.options.unopenable_port:
            ports.append(self.rig / "unopenable")
        if self.options.board:
            ports.append(instrument.board_port)
        return ports
