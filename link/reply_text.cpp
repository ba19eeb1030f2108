#include "link/reply_text.h"

namespace {

constexpr char kVersionReply[] = "$OK#A#VER";
constexpr char kLineEnd[] = "\r\n";

} // namespace

bool reply_text::isComplete(const QByteArray& bytes)
{
    return bytes.endsWith(kLineEnd);
}

QByteArray reply_text::take(QByteArray& buffer, const QByteArray& received)
{
    buffer.append(received);
    if (!isComplete(buffer)) {
        return {};
    }
    QByteArray reply = buffer;
    buffer.clear();
    return reply;
}

bool reply_text::isFromBoard(const QByteArray& reply)
{
    return reply.contains(kVersionReply);
}

QString reply_text::upToNul(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData());
}
