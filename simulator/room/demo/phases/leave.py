"""The X button ends the program; since the unit has a new serial number it has the instrument restarted."""

TITLE = "Exit"
LIMIT = 30  # seconds
RESTART = "systemctl restart rc-local.service"


def run(day):
    lines = len(day.room.board_lines())
    day.hand.click("pushButton_EXIT")
    day.room.wait_window("Info", LIMIT)
    day.screenshot("restart-announced")
    state = day.room.instrument.ask("state")
    day.table.same("light at the exit", 0, sum(state["leds"].values()))
    day.table.same("X at the exit", 0, state["x"])
    day.table.same("last line to the board", "$X#STAGE ORIGIN", day.room.board_lines()[lines:][-1])
    before = day.room.stub_calls()
    day.table.same("restarts asked for before the box is answered", 0, before.count(RESTART))
    day.hand.acknowledge("Info", LIMIT)

    day.table.same("exit code", 0, day.room.program.wait(LIMIT))
    calls = [call for call in day.room.stub_calls()[len(before):] if call.startswith("systemctl")]
    day.table.same("asked for behind the box", RESTART, "; ".join(calls))
    camera = day.room.instrument.ask("state")["camera"]
    day.table.same("camera after the exit", "released", "open" if camera["open"] else "released")
