#include "tests/workflows/Desk.h"

/// The third step of the focus search, which no run starts: it is kept ready, and here it is walked.
class tst_autofocus_thirdstep : public QObject {
    Q_OBJECT

private slots:
    void thirdStep_walksUpAndMakesTheLastStepFromWhereItEnds();
};

void tst_autofocus_thirdstep::thirdStep_walksUpAndMakesTheLastStepFromWhereItEnds()
{
    Desk::removeSettings();
    Desk desk;
    QVERIFY(desk.connectUnit());
    QVERIFY(desk.rig.set("x", 30931)); // a field of cells
    desk.window().pushButton_AUTOFOCUS_clicked(false);
    QVERIFY(desk.boxes.waitForBoxes(1, 60000));
    const int best = desk.rig.state().value("z").toInt() + 115;

    connect(&desk.window(), &MainWindow::sig_ImageGrabbed, &desk.window(),
        &MainWindow::slot_ImageGrabbed_AutoFocusing);
    const int mark = desk.mark();
    const int logMark = desk.log.mark();
    desk.window().prepareAutoFocusing_Step3();
    QVERIFY(desk.boxes.waitForBoxes(2, 60000));

    const QString run = "$Z#STAGE RUN";
    QStringList expected { "$Z#STAGE POS", "$Z#STAGE STEP 345", "$Z#STAGE DIR MINUS", run };
    expected << "$Z#STAGE DIR PLUS"
             << "$Z#STAGE STEP 115";
    for (int frame = 0; frame < 7; ++frame)
        expected << run;
    expected << "$Z#STAGE DIR MINUS"
             << "$Z#STAGE STEP 115" << run;
    QCOMPARE(desk.linesSince(mark), expected);

    const QStringList frames = desk.log.lines(logMark).filter("pos:");
    QCOMPARE(frames.size(), 7);
    for (int i = 0; i < frames.size(); ++i)
        QVERIFY(frames[i].contains(QString(" %1 pos: %2 val: ").arg(i + 1).arg(best - 345 + 115 * i)));
    QCOMPARE(desk.log.lines(logMark).filter("[3] m_AutofocusingRef:").size(), 1);
    QCOMPARE(desk.rig.state().value("z").toInt(), best + 345 - 115);
}

WORKFLOW_MAIN(tst_autofocus_thirdstep)
#include "tst_autofocus_thirdstep.moc"
