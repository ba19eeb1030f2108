#include "app/acknowledge_box.h"

#include <QPushButton>
#include <QtTest>

#include <memory>

/// A one-button box tells its OK button from every other way out.
class tst_acknowledge_box : public QObject {
    Q_OBJECT

private slots:
    void init() { m_box.reset(new AcknowledgeBox("Info", "text", nullptr)); }
    void okButton_acknowledges();
    void returnKey_acknowledges();
    void closedWindow_doesNotAcknowledge();
    void escapeKey_doesNotAcknowledge();

private:
    /// Runs the box while `leave` acts on it.
    template <typename Action> void execute(Action leave)
    {
        QMetaObject::invokeMethod(m_box.get(), leave, Qt::QueuedConnection);
        m_box->exec();
    }

    std::unique_ptr<AcknowledgeBox> m_box;
};

void tst_acknowledge_box::okButton_acknowledges()
{
    execute([this] { QTest::mouseClick(m_box->button(QMessageBox::Ok), Qt::LeftButton); });
    QVERIFY(m_box->isAcknowledged());
}

void tst_acknowledge_box::returnKey_acknowledges()
{
    execute([this] { QTest::keyClick(m_box->button(QMessageBox::Ok), Qt::Key_Return); });
    QVERIFY(m_box->isAcknowledged());
}

void tst_acknowledge_box::closedWindow_doesNotAcknowledge()
{
    execute([this] { m_box->close(); });
    QVERIFY(!m_box->isAcknowledged());
}

void tst_acknowledge_box::escapeKey_doesNotAcknowledge()
{
    execute([this] { QTest::keyClick(m_box.get(), Qt::Key_Escape); });
    QVERIFY(!m_box->isAcknowledged());
}

QTEST_MAIN(tst_acknowledge_box)
#include "tst_acknowledge_box.moc"
