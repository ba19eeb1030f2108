#include "tests/workflows/ShiftRun.h"

#include "app/slide_geometry.h"

#include <QTabWidget>

ShiftRun::ShiftRun(Desk& desk)
    : m_desk(desk)
    , m_slide(desk)
{
}

bool ShiftRun::prepare()
{
    const int boxes = m_desk.boxes.boxes().size();
    const bool done = hand::selectTab(m_desk.window(), "tabWidget_CONTROLLER", "TAB_STAGE")
        && m_slide.insert(SLIDE_2CH) && goToFirstField()
        && hand::click(m_desk.window(), "pushButton_AUTOFOCUS") && m_desk.boxes.waitForBoxes(boxes + 1, 60000)
        && hand::click(m_desk.window(), "pushButton_REFERENCE_AUTOFOCUS_SET");
    m_reference = m_desk.text("lineEdit_REFERENCE_AUTOFOCUS").toInt();
    return done;
}

bool ShiftRun::goToFirstField()
{
    return hand::selectTab(m_desk.window(), "tabWidget_CONTROLLER", "TAB_STAGE")
        && m_slide.move("pushButton_FIELD_NEXT") && m_slide.field() == "1";
}

bool ShiftRun::run()
{
    m_first.clear();
    m_last.clear();
    const int mark = m_desk.rig.mark();
    const int logMark = m_desk.log.mark();
    const int boxes = m_desk.boxes.boxes().size();
    // Sees each frame before the workflow does.
    const auto looking = QObject::connect(&m_desk.window(), &MainWindow::sig_ImageGrabbed, &m_desk.window(),
        [this](uchar* pixels, int, int) { look(pixels); });
    const bool pressed = hand::selectTab(m_desk.window(), "tabWidget_CONTROLLER", "TAB_QC2")
        && hand::click(m_desk.window(), "pushButton_PIXEL_SHIFT");
    QObject::disconnect(looking);
    m_boxes = m_desk.boxes.boxes().mid(boxes);
    m_measured = shifts();
    // The run ends with an insert, whose X move ends later.
    const bool inserted = patience::waitFor([this] { return m_desk.isEnabled("pushButton_INSERT"); });
    m_sent = m_desk.rig.sentSince(mark);
    m_logged = m_desk.log.lines(logMark);
    return pressed && inserted;
}

void ShiftRun::look(const uchar* pixels)
{
    const QJsonObject state = m_desk.rig.state();
    const Frame frame { state.value("x").toInt(), state.value("z").toInt(),
        cv::Mat(960, 1280, CV_8UC1, const_cast<uchar*>(pixels)).clone() };
    if (m_first.isEmpty()) {
        m_bPageEnabled = m_desk.isEnabled("TAB_QC2");
        m_frontPage = m_desk.widget<QTabWidget>("tabWidget_CONTROLLER")->currentWidget()->objectName();
        m_buttonText = m_desk.text("pushButton_PIXEL_SHIFT");
    }
    if (!m_first.contains(frame.x))
        m_first[frame.x] = frame;
    m_last[{ frame.x, state.value("filter").toInt() }] = frame;
}

int ShiftRun::bestOf(const char* label, int index) const
{
    const QStringList lines = m_logged.filter(QString(label) + " m_AutofocusingRef:");
    return lines.value(index).section(' ', 3, 3).toInt();
}

QStringList ShiftRun::shifts()
{
    return { m_desk.text("lineEdit_SHIFT_GFP_X"), m_desk.text("lineEdit_SHIFT_GFP_Y"),
        m_desk.text("lineEdit_SHIFT_RFP_X"), m_desk.text("lineEdit_SHIFT_RFP_Y") };
}
