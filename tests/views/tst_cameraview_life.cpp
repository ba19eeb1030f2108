#include "camera/ar0134_framedelivery.h"
#include "camera/baslerframedelivery.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/views/LiveView.h"

#include <QTest>

namespace {

const QString CONSTRUCTOR = "CameraView::CameraView(QWidget*, int)";

} // namespace

/// How the live view comes up, what it logs, and how it goes.
class tst_CameraViewLife : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        BaslerFrameDelivery::attached = false;
        BaslerFrameDelivery::usable = true;
        Ar0134FrameDelivery::attached = false;
    }

    void baslerCamera_becomesTheSourceAndChildOfTheView()
    {
        BaslerFrameDelivery::attached = true;
        const LogCapture log;
        MessageBoxWatcher boxes;
        const CameraView view;
        QVERIFY(FrameDelivery::m_pInstance != nullptr);
        QCOMPARE(FrameDelivery::m_pInstance->parent(), &view);
        QCOMPARE(view.cameraType(), 1);
        QVERIFY(boxes.boxes().isEmpty());
        QCOMPARE(log.lines(),
            QStringList({ CONSTRUCTOR, "void CameraView::initializePseudoColorTable()",
                "static CameraView* CameraView::Instance()",
                CONSTRUCTOR + " !!! Basler Camera is Attached !!!" }));
    }

    void view_isKnownBeforeItsSourceIsMade()
    {
        BaslerFrameDelivery::attached = true;
        const CameraView view;
        QCOMPARE(BaslerFrameDelivery::viewAtConstruction, &view);
        QCOMPARE(CameraView::Instance(), &view);
    }

    void ar0134Camera_becomesTheSourceAndChildOfTheView()
    {
        Ar0134FrameDelivery::attached = true;
        const LogCapture log;
        MessageBoxWatcher boxes;
        const CameraView view;
        QVERIFY(FrameDelivery::m_pInstance != nullptr);
        QCOMPARE(FrameDelivery::m_pInstance->parent(), &view);
        QCOMPARE(Ar0134FrameDelivery::viewAtConstruction, &view);
        QCOMPARE(view.cameraType(), 2);
        QVERIFY(boxes.boxes().isEmpty());
        QCOMPARE(log.lines().last(), CONSTRUCTOR + " !!! AR0134 Camera is Attached !!!");
    }

    void bothCameras_theBaslerOneIsTaken()
    {
        BaslerFrameDelivery::attached = true;
        Ar0134FrameDelivery::attached = true;
        const CameraView view;
        QVERIFY(dynamic_cast<BaslerFrameDelivery*>(FrameDelivery::m_pInstance) != nullptr);
        QCOMPARE(view.cameraType(), 1);
    }

    void noCamera_isToldInABox()
    {
        const LogCapture log;
        MessageBoxWatcher boxes;
        const CameraView view;
        QCOMPARE(boxes.boxes().size(), 1);
        const ShownBox& box = boxes.boxes().front();
        QCOMPARE(box.title, QString("Error"));
        QCOMPARE(box.text, QString("Check the CAMERA connection !"));
        QCOMPARE(box.icon, QMessageBox::Information);
        QCOMPARE(box.buttons, QStringList { "OK" });
        QCOMPARE(view.cameraType(), 0);
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QVERIFY(log.contains(CONSTRUCTOR + " !!! No camera is found !!!"));
    }

    void baslerCameraThatCannotBeSetUp_countsAsNone()
    {
        BaslerFrameDelivery::attached = true;
        BaslerFrameDelivery::usable = false;
        const LogCapture log;
        MessageBoxWatcher boxes;
        const CameraView view;
        QCOMPARE(boxes.texts(), QStringList { "Check the CAMERA connection !" });
        QCOMPARE(view.cameraType(), 0);
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QVERIFY(log.contains("bool CameraView::createBaslerSource() !!! Basler Camera cannot be used !!!"));
        QVERIFY(!log.contains("!!! Basler Camera is Attached !!!"));
    }

    void viewWithoutCamera_isEmptyAndCanBeUsed()
    {
        MessageBoxWatcher boxes;
        CameraView view;
        view.resize(540, 405);
        const LogCapture log;
        view.show();
        view.setCrossLine(true);
        view.setFitMode(false);
        view.setPseudoColorTable(1);
        const QImage untouched = picture::plain({ 540, 405 }, picture::kUnpainted);
        QCOMPARE(picture::difference(picture::of(view), untouched), QString());
        view.hide();
        QVERIFY(log.lines().contains("showEvent false"));
        QVERIFY(log.lines().contains("hideEvent"));
    }

    void shownView_logsWhetherTheSourceIsLive()
    {
        const LiveView live;
        LogCapture log;
        live.view->show();
        QVERIFY(log.lines().contains("showEvent false"));
        live.view->hide();
        const int mark = log.mark();
        LiveView::source().live = true;
        live.view->show();
        QVERIFY(log.lines(mark).contains("showEvent true"));
    }

    void setters_logEvenWhenNothingChanges()
    {
        const LiveView live;
        const LogCapture log;
        for (int i = 0; i < 2; ++i) {
            live.view->setFitMode(true);
            live.view->setCrossLine(false);
            live.view->setPseudoColorTable(2);
            QCOMPARE(live.view->pseudoColorTable(), 2);
        }
        const QStringList once { "void CameraView::setFitMode(bool) true",
            "void CameraView::setCrossLine(bool) false", "void CameraView::setPseudoColorTable(int)",
            "int CameraView::pseudoColorTable() const" };
        QCOMPARE(log.lines(), once + once);
    }

    void deactivatedWindow_isLoggedWithItsLine()
    {
        const LiveView live;
        const LogCapture log;
        QEvent deactivate(QEvent::WindowDeactivate);
        QApplication::sendEvent(live.view.get(), &deactivate);
        QCOMPARE(log.lines(),
            QStringList { "virtual bool CameraView::event(QEvent*) 419 QEvent::WindowDeactivate" });
    }

    void touches_areAccepted()
    {
        const LiveView live;
        QVERIFY(live.view->testAttribute(Qt::WA_AcceptTouchEvents));
    }

    void goneView_takesItsSourceAlong()
    {
        const LogCapture log;
        {
            const LiveView live;
        }
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(log.lines().last(), QString("virtual CameraView::~CameraView()"));
        QVERIFY(CameraView::Instance() == nullptr);
    }
};

QTEST_MAIN(tst_CameraViewLife)
#include "tst_cameraview_life.moc"
