"""A picture of each page of the window at the end of the day."""

TITLE = "Pages"
PAGES = ("STAGE", "LIGHT", "QC1", "QC2", "OPTION", "DEBUG")


def run(day):
    seen = set()
    for page in PAGES:
        day.hand.open_page(f"TAB_{page}")
        before = frozenset(seen)
        # A page that has come up looks like none of those before.
        day.room.wait_for(
            f"the page {page}", lambda before=before: _look(day) not in before, 5
        )
        seen.add(_look(day))
        day.screenshot(f"page-{page.lower()}")
    day.table.same("pages seen", len(PAGES), len(seen))


def _look(day):
    return bytes(day.hand.picture_of("tabWidget_CONTROLLER").greys())
