#include "tests/workflows/SlopeDesk.h"

#include <QSpinBox>

const QByteArray SlopeDesk::kReferenceInFocus = "[Calibration]\nZ reference=30000\n";

bool SlopeDesk::connectWith(const QByteArray& settings)
{
    putSettings(settings);
    if (!connectUnit() || !hand::selectTab(window(), "tabWidget_CONTROLLER", "TAB_STAGE"))
        return false;
    // Not the camera's exposure, only the time that a frame is waited for: on a busy machine a frame of
    // before the move would put the result one fine step aside.
    widget<QSpinBox>("spinBox_EXPOSURE")->setValue(patience::limit(100));
    return true;
}

bool SlopeDesk::calibrate()
{
    const int before = boxes.boxes().size();
    return hand::click(window(), "pushButton_REFERENCE_Z_SLOPE") && boxes.waitForBoxes(before + 1, 60000);
}

void SlopeDesk::useReferenceOfSecondRun(int reference)
{
    QObject::connect(&window(), &MainWindow::sig_finish_Autofocusing, &window(), [this, reference] {
        widget<QLineEdit>("lineEdit_REFERENCE_AUTOFOCUS")->setText(QString::number(reference));
    });
}

QByteArray SlopeDesk::stored(const QByteArray& key)
{
    const QList<QByteArray> lines = settings().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(key + '='))
            return line.mid(key.size() + 1);
    }
    return {};
}
