#pragma once

#include "tests/workflows/Desk.h"

#include <QImage>
#include <QPoint>
#include <QVector>

/// The technician's hand on the QC page, and what can be seen of it. Where the arithmetic counts, a drawn
/// frame with marks at known places stands in for the captured one. It is made for a connected desk, which
/// must outlive it.
class QcPage {
public:
    static constexpr const char* kPicture = "CAPTURE_IMAGE_WIDGET"; ///< the still picture, by object name

    explicit QcPage(Desk& desk)
        : m_desk(desk)
    {
    }

    /// Connects a desk to a plugged unit without settings, with a 2-channel slide in it, and turns to the
    /// page.
    static bool open(Desk& desk);

    /// Takes a still picture; true when one frame has been taken for it.
    bool capture();
    /// Captures, and puts a drawn frame in place of what came: a mark from each of these pixels on.
    bool showMarks(const QVector<QPoint>& marks);
    /// Brings a pixel of the frame into view with the hand and clicks on it in targeting mode.
    bool target(QPoint place);
    bool setPoint(const char* radioButton, QPoint place);
    /// Takes both points and measures.
    bool measure(QPoint first, QPoint second);

    /// The texts of magnification, volume factor and the six factors of the slides.
    QStringList values();
    /// Which of the two pictures are shown.
    QStringList pictures();
    /// A letter for each widget of the page that is enabled: Live, Capture, Targeting, Set point, the points
    /// 1 and 2, Measure, Write.
    QString enabled();
    QImage still();

    /// What a line edit shows of the centre that the search finds of a drawn mark: it lies between two
    /// pixels.
    static QString centreText(QPoint mark);

private:
    Desk& m_desk;
};
