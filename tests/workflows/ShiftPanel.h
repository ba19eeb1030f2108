#pragma once

#include "tests/workflows/Desk.h"

#include <opencv2/core.hpp>

#include <QImage>
#include <QSpinBox>

/// A hand on the controls of the pixel shift page, and an eye on its picture. For a desk that outlives it.
class ShiftPanel {
public:
    static constexpr const char* kArrows[] = { "pushButton_SHIFT_X_MINUS", "pushButton_SHIFT_X_PLUS",
        "pushButton_SHIFT_Y_MINUS", "pushButton_SHIFT_Y_PLUS" };

    explicit ShiftPanel(Desk& desk)
        : m_desk(desk)
    {
    }

    /// The texts of the four line edits: GFP X, GFP Y, RFP X, RFP Y.
    QStringList shifts();
    void show(const QStringList& shifts);
    /// The settings file's lines of these texts.
    static QByteArray stored(const QStringList& shifts);

    QSpinBox* fieldBox() { return m_desk.widget<QSpinBox>("spinBox_PIXEL_SHIFT"); }

    /// The overlay of a field by the values on show, what is on view, and an overlay as a widget shows it
    /// that was given nothing else.
    cv::Mat overlay(int field) { return m_desk.window().make_overlayImage(field, true); }
    QImage shown();
    QImage shownAs(cv::Mat overlay);

private:
    Desk& m_desk;
};
