#pragma once

#include <QMessageBox>
#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <utility>

class QDialog;

/// A modal dialog as the operator saw it.
struct ShownBox {
    QString className; ///< "QMessageBox", "QFileDialog", ...
    QString title;
    QString text; ///< empty unless it is a message box
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons; ///< texts without "&", in the order of the box
};

/// The operator in front of the modal boxes: for as long as it lives, it records each modal dialog that
/// appears and answers it, nested ones from the inside to the outside. GUI thread only. A dialog without a
/// given answer is answered by its OK button, and closed when it has none.
class MessageBoxWatcher : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<void(QDialog&)>;

    MessageBoxWatcher();

    /// Answers of the next dialogs, in the order in which these calls are made.
    void answerNext(QMessageBox::StandardButton button);
    void closeNext(); ///< as by the window's own close button
    void handleNext(const Handler& handler); ///< the handler looks and closes

    /// Called for each dialog while it is open, before its answer.
    void lookAtEach(Handler look) { m_look = std::move(look); }

    const QVector<ShownBox>& boxes() const { return m_boxes; }
    QStringList texts() const;

    /// What could not be done as it was asked for; empty in a good test.
    const QStringList& complaints() const { return m_complaints; }

    /// Runs the event loop until so many dialogs have been answered, at most patience::limit(ms).
    bool waitForBoxes(int count, int ms = 5000) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QDialog* dialog);
    void answerByDefault(QDialog& dialog);
    void click(QDialog& dialog, QMessageBox::StandardButton button);

    QVector<ShownBox> m_boxes;
    QQueue<Handler> m_answers;
    Handler m_look;
    QStringList m_complaints;
    int m_answered = 0;
};
