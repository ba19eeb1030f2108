#include "tests/support/hand.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QWheelEvent>

namespace {

/// Why a user could not click there; empty when nothing is in the way.
QString obstacle(QWidget& window, QWidget& widget, QPoint position)
{
    if (!widget.isVisible())
        return "it is hidden";
    if (!widget.isEnabled())
        return "it is disabled";
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal != nullptr && modal != widget.window())
        return QString("it is behind the modal dialog \"%1\"").arg(modal->windowTitle());
    if (!widget.rect().contains(position))
        return "the place lies outside of it";
    const QWidget* hit = window.childAt(widget.mapTo(&window, position));
    if (hit == nullptr)
        return "the place lies outside of the window";
    if (hit != &widget && !widget.isAncestorOf(hit))
        return QString("it is covered by %1").arg(hit->objectName());
    return {};
}

bool reach(QWidget& window, QWidget* widget, QPoint position)
{
    if (widget == nullptr)
        return false;
    const QString reason = obstacle(window, *widget, position);
    if (!reason.isEmpty())
        qWarning().noquote() << "no hand can reach" << widget->objectName() + ":" << reason;
    return reason.isEmpty();
}

QPoint indicatorOf(const QAbstractButton& button, QStyle::SubElement element)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    return button.style()->subElementRect(element, &option, &button).center();
}

QPoint sensitivePlace(const QWidget& widget)
{
    if (const auto* box = qobject_cast<const QCheckBox*>(&widget))
        return indicatorOf(*box, QStyle::SE_CheckBoxIndicator);
    if (const auto* radio = qobject_cast<const QRadioButton*>(&widget))
        return indicatorOf(*radio, QStyle::SE_RadioButtonIndicator);
    return widget.rect().center();
}

} // namespace

QWidget* hand::findWidget(QWidget& window, const QString& name)
{
    const QList<QWidget*> found = window.findChildren<QWidget*>(name);
    if (found.size() == 1)
        return found.front();
    qWarning().noquote() << "there are" << found.size() << "widgets of the name" << name;
    return nullptr;
}

bool hand::isReachable(QWidget& window, const QString& name, QString* reason)
{
    QWidget* widget = findWidget(window, name);
    const QString text
        = widget == nullptr ? "there is none" : obstacle(window, *widget, sensitivePlace(*widget));
    if (reason != nullptr)
        *reason = text;
    return text.isEmpty();
}

bool hand::click(QWidget& window, const QString& name)
{
    QWidget* widget = findWidget(window, name);
    return widget != nullptr && clickAt(window, name, sensitivePlace(*widget));
}

bool hand::clickAt(QWidget& window, const QString& name, QPoint position)
{
    QWidget* widget = findWidget(window, name);
    if (!reach(window, widget, position))
        return false;
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, position);
    return true;
}

bool hand::drag(QWidget& window, const QString& name, QPoint from, const QVector<QPoint>& places)
{
    QWidget* widget = findWidget(window, name);
    if (!reach(window, widget, from))
        return false;
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, from);
    QPoint last = from;
    for (const QPoint& place : places) {
        // A move with the button held, which the test library's own move does not send.
        QMouseEvent move(QEvent::MouseMove, place, widget->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
            Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
        last = place;
    }
    QMouseEvent release(QEvent::MouseButtonRelease, last, widget->mapToGlobal(last), Qt::LeftButton,
        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &release);
    return true;
}

bool hand::wheel(QWidget& window, const QString& name, int delta)
{
    QWidget* widget = findWidget(window, name);
    if (widget == nullptr || !reach(window, widget, widget->rect().center()))
        return false;
    const QPoint place = widget->rect().center();
    QWheelEvent turn(place, widget->mapToGlobal(place), QPoint(), QPoint(0, delta), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &turn);
    return true;
}

bool hand::type(QWidget& window, const QString& name, const QString& text)
{
    QWidget* widget = findWidget(window, name);
    if (widget == nullptr || !clickAt(window, name, QPoint(5, widget->height() / 2)))
        return false;
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    QTest::keyClicks(widget, text);
    return true;
}

bool hand::press(QWidget& window, const QString& name, Qt::Key key)
{
    QWidget* widget = findWidget(window, name);
    if (widget == nullptr || !reach(window, widget, widget->rect().center()))
        return false;
    widget->setFocus();
    QTest::keyClick(widget, key);
    return true;
}

bool hand::choose(QWidget& window, const QString& name, int index)
{
    auto* combo = find<QComboBox>(window, name);
    if (combo == nullptr || !click(window, name))
        return false;
    if (index < 0 || index >= combo->count() || !combo->view()->isVisible()) {
        qWarning().noquote() << name << "shows no entry" << index;
        combo->hidePopup();
        return false;
    }
    // By keys: the open list ignores clicks for the length of a double click.
    QTest::keyClick(combo->view(), Qt::Key_Home);
    for (int i = 0; i < index; ++i)
        QTest::keyClick(combo->view(), Qt::Key_Down);
    QTest::keyClick(combo->view(), Qt::Key_Return);
    return combo->currentIndex() == index;
}

bool hand::selectTab(QWidget& window, const QString& tabWidget, const QString& page)
{
    auto* tabs = find<QTabWidget>(window, tabWidget);
    QWidget* target = findWidget(window, page);
    if (tabs == nullptr || target == nullptr)
        return false;
    QTabBar* bar = tabs->tabBar();
    const int index = tabs->indexOf(target);
    const QPoint place = bar->tabRect(index).center();
    if (index < 0 || !reach(window, bar, place))
        return false;
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, place);
    if (tabs->currentIndex() == index)
        return true;
    qWarning().noquote() << "the tab" << page << "is disabled";
    return false;
}
