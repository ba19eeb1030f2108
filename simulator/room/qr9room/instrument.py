"""The virtual instrument beside the room: its process and its control socket."""

import json
import socket
import subprocess
from pathlib import Path

from . import children
from .errors import RoomError

PROGRAM = "simulator/VirtualInstrument"


class Instrument:
    """A running VirtualInstrument whose sockets lie in `rig`."""

    def __init__(self, build, rig, arguments):
        program = Path(build) / PROGRAM
        if not program.exists():
            raise RoomError(f"{program} is not built")
        self._log = Path(rig) / "instrument.log"
        with open(self._log, "wb") as log:
            self._process = children.start(
                [program, "--rig", rig, *arguments],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=log,
            )
        self._control = None
        line = children.first_line(self._process.stdout.fileno(), limit=20)
        if line is None:
            self.stop()
            raise RoomError("the virtual instrument did not start:\n" + self._log.read_text(errors="replace"))
        ready = json.loads(line)
        self.ports = ready["ports"]
        self.board_port = ready["board"]
        self._control = Control(Path(rig) / "control.sock")

    def ask(self, command, **fields):
        """Sends one command of the control socket and returns the answer, see Control.ask."""
        return self._control.ask(command, **fields)

    def stop(self):
        """Ends the process. Returns its exit code, negative for a signal."""
        if self._control:
            self._control.close()
        code = children.stop(self._process)
        self._process.stdout.close()
        return code


class Control:
    """A client of the control socket: one JSON object a line, one answer for each."""

    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.settimeout(20)
        self._socket.connect(str(path))
        self._lines = self._socket.makefile("r", encoding="utf-8")

    def ask(self, command, **fields):
        """Returns the answer without its "ok"; raises RoomError when the instrument refuses."""
        self._socket.sendall((json.dumps({"cmd": command, **fields}) + "\n").encode())
        line = self._lines.readline()
        if not line:
            raise RoomError(f'the virtual instrument has gone at "{command}"')
        answer = json.loads(line)
        if not answer.pop("ok", False):
            raise RoomError(f'the virtual instrument refused "{command}": {answer.get("error")}')
        return answer

    def close(self):
        self._lines.close()
        self._socket.close()
