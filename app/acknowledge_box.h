#pragma once

#include <QMessageBox>

/// A message box with one OK button that knows whether it was left with that button. Qt reports OK for every
/// way out of a one-button box, also for its window being closed or the Escape key.
/// GUI thread; `exec()` blocks as usual.
class AcknowledgeBox : public QMessageBox {
    Q_OBJECT

public:
    AcknowledgeBox(const QString& title, const QString& text, QWidget* parent);

    /// True when the last `exec()` ended by the OK button.
    bool isAcknowledged() const { return m_bAcknowledged; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_bAcknowledged = false;
};
