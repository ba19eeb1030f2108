"""What can go wrong with a room itself, apart from the program that runs in it."""


class RoomError(Exception):
    """The room could not be built or did not do what was asked; the text is for the person at the desk."""


class NoRooms(RoomError):
    """This machine has no bubblewrap or forbids user namespaces, so that no room can be had at all."""


class TooLate(RoomError):
    """Evidence that was waited for did not show up within its limit."""
