#include "tests/support/hand.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>

#include <memory>

namespace {

/// A widget that writes down which mouse events it got.
class Recorder : public QWidget {
public:
    using QWidget::QWidget;
    QStringList seen;

protected:
    void mousePressEvent(QMouseEvent* event) override { note("press", event->pos()); }
    void mouseMoveEvent(QMouseEvent* event) override { note("move", event->pos()); }
    void mouseReleaseEvent(QMouseEvent* event) override { note("release", event->pos()); }
    void wheelEvent(QWheelEvent* event) override { seen.append(QString::number(event->angleDelta().y())); }

private:
    void note(const char* what, QPoint place)
    {
        seen.append(QString("%1 %2,%3").arg(what).arg(place.x()).arg(place.y()));
    }
};

template <typename T> T* place(QWidget& parent, const char* name, QRect geometry)
{
    auto* widget = new T(&parent);
    widget->setObjectName(name);
    widget->setGeometry(geometry);
    return widget;
}

} // namespace

class tst_hand : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_window->resize(400, 300);
        m_button = place<QPushButton>(*m_window, "button", { 10, 10, 80, 30 });
    }

    void button_isClicked()
    {
        m_window->show();
        const QSignalSpy clicked(m_button, &QPushButton::clicked);
        QVERIFY(hand::click(*m_window, "button"));
        QCOMPARE(clicked.size(), 1);
    }

    void disabledButton_isRefused()
    {
        m_button->setEnabled(false);
        refuse("no hand can reach button: it is disabled");
    }

    void hiddenButton_isRefused()
    {
        m_button->hide();
        refuse("no hand can reach button: it is hidden");
    }

    void coveredButton_isRefused()
    {
        place<Recorder>(*m_window, "cover", m_button->geometry());
        refuse("no hand can reach button: it is covered by cover");
    }

    void buttonBehindAModalDialog_isRefused()
    {
        QDialog dialog;
        dialog.setWindowTitle("Error");
        dialog.setModal(true);
        dialog.show();
        refuse("no hand can reach button: it is behind the modal dialog \"Error\"");
    }

    void buttonOutsideTheWindow_isRefused()
    {
        m_button->move(10, 400);
        refuse("no hand can reach button: the place lies outside of the window");
    }

    void unknownName_isRefused()
    {
        m_window->show();
        QTest::ignoreMessage(QtWarningMsg, "there are 0 widgets of the name knob");
        QVERIFY(!hand::click(*m_window, "knob"));
    }

    void wideCheckBox_isHitOnItsIndicator()
    {
        const auto* box = place<QCheckBox>(*m_window, "box", { 10, 50, 380, 30 });
        m_window->show();
        QVERIFY(hand::click(*m_window, "box"));
        QVERIFY(box->isChecked());
    }

    void text_isReplaced()
    {
        auto* edit = place<QLineEdit>(*m_window, "edit", { 10, 50, 100, 30 });
        edit->setText("before");
        auto* spin = place<QSpinBox>(*m_window, "spin", { 10, 90, 100, 30 });
        spin->setValue(42);
        m_window->show();
        QVERIFY(hand::type(*m_window, "edit", "after"));
        QCOMPARE(edit->text(), QString("after"));
        QVERIFY(hand::type(*m_window, "spin", "7"));
        QCOMPARE(spin->value(), 7);
    }

    void key_reachesTheWidget()
    {
        const auto* edit = place<QLineEdit>(*m_window, "edit", { 10, 50, 100, 30 });
        m_window->show();
        const QSignalSpy returned(edit, &QLineEdit::returnPressed);
        QVERIFY(hand::press(*m_window, "edit", Qt::Key_Return));
        QCOMPARE(returned.size(), 1);
    }

    void comboEntry_isChosenAndActivated()
    {
        auto* combo = place<QComboBox>(*m_window, "combo", { 10, 50, 100, 30 });
        combo->addItems({ "a", "b", "c" });
        m_window->show();
        const QSignalSpy activated(combo, QOverload<int>::of(&QComboBox::activated));
        QVERIFY(hand::choose(*m_window, "combo", 2));
        QCOMPARE(activated.size(), 1);
        QCOMPARE(combo->currentText(), QString("c"));
        QTest::ignoreMessage(QtWarningMsg, "combo shows no entry 3");
        QVERIFY(!hand::choose(*m_window, "combo", 3));
    }

    void tab_isSelectedUnlessDisabled()
    {
        auto* tabs = place<QTabWidget>(*m_window, "tabs", { 10, 50, 300, 200 });
        for (const char* name : { "first", "second", "third" }) {
            auto* page = new QWidget;
            page->setObjectName(name);
            tabs->addTab(page, name);
        }
        tabs->setTabEnabled(2, false);
        m_window->show();
        QVERIFY(hand::selectTab(*m_window, "tabs", "second"));
        QCOMPARE(tabs->currentIndex(), 1);
        QTest::ignoreMessage(QtWarningMsg, "the tab third is disabled");
        QVERIFY(!hand::selectTab(*m_window, "tabs", "third"));
    }

    void dragAndWheel_arriveInOrder()
    {
        const auto* recorder = place<Recorder>(*m_window, "recorder", { 100, 100, 200, 100 });
        m_window->show();
        QVERIFY(hand::drag(*m_window, "recorder", { 10, 10 }, { { 20, 15 }, { -5, 200 } }));
        QVERIFY(hand::wheel(*m_window, "recorder", -120));
        QCOMPARE(recorder->seen,
            QStringList({ "press 10,10", "move 20,15", "move -5,200", "release -5,200", "-120" }));
    }

private:
    void refuse(const char* reason)
    {
        m_window->show();
        // Showing a parent does not show a child that was hidden by name.
        const QSignalSpy clicked(m_button, &QPushButton::clicked);
        QTest::ignoreMessage(QtWarningMsg, reason);
        QVERIFY(!hand::click(*m_window, "button"));
        QCOMPARE(clicked.size(), 0);
    }

    std::unique_ptr<QWidget> m_window;
    QPushButton* m_button = nullptr;
};

QTEST_MAIN(tst_hand)
#include "tst_hand.moc"
