#include <arducam_config_parser.h>

#include <QTemporaryDir>
#include <QtTest>

#include <vector>

namespace {

using Params = std::vector<uint32_t>;

Params paramsOf(const Config& config)
{
    return { config.params, config.params + config.params_length };
}

} // namespace

class tst_arducam_config_parser : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_configs = {};
        QVERIFY(m_folder.isValid());
    }

    void missingFile_isMinusOne()
    {
        QCOMPARE(arducam_parse_config("/nowhere/sensor.cfg", &m_configs), -1);
        QCOMPARE(m_configs.configs_length, 0U);
    }

    void cameraSection_fillsTheRecord()
    {
        QCOMPARE(parse("[camera parameter]\n"
                       "CFG_MODE = 1\nTYPE = AR0134\nSIZE = 1280, 964\nBIT_WIDTH = 8\nFORMAT = 4,1\n"
                       "I2C_MODE = 3\nI2C_ADDR = 0x20\nTRANS_LVL = 64\n"),
            0);
        const CameraParam& camera = m_configs.camera_param;
        QCOMPARE(camera.cfg_mode, 1U);
        QCOMPARE(QString(camera.type), QString("AR0134"));
        QCOMPARE(camera.width, 1280U);
        QCOMPARE(camera.height, 964U);
        QCOMPARE(int(camera.bit_width), 8);
        QCOMPARE(int(camera.format), 4 << 8 | 1);
        QCOMPARE(int(camera.i2c_mode), 3);
        QCOMPARE(int(camera.i2c_addr), 0x20);
        QCOMPARE(camera.trans_lvl, 64U);
    }

    void formatWithoutSubFormat_hasSubFormatZero()
    {
        QCOMPARE(parse("[camera parameter]\nFORMAT = 3\n"), 0);
        QCOMPARE(int(m_configs.camera_param.format), 3 << 8);
    }

    void entries_keepTheirOrderAndCarryTheirSection()
    {
        QCOMPARE(parse("[register parameter]\nREG = 0x301A, 0x00D9\nDELAY = 20\nREG = 12306, 815\n"
                       "[board parameter]\nVRCMD = 0x90, 0x4600, 1, 2, 0x85, 7\nDELAY = 5\n"),
            0);
        QCOMPARE(m_configs.configs_length, 5U);
        QCOMPARE(m_configs.configs[0].type, 3U << 24 | 1U);
        QCOMPARE(paramsOf(m_configs.configs[0]), (Params { 0x301A, 0xD9 }));
        QCOMPARE(m_configs.configs[1].type, 3U << 24 | 3U);
        QCOMPARE(paramsOf(m_configs.configs[1]), (Params { 20 }));
        QCOMPARE(paramsOf(m_configs.configs[2]), (Params { 0x3012, 815 }));
        QCOMPARE(m_configs.configs[3].type, 2U << 24 | 2U);
        QCOMPARE(paramsOf(m_configs.configs[3]), (Params { 0x90, 0x4600, 1, 2, 0x85, 7 }));
        QCOMPARE(m_configs.configs[4].type, 2U << 24 | 3U);
    }

    void usbTags_standInBits16To23_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<uint>("usb");
        QTest::newRow("none") << QByteArray("[register parameter]") << 0U;
        QTest::newRow("dev2") << QByteArray("[register parameter][dev2]") << 2U;
        QTest::newRow("dev3 inf3") << QByteArray("[register parameter][dev3][inf3]") << 3U;
        QTest::newRow("dev3 inf2") << QByteArray("[register parameter][dev3][inf2]") << 4U;
        QTest::newRow("blank between") << QByteArray("[register parameter] [dev2]") << 2U;
        QTest::newRow("line of its own") << QByteArray("[register parameter]\n[dev3][inf2]") << 4U;
        QTest::newRow("ended by the next")
            << QByteArray("[board parameter][dev2]\n[register parameter]") << 0U;
    }
    void usbTags_standInBits16To23()
    {
        QFETCH(QByteArray, header);
        QFETCH(uint, usb);
        QCOMPARE(parse(header + "\nREG = 1, 2\n"), 0);
        QCOMPARE(m_configs.configs_length, 1U);
        QCOMPARE(m_configs.configs[0].type, 3U << 24 | usb << 16 | 1U);
    }

    void commentsBlanksAndLineEnds_arePassedOver()
    {
        QCOMPARE(parse("; a comment\r\n\r\n   // another\r\n[register parameter] ; here too\r\n"
                       "\tREG=0x3012,1// tail\r\n  REG = 0x3040 , 0xC000 ; tail\r\n"),
            0);
        QCOMPARE(m_configs.configs_length, 2U);
        QCOMPARE(paramsOf(m_configs.configs[0]), (Params { 0x3012, 1 }));
        QCOMPARE(paramsOf(m_configs.configs[1]), (Params { 0x3040, 0xC000 }));
    }

    void controlSection_isAcceptedAndListsNothing()
    {
        QCOMPARE(parse("[control parameter]\nMAX_VALUE = 10\n"), 0);
        QCOMPARE(m_configs.controls_length, 0U);
    }

    void firstBadLine_isReported_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* line : { "nonsense", "REG = 0x3012", "REG = 1, 2, 3", "REG = 0x3012, two",
                 "REG = 0x10000, 1", "REG = 1, 0x100000000", "REG = 1,", "REG = , 1", "REG 1, 2",
                 "REG = -1, 2", "REG = 0x, 2", "VRCMD = 1, 2, 3, 0", "DELAY = 1, 2", "DELAY =", "UNKNOWN = 1",
                 "[unknown parameter]", "[register parameter][dev4]", "[register parameter][dev3]",
                 "[camera parameter][dev2]", "[register" }) {
            QTest::newRow(line) << QByteArray(line);
        }
    }
    void firstBadLine_isReported()
    {
        QFETCH(QByteArray, line);
        QCOMPARE(parse("; head\n[register parameter]\nREG = 1, 2\n" + line + "\nalso bad\n"), 4);
        QCOMPARE(m_configs.configs_length, 0U);
        QVERIFY(m_configs.configs == nullptr);
    }

    void badBoardCommand_isReported_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* line :
            { "VRCMD = 1, 2, 3", "VRCMD = 1, 2, 3, 2, 4", "VRCMD = 1, 2, 3, 0, 4", "VRCMD = 256, 2, 3, 0",
                "VRCMD = 1, 65536, 3, 0", "VRCMD = 1, 2, 65536, 0", "VRCMD = 1, 2, 3, 1, 256",
                "VRCMD = 1,2,3,13, 1,2,3,4,5,6,7,8,9,10,11,12,13", "REG = 1, 2" }) {
            QTest::newRow(line) << QByteArray(line);
        }
    }
    void badBoardCommand_isReported()
    {
        QFETCH(QByteArray, line);
        QCOMPARE(parse("[board parameter]\n" + line + "\n"), 2);
    }

    void badCameraLine_isReported_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* line : { "SIZE = 1280", "SIZE = 1280, 964, 1", "BIT_WIDTH = 256", "FORMAT = 4, 0, 0",
                 "FORMAT = 256", "TYPE =", "I2C_ADDR = 65536", "REG = 1, 2" }) {
            QTest::newRow(line) << QByteArray(line);
        }
        QTest::newRow("too long a type") << QByteArray("TYPE = ") + QByteArray(50, 'x');
    }
    void badCameraLine_isReported()
    {
        QFETCH(QByteArray, line);
        QCOMPARE(parse("[camera parameter]\n" + line + "\n"), 2);
    }

    void lineBeforeTheFirstSection_isBad() { QCOMPARE(parse("REG = 1, 2\n[register parameter]\n"), 1); }

    void longestBoardCommand_isTaken()
    {
        QCOMPARE(parse("[board parameter]\nVRCMD = 1,2,3,12, 1,2,3,4,5,6,7,8,9,10,11,12\n"), 0);
        QCOMPARE(int(m_configs.configs[0].params_length), 16);
    }

    void fileOfTheRoom_isGood()
    {
        QCOMPARE(arducam_parse_config(QR9_SOURCE_DIR "/simulator/room/AR0134_Merel.cfg", &m_configs), 0);
        QCOMPARE(m_configs.camera_param.width, 1280U);
        QCOMPARE(m_configs.camera_param.height, 964U);
        QCOMPARE(int(m_configs.camera_param.format), 4 << 8);
        QVERIFY(m_configs.configs_length > 10);
    }

private:
    int parse(const QByteArray& text)
    {
        const QString path = m_folder.filePath("sensor.cfg");
        QFile file(path);
        if (!file.open(QFile::WriteOnly) || file.write(text) != text.size()) {
            return -3;
        }
        file.close();
        return arducam_parse_config(qPrintable(path), &m_configs);
    }

    QTemporaryDir m_folder;
    CameraConfigs m_configs {};
};

QTEST_APPLESS_MAIN(tst_arducam_config_parser)
#include "tst_arducam_config_parser.moc"
