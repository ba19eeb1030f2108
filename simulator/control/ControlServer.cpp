#include "simulator/control/ControlServer.h"

#include "simulator/control/ControlCommands.h"
#include "simulator/io/FdStream.h"

#include <QJsonDocument>

#include <memory>

namespace qr9::sim {

ControlServer::ControlServer(Instrument& instrument, QObject* parent)
    : QObject(parent)
    , m_instrument(instrument)
{
    connect(&m_listener, &UnixListener::sig_connected, this, &ControlServer::serve);
}

QString ControlServer::listen(const QString& path)
{
    return m_listener.listen(path);
}

void ControlServer::serve(int fd)
{
    auto* pClient = new FdStream(fd, this);
    connect(pClient, &FdStream::sig_closed, pClient, &QObject::deleteLater);
    connect(pClient, &FdStream::sig_received, this,
        [this, pClient, pending = std::make_shared<QByteArray>()](const QByteArray& bytes) {
            pending->append(bytes);
            for (int end = pending->indexOf('\n'); end >= 0; end = pending->indexOf('\n')) {
                const QByteArray line = pending->left(end);
                pending->remove(0, end + 1);
                pClient->write(answer(line));
            }
            if (pending->size() > kLongestRequest) {
                pClient->close();
                pClient->deleteLater();
            }
        });
}

QByteArray ControlServer::answer(const QByteArray& line)
{
    QJsonParseError error;
    const QJsonDocument request = QJsonDocument::fromJson(line, &error);
    const QJsonObject reply = request.isObject()
        ? runControlCommand(m_instrument, request.object())
        : QJsonObject { { "ok", false }, { "error", "not a JSON object: " + error.errorString() } };
    return QJsonDocument(reply).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace qr9::sim
