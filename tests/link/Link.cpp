#include "tests/link/Link.h"

#include <QCoreApplication>
#include <QElapsedTimer>

Link::Link()
{
    controller.m_serialPort->setPortName(board.name());
    if (!controller.m_serialPort->open(QIODevice::ReadWrite)) {
        qFatal("%s does not open: %s", qPrintable(board.name()),
            qPrintable(controller.m_serialPort->errorString()));
    }
}

QStringList Link::texts() const
{
    QStringList all;
    for (const QList<QVariant>& arguments : replies) {
        all << arguments.at(0).toString();
    }
    return all;
}

bool Link::sendInPieces(const QList<QByteArray>& pieces)
{
    int expected = bytesRead();
    for (const QByteArray& piece : pieces) {
        board.send(piece);
        expected += piece.size();
        QElapsedTimer clock;
        clock.start();
        while (bytesRead() != expected) {
            if (clock.hasExpired(5000)) {
                return false;
            }
            QCoreApplication::processEvents();
        }
    }
    return true;
}

int Link::bytesRead() const
{
    return texts().join(QString()).size() + controller.m_readBuffer.size();
}
