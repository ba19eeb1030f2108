#include "app/MainWindow.h"

#include "storage/CSVReaderWriter.h"
#include "storage/ImReaderWriter.h"

#include <QDebug>
#include <QDir>

namespace {

constexpr unsigned long kMaxTableRows = 100;

} // namespace

QString MainWindow::debugFolder(const AutofocusStep& step) const
{
    return m_strAutofocusing + "/" + step.folder;
}

void MainWindow::saveDebugFrame(const AutofocusStep& step, int width, int height, double value) const
{
    const QString folder = debugFolder(step);
    if (!QDir(folder).exists())
        QDir().mkdir(folder);
    const QString name = QString("%1_%2_z%3_f%4.tif")
                             .arg(step.folder)
                             .arg(m_autofocusCount, 2, 10, QChar('0'))
                             .arg(m_autofocusPos)
                             .arg(value);
    std::string file = (folder + "/" + name).toStdString();
    std::string description;
    general::ImReaderWriter writer;
    writer.load(m_pImageBuffer, static_cast<unsigned>(width), static_cast<unsigned>(height), 8, 1,
        general::kCompressionLzw, general::kPhotometricMinIsBlack);
    if (!writer.write(file, description))
        qDebug() << Q_FUNC_INFO << "save fail" << file.c_str();
}

void MainWindow::saveDebugTable(const AutofocusStep& step, std::size_t best) const
{
    CSVReaderWriter table(kMaxTableRows, "%s", "index, focus position, focus value");
    std::size_t index = 0;
    for (const auto& [position, value] : m_autoFocus.m_samples) {
        QString line = QString("%1, %2, %3").arg(index + 1).arg(position).arg(value);
        if (index == best)
            line += ", Best focus";
        table.fillDataField("%s", line.toStdString().c_str());
        ++index;
    }
    const QString file = debugFolder(step) + "/" + step.folder + "_debug.csv";
    table.write(file.toStdString().c_str());
}
