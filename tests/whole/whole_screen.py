"""The program on a screen with twice the usual number of pixels to the inch."""

from whole_case import CONNECTED, PATIENCE, WholeCase, main

FORM = (1024, 600)
USUAL, DOUBLE = "96", "192"  # pixels to the inch


class Screen(WholeCase):
    def size_of_window(self, dots):
        """Width and height of the window in pixels of the screen."""
        with self.program_in_room(environment={"QT_FONT_DPI": dots}) as (room, hand):
            window = hand.wait_window(PATIENCE)
            room.wait_log(CONNECTED, PATIENCE)
            return room.screen.geometry(window)[2:]

    def test_usualScreen_showsTheFormPixelByPixel(self):
        self.assertEqual(self.size_of_window(USUAL), FORM)

    def test_fineScreen_showsTheFormInTwiceThePixels(self):
        self.assertEqual(self.size_of_window(DOUBLE), (2 * FORM[0], 2 * FORM[1]))


if __name__ == "__main__":
    main()
