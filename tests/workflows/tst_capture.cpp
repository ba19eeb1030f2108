#include "camera/framedelivery.h"
#include "tests/storage/StickShelf.h"
#include "tests/support/program_output.h"
#include "tests/workflows/CapturePanel.h"

#include <QElapsedTimer>
#include <QFileDialog>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <numeric>

/// Pictures of the channels as files.
class tst_capture : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void threeChannels_areThreeColourFiles();
    void planes_areTheFrameToThePixel();
    void noBoxTicked_writesNothingAndStillFinishes();
    void cancelledDialog_endsWithoutMessage();
    void dialog_asksForTheNameOfATiffFile();
    void name_getsTheSuffixBehindIt_data();
    void name_getsTheSuffixBehindIt();

    void frame_isTakenOneExposureAndAQuarterSecondBehindTheLight();
    void window_staysLiveDuringTheSequence();
    void folderThatCannotBeWritten_isLoggedAndTheSequenceGoesOn();
    void lightStaysOnTheLastChannel();

private:
    std::unique_ptr<StickShelf> m_shelf;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<CapturePanel> m_panel;
    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

/// One plane of the file, read by another program than ours.
QByteArray planeOf(const QString& file, const char* plane)
{
    return outputOf("convert", { file, "-channel", plane, "-separate", "-depth", "8", "gray:-" });
}

/// The newest frame stays: the source takes no more of them.
void holdTheFrame()
{
    FrameDelivery* source = FrameDelivery::m_pInstance;
    QSignalSpy frames(source, &FrameDelivery::sig_imgReady);
    source->setAutoTriggeringMode(false);
    QTRY_VERIFY(!source->getAutoTriggeringMode());
    while (frames.wait(patience::limit(500))) { }
}

} // namespace

void tst_capture::init()
{
    Desk::removeSettings();
    m_shelf.reset(new StickShelf);
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.set("x", 30931));
    m_panel.reset(new CapturePanel(*m_desk));
    m_folder.reset(new QTemporaryDir);
}

void tst_capture::cleanup()
{
    m_panel.reset();
    m_desk.reset();
    m_shelf.reset();
}

void tst_capture::threeChannels_areThreeColourFiles()
{
    m_panel->tick(true, true, true);
    m_panel->nameNext(m_folder->filePath("unit"));
    QHash<QString, QByteArray> frames;
    int saved = 0;
    connect(&m_desk->window(), &MainWindow::sig_finish_save_ImageGrabbed, this, [&] { ++saved; });
    const int mark = m_desk->rig.mark();
    QVERIFY(m_panel->capture());
    QCOMPARE(saved, 3);
    QCOMPARE(m_desk->boxes.boxes().size(), 2);
    QCOMPARE(m_desk->boxes.boxes()[0].title, QString("Save Image"));
    QCOMPARE(m_desk->boxes.boxes()[1].title, QString("Info"));
    QCOMPARE(m_desk->boxes.boxes()[1].text, QString("finish save Image !"));
    QCOMPARE(m_desk->rig.sentSince(mark),
        QStringList({ "$A#LED BRT1 7 6", "$A#FILTER GO 1", "$A#LED BRT2 300", "$A#FILTER GO 2",
            "$A#LED BRT3 350", "$A#FILTER GO 3" }));
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save done").size(), 3);

    const QByteArray black(1280 * 960, '\0');
    for (const QString channel : { "BF", "GFP", "RFP" }) {
        const QString file = m_folder->filePath("unit_" + channel + ".tif");
        const QString tags = outputOf("tiffinfo", { file });
        QVERIFY2(tags.contains("Image Width: 1280 Image Length: 960"), qPrintable(tags));
        QVERIFY(tags.contains("Bits/Sample: 8"));
        QVERIFY(tags.contains("Samples/Pixel: 3"));
        QVERIFY(tags.contains("Compression Scheme: LZW"));
        QVERIFY(tags.contains("Photometric Interpretation: RGB color"));
        QVERIFY(tags.contains("Planar Configuration: single image plane"));
        QVERIFY(!tags.contains("ImageDescription"));
        QVERIFY(outputOf("tiffinfo", { "-s", file }).contains("1 Strips"));
        const QByteArray red = planeOf(file, "R");
        const QByteArray green = planeOf(file, "G");
        const QByteArray blue = planeOf(file, "B");
        QCOMPARE(red.size(), black.size());
        QCOMPARE(red == black, channel == "GFP");
        QCOMPARE(green == black, channel == "RFP");
        QCOMPARE(blue == black, channel != "BF");
        if (channel == "BF")
            QVERIFY(red == green && green == blue);
        frames[channel] = channel == "GFP" ? green : red;
    }
    // The last channel's frame is the one in the source's hands for at least one more exposure: its picture
    // differs from the others, and holds bright cells on a dark ground.
    QVERIFY(frames["GFP"] != frames["RFP"]);
    const auto mean = [](const QByteArray& bytes) {
        return std::accumulate(bytes.begin(), bytes.end(), 0.0, [](double sum, char grey) {
            return sum + static_cast<unsigned char>(grey);
        }) / bytes.size();
    };
    QVERIFY(mean(frames["BF"]) > 100.0);
    QVERIFY(mean(frames["GFP"]) < 60.0);
    QVERIFY(mean(frames["RFP"]) < 60.0);
}

