#pragma once

#include <QFile>
#include <QString>

namespace qr9::sim {

/// When exposures began and when their pictures went out, line by line in "camera.log", for who measures how
/// long the program takes between them: `<us> trigger <number>` and `<us> frame <number>`. The time is that
/// of the machine's monotonic clock, so that it can be compared with what others see. Thread: main. Owner:
/// Instrument.
class CameraLog {
public:
    /// \returns an empty text, or why the file cannot be written
    QString open(const QString& file);

    /// The program's trigger was taken.
    void triggered(quint64 number);
    /// The picture of an exposure begins to go out.
    void sent(quint64 number);

private:
    void add(const char* event, quint64 number);

    QFile m_file;
};

} // namespace qr9::sim
