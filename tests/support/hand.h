#pragma once

#include <QPoint>
#include <QString>
#include <QVector>
#include <QWidget>

/// The operator's hand: finds widgets by object name and works on them as with mouse and keyboard. Every
/// function refuses, with a warning that tells why, what a user could not do: a widget that is not there,
/// hidden, disabled, covered by another one or behind a modal dialog. True when it was done:
/// QVERIFY(hand::click(window, "..."));
namespace hand {

/// The one widget of that name below `window`, or null with a warning.
QWidget* findWidget(QWidget& window, const QString& name);

template <typename T> T* find(QWidget& window, const QString& name)
{
    return qobject_cast<T*>(findWidget(window, name));
}

/// Whether a user could click at this place of the widget (its middle by default), with the reason if not.
bool isReachable(QWidget& window, const QString& name, QString* reason = nullptr);

/// Left click; check boxes and radio buttons are hit on their indicator, others in the middle.
bool click(QWidget& window, const QString& name);
bool clickAt(QWidget& window, const QString& name, QPoint position);

/// Press at `from`, move to each of the places and release at the last.
bool drag(QWidget& window, const QString& name, QPoint from, const QVector<QPoint>& places);

/// One turn of the wheel over the middle; 120 is one notch up.
bool wheel(QWidget& window, const QString& name, int delta);

/// Replaces the text of a line edit, text edit or spin box, without leaving it.
bool type(QWidget& window, const QString& name, const QString& text);

/// One key on a widget, which gets the focus.
bool press(QWidget& window, const QString& name, Qt::Key key);

/// Opens a combo box by a click and takes the entry of that index by keys.
bool choose(QWidget& window, const QString& name, int index);

/// Clicks the tab of the page of that name.
bool selectTab(QWidget& window, const QString& tabWidget, const QString& page);

} // namespace hand
