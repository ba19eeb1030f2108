#include "camera/ar0134_framedelivery.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/platform/ScriptedBoard.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MessageBoxWatcher.h"
#include "views/CameraView.h"

#include <pylon/PylonIncludes.h>

#include <QtTest>

#include <memory>

using qr9::wire::Kind;

namespace {

const QString CONSTRUCTOR = "CameraView::CameraView(QWidget*, int)";

} // namespace

// The live view of an instrument with this camera and no other.
class tst_ar0134_cameraview : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { Pylon::PylonInitialize(); }
    void cleanupTestCase() { Pylon::PylonTerminate(); }

    void boardOnTheBus_becomesTheSourceOfTheView()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        MessageBoxWatcher boxes;
        const LogCapture log;
        const CameraView view;
        QCOMPARE(view.cameraType(), 2);
        QVERIFY(dynamic_cast<Ar0134FrameDelivery*>(FrameDelivery::m_pInstance) != nullptr);
        QCOMPARE(FrameDelivery::m_pInstance->parent(), &view);
        QVERIFY(log.contains(CONSTRUCTOR + " !!! AR0134 Camera is Attached !!!"));
        QVERIFY(boxes.boxes().isEmpty());
    }

    void noBoard_isToldInABox()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        board.setBoards(0);
        MessageBoxWatcher boxes;
        const LogCapture log;
        const CameraView view;
        QCOMPARE(view.cameraType(), 0);
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(boxes.boxes().size(), 1);
        QCOMPARE(boxes.boxes().front().text, QString("Check the CAMERA connection !"));
        QVERIFY(log.contains(CONSTRUCTOR + " !!! No camera is found !!!"));
    }

    void newFrame_isPainted()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        CameraView view;
        view.resize(540, 405);
        view.show();
        FrameDelivery::m_pInstance->triggerAndWaitForFrame(true);
        QTRY_COMPARE(view.grab().toImage().pixel(270, 202), qRgb(100, 100, 100));
        board.setPicture([](int) { return ScriptedBoard::Bytes(std::size_t(1280) * 964, 33); });
        FrameDelivery::m_pInstance->triggerAndWaitForFrame(true);
        QTRY_COMPARE(view.grab().toImage().pixel(270, 202), qRgb(33, 33, 33));
    }

    void frame_asksForARepaint()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        CameraView view;
        view.resize(540, 405);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        PaintCounter paints;
        view.installEventFilter(&paints);
        QVERIFY(FrameDelivery::m_pInstance->start());
        QTRY_VERIFY(paints.count > 3);
    }

    void viewThatGoesInTheMiddleOfLiveMode_takesItsSourceAlong()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        auto view = std::make_unique<CameraView>();
        view->show();
        QVERIFY(FrameDelivery::m_pInstance->start());
        // Frames pile up for the view, which reads no events meanwhile.
        const int before = board.count(Kind::Trigger);
        QElapsedTimer timer;
        timer.start();
        while (board.count(Kind::Trigger) < before + 20 && timer.elapsed() < 10000) {
            QThread::msleep(1);
        }
        QVERIFY(board.count(Kind::Trigger) >= before + 20);
        view.reset();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(board.count(Kind::Close), 1);
        QCoreApplication::processEvents();
    }

private:
    struct PaintCounter : QObject {
        bool eventFilter(QObject* watched, QEvent* event) override
        {
            count += event->type() == QEvent::Paint ? 1 : 0;
            return QObject::eventFilter(watched, event);
        }
        int count = 0;
    };
};

QTEST_MAIN(tst_ar0134_cameraview)
#include "tst_ar0134_cameraview.moc"
