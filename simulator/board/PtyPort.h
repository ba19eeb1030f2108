#pragma once

#include "simulator/io/FdStream.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

namespace qr9::sim {

/// One serial port of the instrument: the master of a pseudo-terminal whose slave the program opens.
/// The slave is kept open here too, so that the master sees no error while no program has it, and it is in
/// raw mode before anyone can write: otherwise the line would echo. Thread: main. Owner: BoardServer.
class PtyPort : public QObject {
    Q_OBJECT

public:
    explicit PtyPort(QObject* parent = nullptr);
    ~PtyPort() override;

    /// \returns an empty text, or why no pseudo-terminal could be made
    QString open();

    /// Name of the slave, "/dev/pts/5".
    QString name() const { return m_name; }

    void write(const QByteArray& bytes);

signals:
    void sig_received(const QByteArray& bytes);

private:
    int m_slave = -1;
    QString m_name;
    std::unique_ptr<FdStream> m_pMaster;
};

} // namespace qr9::sim
