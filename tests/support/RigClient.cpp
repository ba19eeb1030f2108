#include "tests/support/RigClient.h"

#include "tests/support/patience.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

namespace {

constexpr int kAnswerMs = 5000;

QJsonObject failure(const QString& error)
{
    return { { "ok", false }, { "error", error } };
}

QJsonObject withoutVerdict(QJsonObject answer)
{
    if (!answer.value("ok").toBool())
        return {};
    answer.remove("ok");
    return answer;
}

} // namespace

RigClient::RigClient(QString path)
    : m_path(std::move(path))
{
}

bool RigClient::connectToRig()
{
    if (m_socket.state() == QLocalSocket::ConnectedState)
        return true;
    m_socket.connectToServer(m_path);
    return m_socket.waitForConnected(patience::limit(kAnswerMs));
}

QJsonObject RigClient::request(const QJsonObject& request)
{
    if (!connectToRig())
        return failure(m_socket.errorString());
    m_socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    m_socket.flush();

    QElapsedTimer clock;
    clock.start();
    while (!m_socket.canReadLine()) {
        const int left = patience::limit(kAnswerMs) - static_cast<int>(clock.elapsed());
        if (left <= 0 || !m_socket.waitForReadyRead(left)) {
            // A late answer must not be taken for that of the next request.
            m_socket.abort();
            return failure("no answer");
        }
    }
    return QJsonDocument::fromJson(m_socket.readLine()).object();
}

QJsonObject RigClient::truth()
{
    return request({ { "cmd", "truth" } }).value("truth").toObject();
}

QJsonObject RigClient::state()
{
    return withoutVerdict(request({ { "cmd", "state" } }));
}

int RigClient::mark()
{
    return request({ { "cmd", "transcript" }, { "from", 0 } }).value("next").toInt();
}

QStringList RigClient::sentSince(int mark)
{
    return linesSince(mark, ">", false);
}

QStringList RigClient::answeredSince(int mark)
{
    return linesSince(mark, "<", false);
}

QStringList RigClient::transcriptSince(int mark)
{
    return linesSince(mark, {}, true);
}

bool RigClient::waitForSent(const QString& line, int mark, int ms)
{
    return patience::waitFor([this, line, mark] { return sentSince(mark).contains(line); }, ms);
}

bool RigClient::fault(const QString& name, const QString& match, int count, const QJsonValue& value)
{
    QJsonObject request { { "cmd", "fault" }, { "name", name }, { "count", count } };
    if (!match.isEmpty())
        request.insert("match", match);
    if (!value.isNull() && !value.isUndefined())
        request.insert("value", value);
    return succeeds(request);
}

bool RigClient::clearFaults()
{
    return succeeds({ { "cmd", "clearFaults" } });
}

bool RigClient::set(const QString& key, const QJsonValue& value)
{
    return succeeds({ { "cmd", "set" }, { "key", key }, { "value", value } });
}

bool RigClient::say(const QString& text)
{
    return succeeds({ { "cmd", "say" }, { "text", text } });
}

QStringList RigClient::linesSince(int mark, const QString& direction, bool marked)
{
    QStringList lines;
    const QJsonArray entries
        = request({ { "cmd", "transcript" }, { "from", mark } }).value("lines").toArray();
    for (const QJsonValue& entry : entries) {
        const QString dir = entry.toObject().value("dir").toString();
        const QString text = entry.toObject().value("text").toString();
        if (direction.isEmpty() || dir == direction)
            lines.append(marked ? dir + ' ' + text : text);
    }
    return lines;
}

bool RigClient::succeeds(const QJsonObject& request)
{
    const QJsonObject answer = this->request(request);
    if (!answer.value("ok").toBool())
        qWarning() << "the virtual instrument refused" << request << "with" << answer;
    return answer.value("ok").toBool();
}
