#include "app/MainWindow.h"

#include "camera/framedelivery.h"
#include "link/Controller.h"
#include "ui_MainWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

namespace {

constexpr int kConnectDelayMs = 500;

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(new Ui::MainWindow)
{
    ui->setupUi(this);
    // The process cannot be left while the first connection runs.
    ui->pushButton_EXIT->setVisible(false);

    setFixedSize(1024, 600);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    move(screen.x() + (screen.width() - width()) / 2, screen.y() + (screen.height() - height()) / 2);

    // A clean state of the USB sticks.
    m_media_monitor.umountAll();
    m_media_monitor.mountAll();

    ui->groupBox_VATLINE->setVisible(true);
    ui->groupBox_TALLYLINK->setVisible(true);
    ui->groupBox_QLPK->setVisible(true);
    ui->radioButton_VATLINE_YES->setChecked(false);
    ui->radioButton_VATLINE_NO->setChecked(true);
    ui->radioButton_TALLYLINK_YES->setChecked(false);
    ui->radioButton_TALLYLINK_NO->setChecked(true);
    ui->radioButton_QLPK_YES->setChecked(false);
    ui->radioButton_QLPK_NO->setChecked(true);
    get_TAVO_QR9_ini();

    m_pImageBuffer = new unsigned char[FrameDelivery::kFrameBytes]();

    // The gate of the whole user interface: it opens when the camera has started.
    ui->tabWidget_CONTROLLER->setEnabled(false);

    ui->CAPTURE_IMAGE_WIDGET->hide();
    connect(ui->CAPTURE_IMAGE_WIDGET, &CAPTURE_ImageWidget::sig_measure_point, this,
        &MainWindow::slot_measure_point);
    connect(ui->CAPTURE_IMAGE_WIDGET, &CAPTURE_ImageWidget::sig_measure_result, this,
        &MainWindow::slot_measure_result);
    connect(ui->CAPTURE_IMAGE_WIDGET, &CAPTURE_ImageWidget::sig_measure_error, this,
        &MainWindow::slot_measure_error);
    ui->BASLER_VIDEO_WIDGET->hide();

    m_pController = new Controller(this);
    connect(m_pController, SIGNAL(sig_finish_find_Controller(bool, QString)), this,
        SLOT(slot_finish_find_Controller(bool, QString)));
    connect(m_pController, SIGNAL(sig_parsing_protocol_Controller(QString)), this,
        SLOT(slot_parsing_protocol_Controller(QString)));

    set_SLIDE_indicator(m_slide_type, m_slide_channel, m_slide_field);
    QTimer::singleShot(kConnectDelayMs, this, SLOT(on_pushButton_CONNECT_clicked()));
    m_timer_FPS = new QTimer;

    ui->pushButton_SHIFT_X_MINUS->setEnabled(false);
    ui->pushButton_SHIFT_X_PLUS->setEnabled(false);
    ui->pushButton_SHIFT_Y_MINUS->setEnabled(false);
    ui->pushButton_SHIFT_Y_PLUS->setEnabled(false);
    ui->label_9->hide();
    ui->lineEdit_FIRMWARE->hide();
    set_version();
}

MainWindow::~MainWindow()
{
    delete m_timer_FPS;
    delete ui;
    delete[] m_pImageBuffer;
}
