#include "storage/ImReaderWriter.h"
#include "tests/workflows/FocusTest.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QTemporaryDir>

/// The pictures and tables of a focus search that is watched.
class tst_autofocus_debug : public FocusTest {
    Q_OBJECT

private slots:
    void debugFolder_holdsPicturesAndTables();
    void debugFolderUsedTwice_isWrittenOver();
    void cancelledDialog_runsWithoutDebugOutput();
};

void tst_autofocus_debug::debugFolder_holdsPicturesAndTables()
{
    QTemporaryDir folder;
    watchInto(folder.path());
    QVERIFY(run());
    QVERIFY(m_desk->log.contains("m_strAutofocusing:"));

    const struct {
        const char* name;
        int frames;
        int first;
        int distance;
    } steps[] = { { "step1", 15, 32000 + 3220, 460 }, { "step2", 7, stored("[1]") + 345, 115 } };
    for (const auto& scan : steps) {
        const QDir output(folder.filePath(scan.name));
        const QStringList pictures = output.entryList({ "*.tif" }, QDir::Files, QDir::Name);
        QCOMPARE(pictures.size(), scan.frames);
        QFile table(output.filePath(QString(scan.name) + "_debug.csv"));
        QVERIFY(table.open(QIODevice::ReadOnly));
        const QStringList lines = QString(table.readAll()).split("\n");
        QCOMPARE(lines.size(), scan.frames + 1);
        QCOMPARE(lines[0], QString("index, focus position, focus value"));
        QCOMPARE(lines.filter(", Best focus").size(), 1);
        for (int i = 0; i < scan.frames; ++i) {
            const int position = scan.first - i * scan.distance;
            const QString value = lines[i + 1].split(", ")[2];
            QVERIFY(lines[i + 1].startsWith(QString("%1, %2, ").arg(i + 1).arg(position)));
            QCOMPARE(pictures[i],
                QString("%1_%2_z%3_f%4.tif")
                    .arg(scan.name)
                    .arg(i + 1, 2, 10, QChar('0'))
                    .arg(position)
                    .arg(value));
            // One frame of grey bytes, and the very one that was measured.
            std::string path = output.filePath(pictures[i]).toStdString();
            general::ImReaderWriter picture;
            QCOMPARE(picture.read(path), 1);
            auto* const pixels = static_cast<uchar*>(picture.data(8));
            QVERIFY(pixels != nullptr);
            const double again = alg_autoFocus().get_focusValue(ALG_FOCUS_LAPLACIAN, pixels, 1280, 960);
            QCOMPARE(QString("%1").arg(again), value);
        }
    }
}

void tst_autofocus_debug::debugFolderUsedTwice_isWrittenOver()
{
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("step2"));
    QFile old(folder.filePath("step2/step2_debug.csv"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(10000, 'x'));
    old.close();
    watchInto(folder.path());
    QVERIFY(runFine());
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll().split('\n').size(), 8);
    QVERIFY(!QDir(folder.filePath("step1")).exists());
}

void tst_autofocus_debug::cancelledDialog_runsWithoutDebugOutput()
{
    m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG")->setChecked(true);
    m_desk->boxes.handleNext([](QDialog& dialog) { dialog.reject(); });
    QVERIFY(runFine());
    QVERIFY(!m_desk->log.contains("m_strAutofocusing:"));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish auto focusing !"));
}

WORKFLOW_MAIN(tst_autofocus_debug)
#include "tst_autofocus_debug.moc"
