#include "tests/storage/StickShelf.h"
#include "tests/workflows/Desk.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QProcess>
#include <QTemporaryDir>

#include <numeric>

/// Pictures of the channels on a USB stick.
class tst_capture : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void threeChannels_areThreeColourFilesOnTheStick();
    void noBoxTicked_writesNothingAndStillFinishes();
    void cancelledDialog_endsWithoutMessage();
    void nameWithExtension_getsTheSuffixBehindIt();
    void folderThatCannotBeWritten_isLoggedAndTheSequenceGoesOn();
    void stickPulledDuringTheCapture_doesNotStopTheProgram();
    void unmountBeforeAnyCapture_doesNothing();
    void unmount_releasesTheStick();
    void unmountOfABusyStick_showsNothing();
    void lightStaysOnTheLastChannel();
    void stickThatIsThereAtStart_isMountedAndReleasedWithTheWindow();

private:
    void tick(bool bf, bool gfp, bool rfp);
    /// Answers the next dialog with this file name.
    void nameNext(const QString& path);
    bool capture() { return hand::click(m_desk->window(), "pushButton_CAPTURE"); }

    std::unique_ptr<StickShelf> m_shelf;
    std::unique_ptr<Desk> m_desk;
};

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

/// One plane of the file, read by another program than ours.
QByteArray planeOf(const QString& file, const char* plane)
{
    return outputOf("convert", { file, "-channel", plane, "-separate", "-depth", "8", "gray:-" });
}

} // namespace

void tst_capture::init()
{
    Desk::removeSettings();
    m_shelf.reset(new StickShelf);
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(m_desk->rig.set("x", 30931));
}

void tst_capture::cleanup()
{
    m_desk.reset();
    m_shelf.reset();
}

void tst_capture::tick(bool bf, bool gfp, bool rfp)
{
    m_desk->widget<QCheckBox>("checkBox_CAPTURE_BF")->setChecked(bf);
    m_desk->widget<QCheckBox>("checkBox_CAPTURE_GFP")->setChecked(gfp);
    m_desk->widget<QCheckBox>("checkBox_CAPTURE_RFP")->setChecked(rfp);
}

void tst_capture::nameNext(const QString& path)
{
    m_desk->boxes.handleNext([path](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        QVERIFY(files != nullptr);
        files->setDirectory(QFileInfo(path).path());
        files->selectFile(path);
        dialog.done(QDialog::Accepted);
    });
}

void tst_capture::threeChannels_areThreeColourFilesOnTheStick()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QFileInfo::exists("/media/FACTORY"); }));
    tick(true, true, true);
    nameNext("/media/FACTORY/unit");
    QHash<QString, QByteArray> frames;
    int saved = 0;
    connect(&m_desk->window(), &MainWindow::sig_finish_save_ImageGrabbed, this, [&] { ++saved; });
    const int mark = m_desk->rig.mark();
    QVERIFY(capture());
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
        const QString file = "/media/FACTORY/unit_" + channel + ".tif";
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

void tst_capture::noBoxTicked_writesNothingAndStillFinishes()
{
    QTemporaryDir folder;
    tick(false, false, false);
    nameNext(folder.filePath("unit"));
    const int mark = m_desk->rig.mark();
    QVERIFY(capture());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList());
}

void tst_capture::cancelledDialog_endsWithoutMessage()
{
    m_desk->boxes.handleNext([](QDialog& dialog) { dialog.reject(); });
    const int mark = m_desk->rig.mark();
    QVERIFY(capture());
    QCOMPARE(m_desk->boxes.boxes().size(), 1);
    QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
}

void tst_capture::nameWithExtension_getsTheSuffixBehindIt()
{
    QTemporaryDir folder;
    tick(true, false, false);
    nameNext(folder.filePath("a.tif"));
    QVERIFY(capture());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({ "a.tif_BF.tif" }));
}

void tst_capture::folderThatCannotBeWritten_isLoggedAndTheSequenceGoesOn()
{
    tick(true, true, false);
    nameNext("/proc/no such folder/unit");
    QVERIFY(capture());
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save fail").size(), 2);
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
}

void tst_capture::stickPulledDuringTheCapture_doesNotStopTheProgram()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QFileInfo::exists("/media/FACTORY"); }));
    tick(true, true, true);
    nameNext("/media/FACTORY/unit");
    connect(
        &m_desk->window(), &MainWindow::sig_finish_save_ImageGrabbed, this, [this, pulled = false]() mutable {
            if (!pulled)
                m_shelf->unplug("1234-ABCD", "FACTORY");
            pulled = true;
        });
    QVERIFY(capture());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    QVERIFY(m_desk->log.contains("[save_grabImage] save fail"));
    // The program goes on: another capture, with no stick.
    QTemporaryDir folder;
    tick(true, false, false);
    nameNext(folder.filePath("later"));
    QVERIFY(capture());
    QVERIFY(QFile::exists(folder.filePath("later_BF.tif")));
}

void tst_capture::unmountBeforeAnyCapture_doesNothing()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QFileInfo::exists("/media/FACTORY"); }));
    const QStringList before = StickShelf::calls();
    QVERIFY(hand::click(m_desk->window(), "pushButton_UNMOUNT"));
    QCOMPARE(StickShelf::calls(), before);
    QCOMPARE(m_desk->boxes.boxes().size(), 0);
}

void tst_capture::unmount_releasesTheStick()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QFileInfo::exists("/media/FACTORY"); }));
    tick(true, false, false);
    nameNext("/media/FACTORY/unit");
    QVERIFY(capture());
    QVERIFY(hand::click(m_desk->window(), "pushButton_UNMOUNT"));
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish unmount !"));
    QCOMPARE(m_desk->boxes.boxes().last().title, QString("Info"));
    QCOMPARE(StickShelf::calls().last(), QString("umount /media/FACTORY"));
    QVERIFY(!QFileInfo::exists("/media/FACTORY"));
    QVERIFY(QFile::exists(StickShelf::filesOf("/dev/sdb1") + "/unit_BF.tif"));
}

void tst_capture::unmountOfABusyStick_showsNothing()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QFileInfo::exists("/media/FACTORY"); }));
    tick(true, false, false);
    nameNext("/media/FACTORY/unit");
    QVERIFY(capture());
    // Busy: the file stays open, so that the stick cannot be released.
    QFile busy("/media/FACTORY/unit_BF.tif");
    QVERIFY(busy.open(QIODevice::ReadOnly));
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::click(m_desk->window(), "pushButton_UNMOUNT"));
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
    QVERIFY(QFile::exists("/media/FACTORY/unit_BF.tif"));
}

void tst_capture::lightStaysOnTheLastChannel()
{
    QTemporaryDir folder;
    tick(true, true, false);
    nameNext(folder.filePath("unit"));
    QVERIFY(capture());
    QCOMPARE(m_desk->rig.state().value("filter").toInt(), 2);
    QCOMPARE(m_desk->style("pushButton_ILLUMINATION_GFP"),
        QString("font: 11pt 'Sans Serif'; color : white; background-color : rgb(0, 255, 0)"));
}

void tst_capture::stickThatIsThereAtStart_isMountedAndReleasedWithTheWindow()
{
    m_desk.reset();
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(QFileInfo::exists("/media/FACTORY"));
    QVERIFY(StickShelf::calls().contains("mount /dev/sdb1 /media/FACTORY"));
    m_desk->close();
    QVERIFY(!QFileInfo::exists("/media/FACTORY"));
    QVERIFY(StickShelf::calls().last().startsWith("umount "));
}

WORKFLOW_MAIN(tst_capture)
#include "tst_capture.moc"
