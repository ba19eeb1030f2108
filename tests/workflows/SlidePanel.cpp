#include "tests/workflows/SlidePanel.h"

#include <QComboBox>
#include <QTableWidget>

SlidePanel::SlidePanel(Desk& desk)
    : m_desk(desk)
    , m_moved(&desk.window(), &MainWindow::sig_finish_X_Stage_Move)
{
}

bool SlidePanel::waitForMoves(int count)
{
    return patience::waitFor([&] { return m_moved.count() >= count; }) && m_moved.count() == count;
}

bool SlidePanel::insert(int type)
{
    auto* combo = m_desk.widget<QComboBox>("comboBox_SLIDE");
    if (!combo->isEnabled()) {
        // Without a slide the type cannot be chosen: that of before comes in first.
        const int before = moves();
        if (!hand::click(m_desk.window(), "pushButton_INSERT") || !waitForMoves(before + 1))
            return false;
        if (combo->currentIndex() == type)
            return true;
    }
    const int before = moves();
    const bool done = combo->currentIndex() == type ? hand::click(m_desk.window(), "pushButton_INSERT")
                                                    : hand::choose(m_desk.window(), "comboBox_SLIDE", type);
    return done && waitForMoves(before + 1);
}

bool SlidePanel::eject()
{
    return hand::click(m_desk.window(), "pushButton_EJECT")
        && patience::waitFor([this] { return m_desk.text("pushButton_EJECT") == "Eject"; });
}

bool SlidePanel::move(const char* button)
{
    const int before = moves();
    return hand::click(m_desk.window(), button) && waitForMoves(before + 1);
}

bool SlidePanel::changeChannel(int column)
{
    const int before = moves();
    return doubleClick(column) && waitForMoves(before + 1);
}

bool SlidePanel::doubleClick(int column)
{
    auto* map = m_desk.widget<QTableWidget>("tableWidget_SLIDE");
    const QRect cell = map->visualRect(map->model()->index(0, column));
    if (!hand::isReachable(m_desk.window(), "tableWidget_SLIDE") || !cell.isValid())
        return false;
    // The second press of a hand is the double click.
    QTest::mouseClick(map->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    QTest::mouseDClick(map->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    QTest::mouseRelease(map->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    return true;
}

QString SlidePanel::enabled()
{
    constexpr struct {
        const char* name;
        const char* widget;
    } kControls[] = {
        { "Insert", "pushButton_INSERT" },
        { "Eject", "pushButton_EJECT" },
        { "Combo", "comboBox_SLIDE" },
        { "Prev", "pushButton_FIELD_PREV" },
        { "Next", "pushButton_FIELD_NEXT" },
        { "Map", "tableWidget_SLIDE" },
    };
    QStringList names;
    for (const auto& control : kControls) {
        if (m_desk.isEnabled(control.widget))
            names << control.name;
    }
    return names.join(' ');
}

QString SlidePanel::cells()
{
    const auto* map = m_desk.widget<QTableWidget>("tableWidget_SLIDE");
    QString letters;
    for (int i = 0; i < map->columnCount(); ++i) {
        const QColor colour = map->item(0, i)->background().color();
        letters += colour == QColor(Qt::red) ? 'r' : colour == QColor(Qt::white) ? 'w' : '?';
    }
    return letters;
}
