#include "tests/storage/StickShelf.h"
#include "tests/workflows/CapturePanel.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

/// The USB stick that the pictures go to.
class tst_capture_stick : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void capture_mountsTheStickAfresh();
    void fullStick_isLoggedAndTheSequenceGoesOn();
    void stickPulledDuringTheCapture_keepsWhatItHasAndDoesNotStopTheProgram();

    void unmountBeforeAnyCapture_doesNothing();
    void unmount_releasesTheStick();
    void unmountPressedAgain_tellsItAgain();
    void unmountAfterACancelledDialog_releasesTheStick();
    void captureWithoutStick_leavesNothingToUnmount();
    void unmountOfABusyStick_showsNothing();
    void stickThatIsThereAtStart_isMountedAndReleasedWithTheWindow();
    void exitDuringTheCapture_endsItInTheDarkAndReleasesTheStick();

private:
    void plugIn();

    std::unique_ptr<StickShelf> m_shelf;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<CapturePanel> m_panel;
};

void tst_capture_stick::init()
{
    Desk::removeSettings();
    m_shelf.reset(new StickShelf);
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_panel.reset(new CapturePanel(*m_desk));
}

void tst_capture_stick::cleanup()
{
    m_panel.reset();
    m_desk.reset();
    m_shelf.reset();
}

/// Plugs the stick in and waits until the program has mounted it.
void tst_capture_stick::plugIn()
{
    m_shelf->plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return textOf("/etc/mtab").contains("/dev/sdb1 /media/FACTORY "); }));
}

void tst_capture_stick::capture_mountsTheStickAfresh()
{
    plugIn();
    const int before = StickShelf::calls().size();
    m_panel->tick(true, false, false);
    m_panel->nameNext("/media/FACTORY/unit");
    QVERIFY(m_panel->capture());
    QCOMPARE(StickShelf::calls().mid(before),
        QStringList({ "umount /dev/sdb1", "mount /dev/sdb1 /media/FACTORY" }));
    QVERIFY(QFile::exists(StickShelf::filesOf("/dev/sdb1") + "/unit_BF.tif"));
}

void tst_capture_stick::fullStick_isLoggedAndTheSequenceGoesOn()
{
    m_shelf->makeSmall("/dev/sdb1", 256);
    plugIn();
    m_panel->tick(true, true, true);
    m_panel->nameNext("/media/FACTORY/unit");
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save fail").size(), 3);
    QVERIFY(!m_desk->log.contains("[save_grabImage] save done"));
    QCOMPARE(m_desk->boxes.boxes().size(), 2);
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    // The program goes on: the full stick is released, and another place takes the picture.
    QVERIFY(m_panel->unmount());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish unmount !"));
    QTemporaryDir folder;
    m_panel->tick(true, false, false);
    m_panel->nameNext(folder.filePath("later"));
    QVERIFY(m_panel->capture());
    QVERIFY(m_desk->log.contains("[save_grabImage] save done"));
}

void tst_capture_stick::stickPulledDuringTheCapture_keepsWhatItHasAndDoesNotStopTheProgram()
{
    plugIn();
    m_panel->tick(true, true, true);
    m_panel->nameNext("/media/FACTORY/unit");
    connect(
        &m_desk->window(), &MainWindow::sig_finish_save_ImageGrabbed, this, [this, pulled = false]() mutable {
            if (!pulled)
                m_shelf->unplug("1234-ABCD", "FACTORY");
            pulled = true;
        });
    QVERIFY(m_panel->capture());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish save Image !"));
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save done").size(), 1);
    QCOMPARE(m_desk->log.lines().filter("[save_grabImage] save fail").size(), 2);
    const QFileInfoList saved
        = QDir(StickShelf::filesOf("/dev/sdb1")).entryInfoList(QDir::Files | QDir::NoDotAndDotDot);
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved[0].fileName(), QString("unit_BF.tif"));
    QVERIFY(saved[0].size() > 0);
    QVERIFY(QDir("/media").isEmpty());
    // The program goes on: another capture, with no stick.
    QTemporaryDir folder;
    m_panel->tick(true, false, false);
    m_panel->nameNext(folder.filePath("later"));
    QVERIFY(m_panel->capture());
    QVERIFY(QFile::exists(folder.filePath("later_BF.tif")));
}

void tst_capture_stick::unmountBeforeAnyCapture_doesNothing()
{
    plugIn();
    const QStringList before = StickShelf::calls();
    QVERIFY(m_panel->unmount());
    QCOMPARE(StickShelf::calls(), before);
    QCOMPARE(m_desk->boxes.boxes().size(), 0);
}

