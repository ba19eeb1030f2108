#include "tests/workflows/QcTest.h"

#include <QJsonArray>
#include <QRadioButton>

#include <cmath>
#include <optional>

/// The two points of the QC page: which one a click is for, and what the operator is told. The unit magnifies
/// exactly fourfold.
class tst_qcpoints : public QcTest {
    Q_OBJECT

private slots:
    void marksOfTheTargetSlide_giveTheMagnification();
    void setPoint_goesToTheChosenPoint();
    void setPointWithoutAChoice_doesNothing();
    void noMark_isToldInABox();
    void twoMarks_areToldInABox();
    void otherErrors_areNotTold();
    void otherPoints_areNotShown();
};

void tst_qcpoints::marksOfTheTargetSlide_giveTheMagnification()
{
    QVERIFY(m_desk->rig.set("slide", "target"));
    QVERIFY(m_desk->rig.set("x", 20000));
    QVERIFY(m_desk->rig.set("z", 30000));
    QVERIFY(m_page->capture());

    // Two marks of a row that are 1.0 mm apart.
    const QJsonArray marks = m_desk->rig.request({ { "cmd", "inPicture" } }).value("targetMarks").toArray();
    std::optional<QPointF> first;
    std::optional<QPointF> second;
    for (const QJsonValue a : marks) {
        for (const QJsonValue b : marks) {
            if (a["row"] == b["row"] && std::abs(a["column"].toInt() - b["column"].toInt()) == 2) {
                first = QPointF(a["x"].toDouble(), a["y"].toDouble());
                second = QPointF(b["x"].toDouble(), b["y"].toDouble());
            }
        }
    }
    QVERIFY(first && second);
    QVERIFY(m_page->measure(first->toPoint() + QPoint(5, -4), second->toPoint() + QPoint(-3, 6)));
    QCOMPARE(m_desk->boxes.texts(), QStringList());

    const auto isNear = [](const QString& text, QPointF mark) {
        const QPointF found(text.section(", ", 0, 0).toDouble(), text.section(", ", 1, 1).toDouble());
        return (found - mark).manhattanLength() <= 3.0;
    };
    QVERIFY2(isNear(m_desk->text("lineEdit_POINT_1"), *first), qPrintable(m_desk->text("lineEdit_POINT_1")));
    QVERIFY2(isNear(m_desk->text("lineEdit_POINT_2"), *second), qPrintable(m_desk->text("lineEdit_POINT_2")));
    const double magnification = m_desk->text("lineEdit_MAGNIFICATION").toDouble();
    QVERIFY2(std::abs(magnification - 4.0) < 0.0101, qPrintable(m_desk->text("lineEdit_MAGNIFICATION")));
}

void tst_qcpoints::setPoint_goesToTheChosenPoint()
{
    const QPoint one(300, 200);
    const QPoint two(900, 600);
    QVERIFY(m_page->showMarks({ one, two }));
    QVERIFY(m_page->setPoint("radioButton_POINT_2", two));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QcPage::centreText(two));
    QVERIFY(m_page->setPoint("radioButton_POINT_1", one));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QcPage::centreText(one));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QcPage::centreText(two));
}

void tst_qcpoints::setPointWithoutAChoice_doesNothing()
{
    QVERIFY(m_page->showMarks({ { 300, 200 } }));
    QVERIFY(m_page->target({ 300, 200 }));
    for (const char* name : { "radioButton_POINT_1", "radioButton_POINT_2" }) {
        auto* button = m_desk->widget<QRadioButton>(name);
        button->setAutoExclusive(false);
        button->setChecked(false);
    }
    const QImage before = m_page->still();
    QVERIFY(hand::click(m_desk->window(), "pushButton_SET_POINT"));
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QString("0, 0"));
    QCOMPARE(m_page->still(), before);
    QCOMPARE(m_desk->boxes.texts(), QStringList());
}

void tst_qcpoints::noMark_isToldInABox()
{
    const QPoint one(100, 300);
    const QPoint two(1167, 300);
    QVERIFY(m_page->showMarks({ one, two }));
    QVERIFY(m_page->measure(one, two));
    const QStringList values = m_page->values();
    QCOMPARE(values.first(), QString("4.00"));
    QVERIFY(m_page->setPoint("radioButton_POINT_1", { 600, 500 }));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "No circle detected !!!" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Critical);
    QCOMPARE(m_desk->boxes.boxes().first().buttons, QStringList({ "OK" }));
    // Earlier points and values remain.
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QcPage::centreText(one));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QcPage::centreText(two));
    QCOMPARE(m_page->values(), values);
    QVERIFY(hand::click(m_desk->window(), "pushButton_MEASURE"));
    QCOMPARE(m_page->values(), values);
}

void tst_qcpoints::twoMarks_areToldInABox()
{
    QVERIFY(m_page->showMarks({ { 300, 200 }, { 320, 200 } }));
    QVERIFY(m_page->setPoint("radioButton_POINT_2", { 316, 206 }));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Too many circle detected !!!" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Critical);
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QString("0, 0"));
}

void tst_qcpoints::otherErrors_areNotTold()
{
    for (const int error : { -1, 2 })
        m_desk->window().slot_measure_error(static_cast<TargetingError>(error));
    QCOMPARE(m_desk->boxes.texts(), QStringList());
}

void tst_qcpoints::otherPoints_areNotShown()
{
    for (const int index : { -1, 2 })
        m_desk->window().slot_measure_point(index, 12, 34);
    QCOMPARE(m_desk->text("lineEdit_POINT_1"), QString("0, 0"));
    QCOMPARE(m_desk->text("lineEdit_POINT_2"), QString("0, 0"));
}

WORKFLOW_MAIN(tst_qcpoints)
#include "tst_qcpoints.moc"
