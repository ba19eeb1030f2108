#include "tests/workflows/QcPage.h"

#include "tests/views/TargetFrame.h"
#include "views/CAPTURE_ImageWidget.h"

#include <QCheckBox>
#include <QSignalSpy>

#include <algorithm>

namespace {

constexpr int kMarkSide = 12;

} // namespace

bool QcPage::open(Desk& desk)
{
    Desk::removeSettings();
    return desk.rig.set("plugged", true) && desk.rig.set("slide", "2ch") && desk.connectUnit()
        && hand::selectTab(desk.window(), "tabWidget_CONTROLLER", "TAB_QC1");
}

bool QcPage::capture()
{
    const QSignalSpy grabbed(&m_desk.window(), &MainWindow::sig_finish_QC_ImageGrabbed);
    return hand::click(m_desk.window(), "pushButton_QC_CAPTURE") && grabbed.count() == 1;
}

bool QcPage::showMarks(const QVector<QPoint>& marks)
{
    if (!capture())
        return false;
    TargetFrame frame(1280, 960);
    for (const QPoint& mark : marks)
        frame.mark(mark.x(), mark.y(), kMarkSide);
    m_desk.widget<CAPTURE_ImageWidget>(kPicture)->setImageData(frame.data(), 1280, 960, 8);
    return true;
}

bool QcPage::target(QPoint place)
{
    MainWindow& window = m_desk.window();
    auto* box = m_desk.widget<QCheckBox>("checkBox_TARGETING_MODE");
    if (box->isChecked() && !hand::click(window, "checkBox_TARGETING_MODE"))
        return false;
    const QPoint view(std::clamp(place.x() - 270, 0, 740), std::clamp(place.y() - 216, 0, 528));
    const QPoint grip(250, 200);
    return hand::drag(window, kPicture, grip, { grip + QPoint(2000, 2000) })
        && hand::drag(window, kPicture, grip, { grip - view })
        && hand::click(window, "checkBox_TARGETING_MODE") && hand::clickAt(window, kPicture, place - view);
}

bool QcPage::setPoint(const char* radioButton, QPoint place)
{
    return target(place) && hand::click(m_desk.window(), radioButton)
        && hand::click(m_desk.window(), "pushButton_SET_POINT");
}

bool QcPage::measure(QPoint first, QPoint second)
{
    return setPoint("radioButton_POINT_1", first) && setPoint("radioButton_POINT_2", second)
        && hand::click(m_desk.window(), "pushButton_MEASURE");
}

QStringList QcPage::values()
{
    QStringList values;
    for (const char* name :
        { "lineEdit_MAGNIFICATION", "lineEdit_VOLUME_FACTOR", "lineEdit_VOLUME_FACTOR_1CH",
            "lineEdit_VOLUME_FACTOR_2CH", "lineEdit_VOLUME_FACTOR_3CH", "lineEdit_VOLUME_FACTOR_8CH",
            "lineEdit_VOLUME_FACTOR_PRISMA", "lineEdit_VOLUME_FACTOR_PRISMA_MAX" })
        values << m_desk.text(name);
    return values;
}

QStringList QcPage::pictures()
{
    QStringList shown;
    for (const char* name : { "BASLER_VIDEO_WIDGET", kPicture }) {
        if (m_desk.isShown(name))
            shown << name;
    }
    return shown;
}

QString QcPage::enabled()
{
    constexpr struct {
        const char* letter;
        const char* widget;
    } kControls[] = {
        { "L", "pushButton_QC_LIVE" },
        { "C", "pushButton_QC_CAPTURE" },
        { "T", "checkBox_TARGETING_MODE" },
        { "S", "pushButton_SET_POINT" },
        { "1", "radioButton_POINT_1" },
        { "2", "radioButton_POINT_2" },
        { "M", "pushButton_MEASURE" },
        { "W", "pushButton_MEASURE_WRITE" },
    };
    QString letters;
    for (const auto& control : kControls) {
        if (m_desk.isEnabled(control.widget))
            letters += control.letter;
    }
    return letters;
}

QImage QcPage::still()
{
    return m_desk.widget<QWidget>(kPicture)->grab().toImage();
}

QString QcPage::centreText(QPoint mark)
{
    return QString("%1, %2").arg(mark.x() + kMarkSide / 2 - 1).arg(mark.y() + kMarkSide / 2 - 1);
}