void tst_capture::planes_areTheFrameToThePixel()
{
    holdTheFrame();
    const auto grab = [this] {
        return QByteArray(reinterpret_cast<char*>(m_desk->window().basler_camera_grab()), 1280 * 960);
    };
    const QByteArray frame = grab();
    QVERIFY(frame != QByteArray(1280 * 960, frame[0]));
    m_panel->tick(true, true, true);
    m_panel->nameNext(m_folder->filePath("unit"));
    QVERIFY(m_panel->capture());
    QCOMPARE(grab(), frame); // no other frame has come in between

    const QByteArray zero(1280 * 960, '\0');
    for (const QString channel : { "BF", "GFP", "RFP" }) {
        const QString file = m_folder->filePath("unit_" + channel + ".tif");
        QVERIFY(planeOf(file, "R") == (channel == "GFP" ? zero : frame));
        QVERIFY(planeOf(file, "G") == (channel == "RFP" ? zero : frame));
        QVERIFY(planeOf(file, "B") == (channel == "BF" ? frame : zero));
    }
}

void tst_capture::noBoxTicked_writesNothingAndStillFinishes()
{
    m_panel->tick(false, false, false);
    m_panel->nameNext(m_folder->filePath("unit"));
    const int mark = m_desk->rig.mark();
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->boxes.boxes().size(), 2);
    QCOMPARE(m_desk->boxes.boxes()[0].title, QString("Save Image"));
    QCOMPARE(m_desk->boxes.boxes()[1].text, QString("finish save Image !"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
    QVERIFY(!m_desk->log.contains("[save_grabImage]"));
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void tst_capture::cancelledDialog_endsWithoutMessage()
{
    m_panel->tick(true, true, true);
    m_panel->cancelNext();
    const int mark = m_desk->rig.mark();
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->boxes.boxes().size(), 1);
    QCOMPARE(m_desk->boxes.boxes()[0].title, QString("Save Image"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
    QVERIFY(!m_desk->log.contains("[save_grabImage]"));
}

void tst_capture::dialog_asksForTheNameOfATiffFile()
{
    bool isSave = false;
    QStringList filters;
    m_desk->boxes.lookAtEach([&](QDialog& dialog) {
        if (const auto* files = qobject_cast<QFileDialog*>(&dialog)) {
            isSave = files->acceptMode() == QFileDialog::AcceptSave;
            filters = files->nameFilters();
        }
    });
    m_panel->cancelNext();
    QVERIFY(m_panel->capture());
    QVERIFY(isSave);
    QCOMPARE(filters, QStringList("TIFF Image (*.tif)"));
}

void tst_capture::name_getsTheSuffixBehindIt_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::newRow("with an extension") << "a.tif"
                                       << "a.tif_BF.tif";
    QTest::newRow("without an extension") << "a"
                                          << "a_BF.tif";
    QTest::newRow("blanks and letters beyond ASCII")
        << QString::fromUtf8("Zelle \u00b5 1") << QString::fromUtf8("Zelle \u00b5 1_BF.tif");
}

void tst_capture::name_getsTheSuffixBehindIt()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    m_panel->tick(true, false, false);
    m_panel->nameNext(m_folder->filePath(name));
    QVERIFY(m_panel->capture());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList(file));
}

void tst_capture::frame_isTakenOneExposureAndAQuarterSecondBehindTheLight()
{
    // The exposure is that of the new channel, and not what stood in the box before.
    m_desk.reset();
    Desk::putSettings("[Ch.%20GFP]\nExposure=700\n");
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_panel.reset(new CapturePanel(*m_desk));
    m_panel->tick(false, true, false);
    m_panel->nameNext(m_folder->filePath("unit"));
    QElapsedTimer sinceTheName;
    m_desk->boxes.lookAtEach([&](QDialog&) {
        if (!sinceTheName.isValid())
            sinceTheName.start();
    });
    qint64 ms = 0;
    connect(&m_desk->window(), &MainWindow::sig_finish_save_ImageGrabbed, this,
        [&] { ms = sinceTheName.elapsed(); });
    QVERIFY(m_panel->capture());
    QVERIFY2(ms >= 950, qPrintable(QString::number(ms)));
}

void tst_capture::window_staysLiveDuringTheSequence()
{
    m_panel->tick(true, false, false);
    m_panel->nameNext(m_folder->filePath("unit"));
    bool wasLive = false;
    m_desk->boxes.lookAtEach([&](QDialog& dialog) {
        if (qobject_cast<QFileDialog*>(&dialog) != nullptr) {
            // Behind the dialog, and well before the frame is taken.
            connect(&dialog, &QDialog::finished, &m_desk->window(), [&] {
                patience::later(50, &m_desk->window(), [&] {
                    wasLive = hand::isReachable(m_desk->window(), "pushButton_CAPTURE")
                        && hand::isReachable(m_desk->window(), "pushButton_UNMOUNT")
                        && hand::isReachable(m_desk->window(), "checkBox_CAPTURE_GFP")
                        && !m_desk->log.contains("[save_grabImage]");
                });
            });
        }
    });
    QVERIFY(m_panel->capture());
    QVERIFY(wasLive);
}

void tst_capture::folderThatCannotBeWritten_isLoggedAndTheSequenceGoesOn()
{
    m_panel->tick(true, true, false);
    m_panel->nameNext("/proc/no such folder/unit");
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save fail").size(), 2);
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
}

void tst_capture::lightStaysOnTheLastChannel()
{
    m_panel->tick(true, true, false);
    m_panel->nameNext(m_folder->filePath("unit"));
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
    QCOMPARE(m_desk->style("pushButton_ILLUMINATION_GFP"),
        QString("font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)"));
}

WORKFLOW_MAIN(tst_capture)
#include "tst_capture.moc"
