"""A technician's hand on the program's window: widgets by their names in the form, boxes by their titles."""

from .form import Form
from .waiting import wait_for

WINDOW = "TAVO-QR9 Verifier"
# Middle of the one button of a message box, from the box's lower right corner, in pixels.
BOX_BUTTON = (50, 24)


class Technician:
    """Works on the screen of a room whose program has been launched."""

    def __init__(self, room):
        self._room = room
        self._screen = room.screen
        self.form = Form()

    def wait_window(self, limit=15):
        """Waits until the program's window is on the screen."""
        return self._room.wait_window(WINDOW, limit)

    def click(self, widget):
        """Clicks into the middle of a widget of the form, whose page must be open."""
        self._screen.click(*self.form.place(widget).centre)

    def wait_shown(self, widget, limit):
        """Waits until a widget that had been hidden is seen: its place is no longer of one colour."""
        self._room.wait_for(
            f'"{widget}" to be shown', lambda: self.picture_of(widget).mean_and_deviation()[1] > 0, limit
        )

    def double_click_cell(self, table, column, columns):
        """Double-clicks a cell of a table of one row and `columns` columns of the same width."""
        place = self.form.place(table)
        x = place.x + place.width * (2 * column + 1) // (2 * columns)
        self._screen.click(x, place.centre[1], count=2)

    def open_page(self, page):
        """Opens a page of the tab widget by its tab."""
        self._screen.click(*self.form.tab(page).centre)

    def enter(self, field, text):
        """Replaces the content of an edit field or spin box and ends the entry."""
        self._screen.click(*self.form.place(field).centre, count=3)
        self._screen.key("ctrl+a")
        self._screen.type(text)
        # With the cursor at its end nothing is left selected.
        self._screen.key("Return", "End")

    def acknowledge(self, title, limit):
        """Waits for a message box and presses its button. Returns when the box has closed."""
        box = self._room.wait_window(title, limit)

        # A box that has just been mapped moves to its place; what counts is where it comes to rest.
        def at_rest():
            before = self._screen.geometry(box)
            return before and before == self._screen.geometry(box) and before

        x, y, width, height = wait_for(f'the box "{title}" to stand still', at_rest, 5)
        self._screen.click(x + width - BOX_BUTTON[0], y + height - BOX_BUTTON[1])
        self._screen.wait_no_window(box)

    def picture_of(self, widget):
        """What the screen shows of a widget now."""
        place = self.form.place(widget)
        return self._screen.picture().part(place.x, place.y, place.width, place.height)
