#include "tests/support/MessageBoxWatcher.h"

#include "tests/support/patience.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QTest>

namespace {

/// How often a dialog that is covered by another one is tried again.
constexpr int kRetryMs = 5;

ShownBox describe(const QDialog& dialog)
{
    ShownBox box;
    box.className = dialog.metaObject()->className();
    box.title = dialog.windowTitle();
    if (const auto* message = qobject_cast<const QMessageBox*>(&dialog)) {
        box.text = message->text();
        box.icon = message->icon();
        const auto buttons = message->buttons();
        for (const QAbstractButton* button : buttons)
            box.buttons.append(button->text().remove('&'));
    }
    return box;
}

} // namespace

MessageBoxWatcher::MessageBoxWatcher()
{
    qApp->installEventFilter(this);
}

void MessageBoxWatcher::answerNext(QMessageBox::StandardButton button)
{
    m_answers.enqueue([this, button](QDialog& dialog) { click(dialog, button); });
}

void MessageBoxWatcher::closeNext()
{
    m_answers.enqueue([](QDialog& dialog) { dialog.close(); });
}

void MessageBoxWatcher::handleNext(const Handler& handler)
{
    m_answers.enqueue(handler);
}

QStringList MessageBoxWatcher::texts() const
{
    QStringList texts;
    for (const ShownBox& box : m_boxes)
        texts.append(box.text);
    return texts;
}

bool MessageBoxWatcher::waitForBoxes(int count, int ms) const
{
    return patience::waitFor([this, count] { return m_answered >= count; }, ms);
}

bool MessageBoxWatcher::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (dialog != nullptr && dialog->isModal()) {
            m_boxes.append(describe(*dialog));
            // Not from within the showing: the dialog's own event loop starts after it.
            patience::later(0, dialog, [this, dialog] { answer(dialog); });
        }
    }
    return QObject::eventFilter(watched, event);
}

void MessageBoxWatcher::answer(QDialog* dialog)
{
    if (!dialog->isVisible())
        return;
    // Like a user, who reaches the innermost dialog alone.
    if (QApplication::activeModalWidget() != dialog) {
        patience::later(kRetryMs, dialog, [this, dialog] { answer(dialog); });
        return;
    }
    if (m_look)
        m_look(*dialog);
    const Handler handler = m_answers.isEmpty() ? Handler() : m_answers.dequeue();
    // Counted first: a click may run on into the next dialog before it returns.
    ++m_answered;
    if (handler)
        handler(*dialog);
    else
        answerByDefault(*dialog);
}

void MessageBoxWatcher::answerByDefault(QDialog& dialog)
{
    const auto* message = qobject_cast<const QMessageBox*>(&dialog);
    if (message != nullptr && message->button(QMessageBox::Ok) != nullptr)
        click(dialog, QMessageBox::Ok);
    else
        dialog.reject();
}

void MessageBoxWatcher::click(QDialog& dialog, QMessageBox::StandardButton button)
{
    const auto* message = qobject_cast<const QMessageBox*>(&dialog);
    QAbstractButton* target = message != nullptr ? message->button(button) : nullptr;
    if (target == nullptr || !target->isEnabled()) {
        m_complaints.append(QString("\"%1\" has no button %2").arg(dialog.windowTitle()).arg(button));
        dialog.reject();
        return;
    }
    QTest::mouseClick(target, Qt::LeftButton);
}