void tst_capture_stick::unmount_releasesTheStick()
{
    plugIn();
    m_panel->tick(true, false, false);
    m_panel->nameNext("/media/FACTORY/unit");
    QVERIFY(m_panel->capture());
    QVERIFY(m_panel->unmount());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish unmount !"));
    QCOMPARE(m_desk->boxes.boxes().last().title, QString("Info"));
    QCOMPARE(StickShelf::calls().last(), QString("umount /media/FACTORY"));
    QVERIFY(!QFileInfo::exists("/media/FACTORY"));
    QVERIFY(QFile::exists(StickShelf::filesOf("/dev/sdb1") + "/unit_BF.tif"));
}

void tst_capture_stick::unmountPressedAgain_tellsItAgain()
{
    plugIn();
    m_panel->tick(false, false, false);
    m_panel->nameNext("/media/FACTORY/unit");
    QVERIFY(m_panel->capture());
    // The window remembers the mount point until the next capture.
    for (int press = 1; press <= 2; ++press) {
        QVERIFY(m_panel->unmount());
        QCOMPARE(m_desk->boxes.texts().count("finish unmount !"), press);
        QCOMPARE(StickShelf::calls().last(), QString("umount /media/FACTORY"));
    }
}

void tst_capture_stick::unmountAfterACancelledDialog_releasesTheStick()
{
    plugIn();
    m_panel->cancelNext();
    QVERIFY(m_panel->capture());
    QVERIFY(m_panel->unmount());
    QCOMPARE(m_desk->boxes.texts().last(), QString("finish unmount !"));
    QVERIFY(!QFileInfo::exists("/media/FACTORY"));
}

void tst_capture_stick::captureWithoutStick_leavesNothingToUnmount()
{
    plugIn();
    m_panel->cancelNext();
    QVERIFY(m_panel->capture());
    m_shelf->unplug("1234-ABCD", "FACTORY");
    QVERIFY(patience::waitFor([] { return QDir("/media").isEmpty(); }));
    m_panel->cancelNext();
    QVERIFY(m_panel->capture());
    const QStringList before = StickShelf::calls();
    QVERIFY(m_panel->unmount());
    QCOMPARE(StickShelf::calls(), before);
    QCOMPARE(m_desk->boxes.boxes().size(), 2);
}

void tst_capture_stick::unmountOfABusyStick_showsNothing()
{
    plugIn();
    m_panel->tick(true, false, false);
    m_panel->nameNext("/media/FACTORY/unit");
    QVERIFY(m_panel->capture());
    // Busy: the file stays open, so that the stick cannot be released.
    QFile busy("/media/FACTORY/unit_BF.tif");
    QVERIFY(busy.open(QIODevice::ReadOnly));
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(m_panel->unmount());
    QCOMPARE(m_desk->boxes.boxes().size(), boxes);
    QVERIFY(QFile::exists("/media/FACTORY/unit_BF.tif"));
}

void tst_capture_stick::stickThatIsThereAtStart_isMountedAndReleasedWithTheWindow()
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

void tst_capture_stick::exitDuringTheCapture_endsItInTheDarkAndReleasesTheStick()
{
    plugIn();
    m_panel->tick(true, true, true);
    m_panel->nameNext("/media/FACTORY/unit");
    m_desk->boxes.lookAtEach([this](QDialog& dialog) {
        // Behind the dialog, and well before the first frame is taken.
        connect(&dialog, &QDialog::finished, &m_desk->window(), [this] {
            patience::later(
                50, &m_desk->window(), [this] { QVERIFY(hand::click(m_desk->window(), "pushButton_EXIT")); });
        });
    });
    const int mark = m_desk->rig.mark();
    patience::later(0, this, [this] { QVERIFY(m_panel->capture()); });
    // As in the program, the end of the window ends the application's loop and all that run in it.
    patience::later(patience::limit(20000), &m_desk->window(), [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(m_desk->rig.sentSince(mark),
        QStringList({ "$A#LED BRT1 7 6", "$A#FILTER GO 1", "$A#LED OFF1", "$X#STAGE ORIGIN" }));
    QCOMPARE(m_desk->boxes.boxes().size(), 1);
    QVERIFY(!m_desk->log.contains("[save_grabImage]"));
    m_desk->close();
    QVERIFY(QDir("/media").isEmpty());
    QCOMPARE(StickShelf::calls().last(), QString("umount /dev/sdb1"));
}

WORKFLOW_MAIN(tst_capture_stick)
#include "tst_capture_stick.moc"
