#include "app/acknowledge_box.h"

#include <QKeyEvent>
#include <QPushButton>

AcknowledgeBox::AcknowledgeBox(const QString& title, const QString& text, QWidget* parent)
    : QMessageBox(QMessageBox::Information, title, text, QMessageBox::Ok, parent)
{
    // A close by the window manager presses no button, so the button's own signal tells the two apart.
    connect(button(QMessageBox::Ok), &QAbstractButton::clicked, this, [this] { m_bAcknowledged = true; });
}

void AcknowledgeBox::keyPressEvent(QKeyEvent* event)
{
    // QMessageBox would click the only button for the technician here.
    if (event->matches(QKeySequence::Cancel)) {
        event->accept();
        reject();
        return;
    }
    QMessageBox::keyPressEvent(event);
}
