#pragma once

#include "link/Controller.h"
#include "tests/link/PseudoPort.h"

#include <QByteArray>
#include <QList>
#include <QSignalSpy>
#include <QStringList>

/// A literal with NUL bytes in it.
template <int Size> QByteArray literal(const char (&text)[Size])
{
    return QByteArray(text, Size - 1);
}

/// A controller on a port whose other end the test holds.
struct Link {
    PseudoPort board;
    Controller controller;
    QSignalSpy replies { &controller, &Controller::sig_parsing_protocol_Controller };

    Link();

    /// The reply texts that the controller has delivered.
    QStringList texts() const;

    /// Sends each piece only when the one before has been read, so that a piece is a read. False when one
    /// never is.
    bool sendInPieces(const QList<QByteArray>& pieces);

private:
    int bytesRead() const;
};
