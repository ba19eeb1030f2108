#pragma once

#include <QByteArray>
#include <QString>

/// How the bytes of the serial line become reply texts. Plain functions without a state, for any thread.
namespace reply_text {

/// Whether a reply ends at the very end of the bytes: in "\r\n", and not in "\n" alone.
bool isComplete(const QByteArray& bytes);

/// Appends what has been read to the buffer. Once the buffer is complete it is emptied and returned whole,
/// with every reply that arrived in it; until then the result is empty.
QByteArray take(QByteArray& buffer, const QByteArray& received);

/// Whether a version reply stands somewhere in the bytes, by which the board is recognised.
bool isFromBoard(const QByteArray& reply);

/// The bytes as Latin-1, up to the first NUL byte.
QString upToNul(const QByteArray& bytes);

} // namespace reply_text
