#include "app/MainWindow.h"

#include "app/int_range.h"
#include "app/settings.h"
#include "app/styles.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <QDebug>
#include <QHeaderView>

#include <cstdint>
#include <cstdio>

namespace {

constexpr int kFieldEjected = -2;

/// Height of a channel: the carrier is tilted along X. Slope in steps per mm, distance in mm.
int heightWithSlope(int reference, double slope, double distance)
{
    const auto narrowed = static_cast<double>(static_cast<float>(slope));
    return settings::truncated(narrowed * distance + reference);
}

} // namespace

void MainWindow::get_slide_POSITION_ini()
{
    m_slide_start_1ch = settings::readInt("Start position", "1 Channel", "9893");
    m_slide_start_2ch = settings::readInt("Start position", "2 Channel", "30931");
    m_slide_start_3ch = settings::readInt("Start position", "3 Channel", "30505");
    m_slide_start_8ch = settings::readInt("Start position", "8 Channel", "38291");
    m_slide_start_prisma = settings::readInt("Start position", "Prisma", "28580");
}

int MainWindow::slideStartPosition(SlideStart start) const
{
    switch (start) {
    case SlideStart::Channel1:
        return m_slide_start_1ch;
    case SlideStart::Channel2:
        return m_slide_start_2ch;
    case SlideStart::Channel3:
        return m_slide_start_3ch;
    case SlideStart::Channel8:
        return m_slide_start_8ch;
    case SlideStart::Prisma:
        break;
    }
    return m_slide_start_prisma;
}

void MainWindow::on_comboBox_SLIDE_currentIndexChanged(int index)
{
    m_slide_type = static_cast<SLIDE_type>(index);
    std::printf("on_comboBox_SLIDE_currentIndexChanged index : %d\n", index);
    std::fflush(stdout);
    on_pushButton_INSERT_clicked();
}

void MainWindow::disableNavigation()
{
    ui->comboBox_SLIDE->setEnabled(false);
    ui->pushButton_FIELD_PREV->setEnabled(false);
    ui->pushButton_FIELD_NEXT->setEnabled(false);
    ui->tableWidget_SLIDE->setEnabled(false);
}

void MainWindow::on_pushButton_INSERT_clicked()
{
    m_slide_motion = SLIDE_MOTION_INSERT;
    ui->pushButton_INSERT->setText("~~~");
    ui->pushButton_INSERT->setStyleSheet(styles::kNeutral);
    ui->pushButton_INSERT->setEnabled(false);
    ui->pushButton_EJECT->setStyleSheet(styles::kNeutral);
    ui->pushButton_EJECT->setEnabled(false);
    disableNavigation();

    m_bLED_On = false;
    on_pushButton_LED_TOGGLE_clicked();

    m_slide_channel = 0;
    m_slide_field = -1;
    get_slide_POSITION_ini();
    const double slope = settings::readReal("Calibration", "Z ref slope", "0");

    const SlideGeometry* slide = slideGeometry(m_slide_type);
    if (slide == nullptr)
        return;
    moveZToSlideHeight(insertHeight(slide->height, slope));
    // The slide comes in to the X home, before its first field.
    moveXTo(0);
}

int MainWindow::insertHeight(const SlideHeight& height, double slope) const
{
    const int reference = settings::readInt("Calibration", height.referenceKey, "32000");
    std::int64_t target = height.slope ? heightWithSlope(reference, slope, 0.0) : reference;
    if (height.offsetKey != nullptr)
        target += std::int64_t { height.offsetSign }
            * settings::readInt("Calibration", height.offsetKey, height.offsetDefault);
    return withinInt(target);
}

void MainWindow::moveZToSlideHeight(int target)
{
    ui->lineEdit_REFERENCE_Z->setText(QString::number(target));
    m_strCommand = "$Z#STAGE ABS " + QString::number(target) + "\n";
    m_pController->direct_read(m_strCommand);
    ui->lineEdit_POSITION_Z->setText(QString::number(target));
}

void MainWindow::on_pushButton_EJECT_clicked()
{
    m_slide_motion = SLIDE_MOTION_EJECT;
    ui->pushButton_INSERT->setStyleSheet(styles::kNeutral);
    ui->pushButton_INSERT->setEnabled(false);
    ui->pushButton_EJECT->setText("~~~");
    ui->pushButton_EJECT->setStyleSheet(styles::kNeutral);
    ui->pushButton_EJECT->setEnabled(false);
    disableNavigation();

    m_bLED_On = true;
    on_pushButton_LED_TOGGLE_clicked();
    m_strCommand = "$X#STAGE EJECT\n";
    m_pController->write_command(m_strCommand);
}

void MainWindow::on_pushButton_FIELD_NEXT_clicked()
{
    get_slide_POSITION_ini();
    if (const FieldMove* move = fieldMoveNext(m_slide_type, m_slide_channel))
        moveToField(*move);
}

