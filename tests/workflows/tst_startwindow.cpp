#include "tests/storage/StickShelf.h"
#include "tests/workflows/Desk.h"

#include <QElapsedTimer>
#include <QScreen>
#include <QTimer>

/// The window as it stands before the connection begins. On a screen that is not of its size, so that it can
/// be seen where it goes.
class tst_startwindow : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_desk.reset(); }

    void window_isOfOneSizeAndCentred();
    void beforeTheConnection_theseAreHidden();
    void beforeTheConnection_theseAreDisabled();
    void connection_beginsHalfASecondLater();
    void mountedStick_isReleasedAndMountedAfresh();

private:
    std::unique_ptr<Desk> m_desk;
};

void tst_startwindow::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_startwindow::window_isOfOneSizeAndCentred()
{
    m_desk->open();
    const QSize size(1024, 600);
    QCOMPARE(m_desk->window().size(), size);
    QCOMPARE(m_desk->window().minimumSize(), size);
    QCOMPARE(m_desk->window().maximumSize(), size);
    QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry(), QRect(0, 0, 240, 320));
    QCOMPARE(m_desk->window().pos(), QPoint(-392, -140));
}

void tst_startwindow::beforeTheConnection_theseAreHidden()
{
    m_desk->open();
    for (const char* name : { "pushButton_EXIT", "CAPTURE_IMAGE_WIDGET", "BASLER_VIDEO_WIDGET", "label_9",
             "lineEdit_FIRMWARE", "textBrowser" })
        QVERIFY2(!m_desk->isShown(name), name);
    for (const char* name :
        { "groupBox_VATLINE", "groupBox_TALLYLINK", "groupBox_QLPK", "pushButton_CONNECT" })
        QVERIFY2(m_desk->isShown(name), name);
}

void tst_startwindow::beforeTheConnection_theseAreDisabled()
{
    m_desk->open();
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    const auto* tabs = m_desk->window().findChild<QWidget*>("tabWidget_CONTROLLER");
    for (const char* name : { "pushButton_SHIFT_X_MINUS", "pushButton_SHIFT_X_PLUS",
             "pushButton_SHIFT_Y_MINUS", "pushButton_SHIFT_Y_PLUS" })
        QVERIFY2(!m_desk->window().findChild<QWidget*>(name)->isEnabledTo(tabs), name);
    QVERIFY(m_desk->isEnabled("pushButton_CONNECT"));
}

void tst_startwindow::connection_beginsHalfASecondLater()
{
    QElapsedTimer clock;
    clock.start();
    m_desk->open();
    qint64 begun = 0;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        if (begun == 0 && m_desk->text("pushButton_CONNECT") == "~~~")
            begun = clock.elapsed();
    });
    look.start(10);
    QVERIFY(m_desk->waitForConnection());
    QVERIFY2(begun >= 500 && begun < 500 + patience::limit(1500), qPrintable(QString::number(begun)));
}

void tst_startwindow::mountedStick_isReleasedAndMountedAfresh()
{
    StickShelf shelf;
    shelf.plug("/dev/sdb1", "1234-ABCD", "FACTORY");
    shelf.mountByHand("/dev/sdb1", "/media/FACTORY");
    m_desk->open();
    QCOMPARE(StickShelf::calls(), QStringList({ "umount /dev/sdb1", "mount /dev/sdb1 /media/FACTORY" }));
    m_desk->close();
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal"); // its screen has 240 by 320 pixels
    Pylon::PylonInitialize();
    int result = 0;
    {
        QApplication application(argc, argv);
        tst_startwindow test;
        result = QTest::qExec(&test, argc, argv);
    }
    Pylon::PylonTerminate(true);
    return result;
}

#include "tst_startwindow.moc"
