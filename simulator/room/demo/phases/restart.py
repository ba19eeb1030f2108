"""The program comes up once more, as after the restart, with what has been stored; this time it just ends."""

from ..slide_types import REFERENCE
from .connection import wait_connected
from .leave import RESTART
from .live_view import next_frame

TITLE = "Restart"
LIMIT = 30  # seconds


def run(day):
    begin = len(day.room.program.log())
    lines = len(day.room.board_lines())
    day.launch()
    wait_connected(day, begin)
    next_frame(day)
    sent = day.room.board_lines()[lines:]
    day.table.same("Z after the restart", day.setting("Calibration", "Z ref 2ch") or str(REFERENCE),
                   " ".join(line.split()[-1] for line in sent if line.startswith("$Z#STAGE ABS")))
    day.table.same("light after the restart", f"{day.setting('Ch. BF', 'LED1') or 7} 6",
                   " ".join(" ".join(line.split()[-2:]) for line in sent if line.startswith("$A#LED BRT1")))
    day.screenshot("after-restart-qc1")
    day.hand.open_page("TAB_QC2")
    day.screenshot("after-restart-qc2")

    day.hand.wait_shown("pushButton_EXIT", LIMIT)
    day.hand.click("pushButton_EXIT")
    day.table.same("exit code without a change", 0, day.room.program.wait(LIMIT))
    day.table.same("restarts in all", 1, day.room.stub_calls().count(RESTART))
