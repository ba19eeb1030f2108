#pragma once

#include "tests/workflows/Desk.h"

class QFileDialog;

/// The technician's hand on the capture box. It is made for a connected desk, which must outlive it.
class CapturePanel {
public:
    explicit CapturePanel(Desk& desk)
        : m_desk(desk)
    {
    }

    void tick(bool bf, bool gfp, bool rfp);
    /// Answers the next dialog, which must be that for a file, with this name.
    void nameNext(const QString& path);
    void cancelNext();
    /// Presses the button and returns when the sequence is over.
    bool capture() { return hand::click(m_desk.window(), "pushButton_CAPTURE"); }
    bool unmount() { return hand::click(m_desk.window(), "pushButton_UNMOUNT"); }

private:
    void answerNext(const std::function<void(QFileDialog&)>& answer);

    Desk& m_desk;
};
