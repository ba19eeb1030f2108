#pragma once

#include <QtWidgets>

/// What the form may set of a widget and how its note in the table begins; a note without a number is a flag.
struct NotedProperty {
    const char* property;
    const char* note;
};
constexpr NotedProperty kNotedProperties[] = {
    { "checked", "checked" },
    { "readOnly", "read-only" },
    { "autoRepeat", "auto-repeat" },
    { "autoRepeatDelay", "repeat delay" },
    { "autoRepeatInterval", "interval" },
    { "maxLength", "max length" },
    { "decimals", "decimals" },
    { "minimum", "min" },
    { "maximum", "max" },
    { "singleStep", "step" },
    { "value", "value" },
};

template <typename Widget> QWidget* makeFresh()
{
    return new Widget;
}

/// A widget as it comes, of each class that has such properties.
inline const QHash<QString, QWidget* (*)()> kFresh {
    { "QPushButton", makeFresh<QPushButton> },
    { "QCheckBox", makeFresh<QCheckBox> },
    { "QRadioButton", makeFresh<QRadioButton> },
    { "QGroupBox", makeFresh<QGroupBox> },
    { "QLineEdit", makeFresh<QLineEdit> },
    { "QPlainTextEdit", makeFresh<QPlainTextEdit> },
    { "QTextBrowser", makeFresh<QTextBrowser> },
    { "QSpinBox", makeFresh<QSpinBox> },
    { "QDoubleSpinBox", makeFresh<QDoubleSpinBox> },
    { "QSlider", makeFresh<QSlider> },
};