void MainWindow::on_pushButton_FIELD_PREV_clicked()
{
    get_slide_POSITION_ini();
    if (const FieldMove* move = fieldMovePrev(m_slide_type, m_slide_channel))
        moveToField(*move);
}

void MainWindow::moveToField(const FieldMove& move)
{
    if (isFieldMoveBlocked(move, m_slide_field))
        return;
    m_slide_field += move.step;
    (move.disabled == FieldButton::Prev ? ui->pushButton_FIELD_PREV : ui->pushButton_FIELD_NEXT)
        ->setEnabled(false);
    const int start = slideStartPosition(slideGeometry(m_slide_type)->start);
    const int target = fieldPositionX(move, start, m_slide_channel, m_slide_field);
    if (m_slide_type == SLIDE_PRISMA_MAX)
        qDebug() << "===========>prisma slide : " << target;
    moveXTo(target);
}

void MainWindow::on_tableWidget_SLIDE_cellDoubleClicked(int, int column)
{
    get_slide_POSITION_ini();
    if (column == m_slide_channel)
        return;
    m_slide_channel = column;
    ui->pushButton_INSERT->setEnabled(false);
    ui->pushButton_EJECT->setEnabled(false);
    disableNavigation();

    const SlideGeometry* slide = slideGeometry(m_slide_type);
    if (slide == nullptr || slide->channelPitchZ <= 0.0)
        return;
    const int reference = settings::readInt("Calibration", slide->height.referenceKey, "32000");
    const double slope = settings::readReal("Calibration", "Z ref slope", "0");
    moveZToSlideHeight(heightWithSlope(reference, slope, column * slide->channelPitchZ));

    if (column != 0) {
        m_slide_field = 0;
        moveXTo(channelPositionX(*slide, slideStartPosition(slide->start), column));
    } else {
        m_slide_field = -1;
        moveXTo(0);
    }
}

void MainWindow::set_SLIDE_indicator(SLIDE_type type, int channel, int field)
{
    if (const SlideGeometry* slide = slideGeometry(type)) {
        drawSlideMap(*slide, channel);
        setNavigationStates(*slide, channel, field);
    }
    ui->lineEdit_FIELD_CURRENT->setText(field == kFieldEjected ? QString("X") : QString::number(field + 1));
}

void MainWindow::drawSlideMap(const SlideGeometry& slide, int channel)
{
    QTableWidget* map = ui->tableWidget_SLIDE;
    map->verticalHeader()->setVisible(false);
    map->setRowCount(1);
    map->setColumnCount(slide.columns);
    for (int i = 0; i < slide.columns; ++i) {
        auto* cell = new QTableWidgetItem(QString::number(i + 1));
        cell->setTextAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        map->setColumnWidth(i, slide.columnWidth);
        map->setItem(0, i, cell);
        cell->setBackground(i == channel ? Qt::red : Qt::white);
    }
}

void MainWindow::setNavigationStates(const SlideGeometry& slide, int channel, int field)
{
    if (channel < 0) {
        disableNavigation();
        return;
    }
    ui->comboBox_SLIDE->setEnabled(true);
    ui->tableWidget_SLIDE->setEnabled(true);
    const bool bAtFirst = field <= 0;
    const bool bAtLast = field >= slide.lastField;
    const bool bReversed = isReversedRun(slide.type, channel);
    ui->pushButton_FIELD_PREV->setEnabled(bReversed ? !bAtLast : !bAtFirst);
    ui->pushButton_FIELD_NEXT->setEnabled(bReversed ? !bAtFirst : !bAtLast);
}

void MainWindow::finishXMove()
{
    if (m_slide_motion == SLIDE_MOTION_INSERT) {
        ui->pushButton_INSERT->setText("Insert");
        ui->pushButton_INSERT->setStyleSheet(styles::kReady);
        ui->pushButton_INSERT->setEnabled(true);
        ui->pushButton_EJECT->setEnabled(true);
        ui->tableWidget_SLIDE->setEnabled(true);
    } else {
        ui->pushButton_INSERT->setEnabled(true);
        ui->pushButton_EJECT->setEnabled(true);
    }
    set_SLIDE_indicator(m_slide_type, m_slide_channel, m_slide_field);
    m_slide_motion = SLIDE_MOTION_NONE;
    emit sig_finish_X_Stage_Move();
}

void MainWindow::finishEject()
{
    ui->pushButton_INSERT->setEnabled(true);
    ui->pushButton_EJECT->setText("Eject");
    ui->pushButton_EJECT->setStyleSheet(styles::kReady);
    ui->pushButton_EJECT->setEnabled(true);
    ui->tableWidget_SLIDE->setEnabled(false);
    m_slide_channel = -1;
    m_slide_field = kFieldEjected;
    set_SLIDE_indicator(m_slide_type, m_slide_channel, m_slide_field);
    m_slide_motion = SLIDE_MOTION_NONE;
}
