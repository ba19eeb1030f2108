#pragma once

#include "tests/workflows/SlidePanel.h"

#include <opencv2/core.hpp>

#include <QMap>

#include <utility>

/// The technician at the pixel shift calibration, and all that was seen of the last run. It is made for a
/// connected desk, which must outlive it.
class ShiftRun {
public:
    static constexpr int kFields = 12;
    static constexpr int kStartX = 30931; ///< of the first field of a 2-channel slide
    static constexpr int kFieldPitch = 480;

    /// A frame that the window handed out, and where the unit stood.
    struct Frame {
        int x = 0;
        int z = 0;
        cv::Mat pixels;
    };

    explicit ShiftRun(Desk& desk);

    /// Brings a slide in, focuses on its first field and takes that as the reference of the runs.
    bool prepare();
    /// From the X home, where every run ends.
    bool goToFirstField();
    /// Presses the button with the page in front, and waits for the end of the run and of its last X move.
    bool run();

    /// What the board was sent, the log and the dialogs of the last run.
    QStringList sent() const { return m_sent; }
    QStringList logged() const { return m_logged; }
    QVector<ShownBox> boxes() const { return m_boxes; }

    static int fieldX(int field) { return kStartX - (field - 1) * kFieldPitch; }
    /// First frame of all on a field from 1, which the focus search measures.
    Frame firstOn(int field) const { return m_first.value(fieldX(field)); }
    /// Last frame through a filter from 1 on a field from 1: that of the shift.
    Frame lastThrough(int filter, int field) const { return m_last.value({ fieldX(field), filter }); }
    /// The state of the page at the first frame.
    bool wasPageEnabled() const { return m_bPageEnabled; }
    QString frontPage() const { return m_frontPage; }
    QString buttonText() const { return m_buttonText; }

    /// The autofocus reference that prepare() took.
    int reference() const { return m_reference; }
    /// Position that a step of the search found best, by its label "[1]" or "[2]" and the number of the run.
    int bestOf(const char* label, int index) const;
    /// The texts of the four line edits, now and at the end of the run.
    QStringList shifts();
    QStringList measured() const { return m_measured; }

private:
    void look(const uchar* pixels);

    Desk& m_desk;
    SlidePanel m_slide;
    int m_reference = 0;
    QStringList m_sent;
    QStringList m_logged;
    QStringList m_measured;
    QVector<ShownBox> m_boxes;
    QMap<int, Frame> m_first;
    QMap<std::pair<int, int>, Frame> m_last;
    bool m_bPageEnabled = true;
    QString m_frontPage;
    QString m_buttonText;
};
