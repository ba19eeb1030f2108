"""The program comes up, connects by itself, and leaves."""

import os
import re
import subprocess
import tempfile
from pathlib import Path

from whole_case import BRING_UP, CONNECTED, PATIENCE, WAY_OUT, WholeCase, main, read_ini


class Connection(WholeCase):
    def test_boardOnSecondPort_isFoundAndBroughtUp(self):
        with self.program_in_room(silent_ports=1) as (room, hand):
            hand.wait_window(PATIENCE)
            room.wait_log(CONNECTED, PATIENCE)
            self.assertEqual(room.board_lines(), BRING_UP)
            silent = [line.split(" ", 3)[2:] for line in room.board_log() if line.split(" ")[1] == "0"]
            self.assertEqual(silent, [[">", "$A#VER"]])

    def test_exitButton_switchesOffHomesXAndEndsWell(self):
        with self.program_in_room() as (room, hand):
            room.wait_log(CONNECTED, PATIENCE)
            self.leave(room, hand)
            self.assertEqual(room.board_lines(), BRING_UP + WAY_OUT)
            self.assertIn("!!!!!!!!!!!!!!!!!!!!!!RESTART", room.program.log())
            self.assertNotIn("systemctl restart rc-local.service", room.stub_calls())

    def test_stickThatIsThereAtTheStart_isReleasedOnTheWayOut(self):
        def plug_in(room):
            os.symlink("../../sdb1", room.rig / "disk/by-label/FACTORY")
            os.symlink("../../sdb1", room.rig / "disk/by-uuid/1234-ABCD")

        with self.program_in_room(furnish=plug_in) as (room, hand):
            room.wait_log(CONNECTED, PATIENCE)
            mounts = [call for call in room.stub_calls() if "mount" in call]
            self.assertEqual(mounts[-1:], ["mount /dev/sdb1 /media/FACTORY"])
            self.leave(room, hand)
            released = [call for call in room.stub_calls() if "mount" in call][len(mounts):]
            self.assertEqual(released, ["umount /dev/sdb1"])
            self.assertEqual(list((room.rig / "root/media").iterdir()), [])

    def test_exitInLiveModeOfTheAr0134_endsWell(self):
        with self.program_in_room(camera="arducam") as (room, hand):
            room.wait_log(CONNECTED, PATIENCE)
            live = room.instrument.ask("state")["camera"]["exposures"] + 5
            room.wait_for(
                "the live loop", lambda: room.instrument.ask("state")["camera"]["exposures"] >= live, PATIENCE)
            self.leave(room, hand)
            self.assertEqual(room.board_lines(), BRING_UP + WAY_OUT)
            self.assertFalse(room.instrument.ask("state")["camera"]["open"])

    def test_resetProgram_isCalledOnceBeforeTheWindow(self):
        with self.program_in_room() as (room, hand):
            hand.wait_window(PATIENCE)
            self.assertEqual([call.split()[0] for call in room.stub_calls()][:1], ["Reset_BaslerCamera"])
            room.wait_log(CONNECTED, PATIENCE)
            self.assertEqual(sum(call.startswith("Reset_BaslerCamera") for call in room.stub_calls()), 1)

    def test_start_logsTheBuildRecordsOfTheProgramOneByOne(self):
        program = Path(os.environ["QR9_BUILD"]) / "app/VerifierQR9"
        section = subprocess.run(
            ["readelf", "-p", "ZR_META", program], check=True, capture_output=True, text=True).stdout
        records = dict(re.findall(r"(\w+)=(\S+)", section))
        with self.program_in_room() as (room, _):
            room.wait_log(CONNECTED, PATIENCE)
            lines = [line.partition("=") for line in room.program.log().splitlines()]
            logged = [(name, value) for name, _, value in lines if name in records]
        expected = ["VERSION", "BASE_VERSION", "BUILD_DATE", "BASE_SVN_REV"]
        self.assertEqual(logged, [(name, records[name]) for name in expected])

    def test_missingSettingsFile_holdsAfterwardsOnlyWhatTheConnectionWrites(self):
        with self.program_in_room() as (room, _):
            room.wait_log(CONNECTED, PATIENCE)
            firmware = room.instrument.ask("truth")["truth"]["firmware"]
            groups = read_ini(room.home / "TAVO_QR9.ini")
            groups = {name: keys for name, keys in groups.items() if keys}
            self.assertEqual(
                groups, {"Calibration": {"Prisma offset": "0"}, "Software": {"Version FW": firmware}}
            )

    def test_settingsFile_givesReferenceAndLight(self):
        settings = "[Calibration]\nZ ref 2ch=30123\n[Ch. BF]\nLED1=21\nLED2=22\n"
        with tempfile.TemporaryDirectory() as folder:
            ini = Path(folder) / "unit.ini"
            ini.write_text(settings)
            with self.program_in_room(ini=ini) as (room, _):
                room.wait_log(CONNECTED, PATIENCE)
                lines = room.board_lines()
        self.assertIn("$Z#STAGE ABS 30123", lines)
        self.assertIn("$A#LED BRT1 21 22", lines)

    def test_connectButton_runsTheWholeSequenceAgain(self):
        with self.program_in_room() as (room, hand):
            behind = room.wait_log(CONNECTED, PATIENCE)
            hand.click("pushButton_CONNECT")
            room.wait_log(CONNECTED, PATIENCE, begin=behind)
            self.assertEqual(room.board_lines(), BRING_UP + BRING_UP)
            self.leave(room, hand)


if __name__ == "__main__":
    main()
