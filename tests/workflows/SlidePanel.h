#pragma once

#include "tests/workflows/Desk.h"

#include <QSignalSpy>

/// The technician's hand on the slide controls of the Stage page, and what can be seen of them. It is made
/// for a connected desk, which must outlive it.
class SlidePanel {
public:
    explicit SlidePanel(Desk& desk);

    /// Brings a slide of this type in from any state of the panel, and waits until it is there.
    bool insert(int type);
    bool eject();
    /// Each presses and waits for the end of the move.
    bool move(const char* button);
    bool changeChannel(int column);

    /// A double click on the map, as far as a hand can reach it.
    bool doubleClick(int column);
    /// Runs the event loop until so many X moves have ended since the panel was made.
    bool waitForMoves(int count);
    int moves() const { return m_moved.count(); }

    /// Which of Insert, Eject, Combo, Prev, Next, Map a hand can use.
    QString enabled();
    /// One letter for each cell of the map: "r" red, "w" white, "?" anything else.
    QString cells();
    QString field() { return m_desk.text("lineEdit_FIELD_CURRENT"); }

private:
    Desk& m_desk;
    QSignalSpy m_moved;
};
