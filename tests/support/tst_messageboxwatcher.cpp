#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/patience.h"

#include <QAbstractButton>
#include <QDialog>
#include <QFileDialog>
#include <QSignalSpy>
#include <QTest>

// The watcher answers what a technician would have to answer.
class tst_MessageBoxWatcher : public QObject {
    Q_OBJECT

private slots:
    void oneButtonBox_isRecordedAndClosedByOk()
    {
        MessageBoxWatcher watcher;
        QCOMPARE(QMessageBox::critical(nullptr, "Error", "No circle detected !!!"), QMessageBox::Ok);

        QCOMPARE(watcher.boxes().size(), 1);
        const ShownBox& box = watcher.boxes().front();
        QCOMPARE(box.className, QString("QMessageBox"));
        QCOMPARE(box.title, QString("Error"));
        QCOMPARE(box.text, QString("No circle detected !!!"));
        QCOMPARE(box.icon, QMessageBox::Critical);
        QCOMPARE(box.buttons, QStringList { "OK" });
    }

    void givenAnswers_areUsedInOrder()
    {
        MessageBoxWatcher watcher;
        watcher.answerNext(QMessageBox::No);
        watcher.answerNext(QMessageBox::Yes);
        const auto both = QMessageBox::Yes | QMessageBox::No;
        QCOMPARE(QMessageBox::question(nullptr, "Info", "one", both), QMessageBox::No);
        QCOMPARE(QMessageBox::question(nullptr, "Info", "two", both), QMessageBox::Yes);
        QCOMPARE(watcher.texts(), QStringList({ "one", "two" }));
        QVERIFY(watcher.complaints().isEmpty());
    }

    void closedBox_isNotAnsweredByAButton()
    {
        MessageBoxWatcher watcher;
        watcher.closeNext();
        QMessageBox box(QMessageBox::Information, "Info", "text", QMessageBox::Ok);
        const QSignalSpy clicked(box.button(QMessageBox::Ok), &QAbstractButton::clicked);
        box.exec();
        QCOMPARE(clicked.size(), 0);
        QCOMPARE(watcher.boxes().size(), 1);
    }

    void missingButton_isAComplaintAndNoHang()
    {
        MessageBoxWatcher watcher;
        watcher.answerNext(QMessageBox::Retry);
        QMessageBox::information(nullptr, "Info", "text");
        QCOMPARE(watcher.complaints().size(), 1);
    }

    void nestedBoxes_areAnsweredFromTheInside()
    {
        MessageBoxWatcher watcher;
        QStringList closed;
        watcher.lookAtEach([&closed](QDialog& dialog) { closed.append(dialog.windowTitle()); });
        QMessageBox outer(QMessageBox::Warning, "outer", "text", QMessageBox::Ok);
        // Opens on top of the outer one before that can be answered.
        patience::later(0, &outer, [] { QMessageBox::information(nullptr, "inner", "text"); });
        patience::later(0, &outer, [] { QMessageBox::information(nullptr, "innermost", "text"); });
        outer.exec();
        QCOMPARE(watcher.boxes().size(), 3);
        QCOMPARE(closed.last(), QString("outer"));
        QVERIFY(watcher.waitForBoxes(3));
    }

    void boxOpenedByAnAnswer_isAnsweredToo()
    {
        MessageBoxWatcher watcher;
        QMessageBox first(QMessageBox::Information, "first", "text", QMessageBox::Ok);
        connect(
            &first, &QMessageBox::buttonClicked, [] { QMessageBox::information(nullptr, "second", "text"); });
        first.exec();
        QCOMPARE(watcher.boxes().size(), 2);
        QCOMPARE(watcher.boxes().last().title, QString("second"));
    }

    void fileDialog_isCancelledUnlessAHandlerTakesIt()
    {
        MessageBoxWatcher watcher;
        const auto ask = [] {
            return QFileDialog::getExistingDirectory(
                nullptr, "Folder", "/", QFileDialog::DontUseNativeDialog | QFileDialog::ShowDirsOnly);
        };
        QCOMPARE(ask(), QString());
        QCOMPARE(watcher.boxes().front().className, QString("QFileDialog"));

        watcher.handleNext([](QDialog& dialog) { dialog.accept(); });
        QCOMPARE(ask(), QString("/"));
    }

    void nonModalDialog_isLeftAlone()
    {
        MessageBoxWatcher watcher;
        QDialog dialog;
        dialog.show();
        QTest::qWait(0);
        QVERIFY(dialog.isVisible());
        QVERIFY(watcher.boxes().isEmpty());
    }
};

QTEST_MAIN(tst_MessageBoxWatcher)
#include "tst_messageboxwatcher.moc"
