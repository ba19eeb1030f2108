"""Where the widgets of the form stand on the screen, read from the form's own file."""

import xml.etree.ElementTree as xml
from dataclasses import dataclass
from pathlib import Path

from .errors import RoomError
from .options import REPOSITORY

FORM = REPOSITORY / "app/MainWindow.ui"
# How Qt's Fusion style draws a tab widget with the form's font of 11 points in a room: where a page begins in
# the widget, and how wide the tabs are, from the left.
PAGE_BEGIN = (2, 30)
TAB_HEIGHT = 30
TAB_WIDTHS = {
    "TAB_STAGE": 69, "TAB_LIGHT": 63, "TAB_QC1": 76, "TAB_QC2": 76, "TAB_OPTION": 76, "TAB_DEBUG": 75,
}


@dataclass(frozen=True)
class Place:
    """A rectangle on the screen, in pixels."""

    x: int
    y: int
    width: int
    height: int

    @property
    def centre(self):
        return self.x + self.width // 2, self.y + self.height // 2


class Form:
    """Places of all widgets by object name."""

    def __init__(self, path=FORM):
        self._places = {}
        window = xml.parse(Path(path)).getroot().find("widget")
        for child in window.findall("widget"):
            self._walk(child, 0, 0)

    def place(self, name):
        """The place of a widget; raises RoomError when the form has none of that name."""
        if name not in self._places:
            raise RoomError(f'the form has no widget "{name}"')
        return self._places[name]

    def tab(self, page):
        """The place of the tab that opens a page."""
        bar = self.place("tabWidget_CONTROLLER")
        left = bar.x
        for name, width in TAB_WIDTHS.items():
            if name == page:
                return Place(left, bar.y, width, TAB_HEIGHT)
            left += width
        raise RoomError(f'the form has no page "{page}"')

    def _walk(self, widget, left, top):
        rectangle = widget.find("property[@name='geometry']/rect")
        if rectangle is not None:
            x, y, width, height = (int(rectangle.findtext(key)) for key in ("x", "y", "width", "height"))
            left, top = left + x, top + y
            self._places[widget.get("name")] = Place(left, top, width, height)
        if widget.get("class") == "QTabWidget":
            left, top = left + PAGE_BEGIN[0], top + PAGE_BEGIN[1]
        for child in widget.findall("widget"):
            self._walk(child, left, top)
