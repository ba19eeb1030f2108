"""What a technician sees when the board, the camera or the reset program is not there."""

import time

from whole_case import BRING_UP, CONNECTED, PATIENCE, WAY_OUT, WholeCase, main


class MissingDevices(WholeCase):
    def fail_to_find_board(self, hand):
        """Acknowledges the two boxes of a failed search, one after the other."""
        hand.acknowledge("Error", PATIENCE)
        hand.acknowledge("Error", PATIENCE)

    def test_noPortAtAll_twoBoxesThenTheExitButtonEndsWell(self):
        with self.program_in_room(board=False) as (room, hand):
            self.fail_to_find_board(hand)
            self.assertIn("COM Port [Controller] not find !!!", room.program.log())
            self.leave(room, hand)
            self.assertEqual(room.board_log(), [])

    def test_portsThatDoNotAnswerOrOpen_areEachTriedAndLeft(self):
        wishes = {"board": False, "silent_ports": 2, "unopenable_port": True}
        with self.program_in_room(**wishes) as (room, hand):
            self.fail_to_find_board(hand)
            self.leave(room, hand)
            sent = [line.split(" ", 3)[1:] for line in room.board_log()]
            self.assertEqual(sent, [["0", ">", "$A#VER"], ["1", ">", "$A#VER"]])

    def test_noBoard_secondAttemptByTheButtonBehavesAsTheFirst(self):
        with self.program_in_room(board=False, silent_ports=1) as (room, hand):
            self.fail_to_find_board(hand)
            hand.click("pushButton_CONNECT")
            self.fail_to_find_board(hand)
            self.assertEqual(room.program.log().count("COM Port [Controller] not find !!!"), 2)
            self.leave(room, hand)

    def test_unopenablePortBeforeTheBoard_isPassedOver(self):
        with self.program_in_room(unopenable_port=True) as (room, hand):
            room.wait_log(CONNECTED, PATIENCE)
            self.assertIn("ttyUSB0", room.program.log())
            self.assertEqual(room.board_lines(), BRING_UP)
            self.leave(room, hand)

    def test_noCamera_threeBoxesAndTheBoardIsStillLeftInOrder(self):
        with self.program_in_room(camera="none") as (room, hand):
            # The view misses the camera before there is a window; the connection misses it, then its frames.
            hand.acknowledge("Error", PATIENCE)
            hand.wait_window(PATIENCE)
            hand.acknowledge("Error", PATIENCE)
            hand.acknowledge("Error", PATIENCE)
            hand.wait_shown("pushButton_EXIT", PATIENCE)
            self.assertNotIn(CONNECTED, room.program.log())
            # The pages are out of reach: the autofocus button does nothing.
            hand.open_page("TAB_STAGE")
            hand.click("pushButton_AUTOFOCUS")
            self.leave(room, hand)
            self.assertEqual(room.board_lines(), BRING_UP + WAY_OUT)

    def test_cameraThatCannotBeSetUp_countsAsNone(self):
        with self.program_in_room(instrument_arguments=["--missing-feature", "OverlapMode"]) as (room, hand):
            hand.acknowledge("Error", PATIENCE)
            hand.wait_window(PATIENCE)
            hand.acknowledge("Error", PATIENCE)
            hand.acknowledge("Error", PATIENCE)
            self.assertNotIn(CONNECTED, room.program.log())
            self.leave(room, hand)
            self.assertEqual(room.board_lines(), BRING_UP + WAY_OUT)

    def test_missingResetProgram_startGoesOn(self):
        with self.program_in_room(reset_program=False) as (room, hand):
            hand.wait_window(10)
            room.wait_log(CONNECTED, PATIENCE)
            self.leave(room, hand)
            self.assertEqual([call for call in room.stub_calls() if "Reset" in call], [])

    def test_hangingResetProgram_holdsTheStartFor30SecondsAtMost(self):
        launched = []

        def hang(room):
            (room.home / "Reset_BaslerCamera").write_text("#!/bin/sh\nexec sleep 600\n")
            launched.append(time.monotonic())

        with self.program_in_room(furnish=hang) as (room, hand):
            hand.wait_window(PATIENCE)
            self.assertTrue(30 <= time.monotonic() - launched[0] < 40, time.monotonic() - launched[0])
            room.wait_log(CONNECTED, PATIENCE)
            self.leave(room, hand)


if __name__ == "__main__":
    main()
