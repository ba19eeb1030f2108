"""The exit button in the middle of a calibration: the tabs do not cover it."""

from whole_case import CONNECTED, PATIENCE, WAY_OUT, WholeCase, main, read_ini

RUN = "$Z#STAGE RUN"


class Leaving(WholeCase):
    def leave_in_the_first_search(self, page, button):
        """Presses `button`, and exit while its focus search walks; returns what the board was sent from then on."""
        with self.program_in_room() as (room, hand):
            room.wait_log(CONNECTED, PATIENCE)
            hand.wait_shown("pushButton_EXIT", PATIENCE)
            hand.open_page(page)
            hand.click(button)
            # The search walks 15 frames at first; there is time for a hand on its way to the exit button.
            room.wait_for("the search", lambda: room.board_lines().count(RUN) >= 3, PATIENCE)
            before = read_ini(room.home / "TAVO_QR9.ini")
            self.leave(room, hand)
            self.assertEqual(read_ini(room.home / "TAVO_QR9.ini"), before)
            lines = room.board_lines()
        last_move = len(lines) - lines[::-1].index(RUN)
        return lines[last_move:]

    def test_exitDuringAPixelShiftRun_sendsNothingMoreAndEndsWell(self):
        self.assertEqual(self.leave_in_the_first_search("TAB_QC2", "pushButton_PIXEL_SHIFT"), WAY_OUT)

    def test_exitDuringTheSlopeCalibration_storesNothingAndEndsWell(self):
        self.assertEqual(self.leave_in_the_first_search("TAB_STAGE", "pushButton_REFERENCE_Z_SLOPE"), WAY_OUT)


if __name__ == "__main__":
    main()
